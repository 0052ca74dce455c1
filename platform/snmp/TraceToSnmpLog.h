#pragma once
// Sends the framework's trace lines to the agent's log (snmp_log), so that they appear wherever
// snmpd was told to log (-Lf, -Le, syslog) and in order with its own messages.

namespace Snmp {

void traceToSnmpLog();

}  // namespace Snmp
