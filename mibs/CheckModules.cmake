# Checks that the modules in MIB_DIR turn instance OIDs of the private tables into names.
# Usage: cmake -DSNMPTRANSLATE=<program> -DMIB_DIR=<dir> -P CheckModules.cmake
set(expected
    ".1.3.6.1.4.1.48213.3.18.1.1.1.4.3.114.101.100=OSKEL-VRF-MIB::oskelVrfState.\"red\""
    ".1.3.6.1.4.1.48213.3.18.1.1.1.2.7.100.101.102.97.117.108.116=OSKEL-VRF-MIB::oskelVrfRoutingStatus.\"default\""
    ".1.3.6.1.4.1.48213.3.18.1.2.1.1.7=OSKEL-VRF-MIB::oskelVrfIfMembership.7"
    ".1.3.6.1.4.1.48213.3.1.1.1.1.3.1=OSKEL-SW-FWD-MIB::oskelSwFwdIpStatsInReceives.ipv4"
    ".1.3.6.1.4.1.48213.3.1.1.1.1.45.2=OSKEL-SW-FWD-MIB::oskelSwFwdIpStatsHCOutBcastPkts.ipv6"
    ".1.3.6.1.4.1.48213.3.1.1.1.1.47.1=OSKEL-SW-FWD-MIB::oskelSwFwdIpStatsRefreshRate.ipv4")
foreach(pair ${expected})
  string(REGEX MATCH "^[^=]*" oid "${pair}")
  string(REGEX REPLACE "^[^=]*=" "" name "${pair}")
  execute_process(COMMAND ${SNMPTRANSLATE} -m OSKEL-VRF-MIB:OSKEL-SW-FWD-MIB -M +${MIB_DIR} ${oid}
                  OUTPUT_VARIABLE out OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_VARIABLE err RESULT_VARIABLE failed)
  if(failed OR NOT out STREQUAL name)
    message(FATAL_ERROR "${oid} translated to '${out}', not '${name}' (${err})")
  endif()
endforeach()
list(LENGTH expected count)
message(STATUS "${count} instances named")
