#pragma once
// How the VRF lifecycle opens and closes a VRF's SNMP context. The machines do not call the front
// end themselves; the plug-in entry gives them the agent's: opening registers the units IpBase,
// IpForward and IpSwForwarding in the context, in this order; closing unregisters them in the same
// order and then removes what the agent keeps of the context (its subtrees, then its cached lookups).
#include "platform/quor/String.h"

namespace IpSnmp {

class SnmpContexts {
 public:
  virtual ~SnmpContexts() = default;
  virtual void contextIs(const Quor::Name& vrf) = 0;
  virtual void contextDel(const Quor::Name& vrf) = 0;
};

}  // namespace IpSnmp
