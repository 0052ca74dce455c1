#pragma once
// The trace of the state machines: facility "IpSnmp", source "IpSnmpAgent", and the in-memory
// record that every handler opens at its entry.
#include "platform/quor/Flitlog.h"
#include "platform/quor/Trace.h"

namespace IpSnmp {

inline const Quor::Tracer& agentTracer() {
  static const Quor::Tracer tracer("IpSnmp", "IpSnmpAgent");
  return tracer;
}

}  // namespace IpSnmp

// Records the handler, labelled with its signature, in the in-memory trace for its duration.
#define IPSNMP_HANDLER(signature) FLITLOG_BLOCK("IpSnmpAgent", signature)
