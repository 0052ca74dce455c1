#include "platform/snmp/TraceToSnmpLog.h"

#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"

namespace Snmp {

namespace {

// Level 0 marks a refused request, 1 the noteworthy; the rest is request-level detail.
int priorityOf(int level) { return level == 0 ? LOG_NOTICE : level == 1 ? LOG_INFO : LOG_DEBUG; }

void logTrace(const Quor::TraceHandle& facility, int level, const char* file, const char* function,
              const std::string& text) {
  snmp_log(priorityOf(level), "%s/%d %s %s: %s\n", facility.facility().c_str(), level, file, function,
           text.c_str());
}

}  // namespace

void traceToSnmpLog() { Quor::traceSinkIs(&logTrace); }

}  // namespace Snmp
