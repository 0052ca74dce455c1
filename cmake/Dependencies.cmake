# Third-party packages, all from Debian.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(GTest REQUIRED)
find_package(benchmark REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(yaml-cpp REQUIRED)

# net-snmp ships no CMake package: ask net-snmp-config, as its documentation says. Its flags are
# those of the Debian build (-O2, -g, perl's include path, ...): keep only the defines that change
# what the net-snmp headers declare, and link only the agent and its base library, which snmpd has
# already loaded when it opens the plug-in.
find_program(NET_SNMP_CONFIG net-snmp-config REQUIRED)
execute_process(COMMAND ${NET_SNMP_CONFIG} --base-cflags OUTPUT_VARIABLE _snmp_cflags
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(_snmp_cflags UNIX_COMMAND "${_snmp_cflags}")
set(_snmp_defines)
foreach(_flag IN LISTS _snmp_cflags)
  if(_flag MATCHES "^-D(NETSNMP_[A-Z0-9_]+(=.*)?|_REENTRANT|_LARGEFILE_SOURCE|_FILE_OFFSET_BITS=.*)$")
    list(APPEND _snmp_defines ${CMAKE_MATCH_1})
  endif()
endforeach()
list(REMOVE_DUPLICATES _snmp_defines)
find_library(NETSNMP_AGENT_LIBRARY netsnmpagent REQUIRED)
find_library(NETSNMP_LIBRARY netsnmp REQUIRED)
add_library(netsnmp_agent INTERFACE)
target_compile_definitions(netsnmp_agent INTERFACE ${_snmp_defines})
target_link_libraries(netsnmp_agent INTERFACE ${NETSNMP_AGENT_LIBRARY} ${NETSNMP_LIBRARY})
message(STATUS "net-snmp defines: ${_snmp_defines}")
