# Third-party packages, all from Debian.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(GTest REQUIRED)
find_package(benchmark REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(yaml-cpp REQUIRED)

# net-snmp ships no CMake package: ask net-snmp-config, as its documentation says.
find_program(NET_SNMP_CONFIG net-snmp-config REQUIRED)
execute_process(COMMAND ${NET_SNMP_CONFIG} --base-cflags OUTPUT_VARIABLE _snmp_cflags OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND ${NET_SNMP_CONFIG} --agent-libs OUTPUT_VARIABLE _snmp_agent_libs OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(_snmp_cflags UNIX_COMMAND "${_snmp_cflags}")
separate_arguments(_snmp_agent_libs UNIX_COMMAND "${_snmp_agent_libs}")
add_library(netsnmp_agent INTERFACE)
target_compile_options(netsnmp_agent INTERFACE ${_snmp_cflags})
target_link_options(netsnmp_agent INTERFACE ${_snmp_agent_libs})
