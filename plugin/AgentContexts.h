#pragma once
// The agent's side of a VRF's SNMP context, for the VRF lifecycle machine: the units IpBase,
// IpForward and IpSwForwarding register in it when the VRF comes up, and when it goes they unregister,
// and the agent forgets the context's subtrees and cached lookups.
#include "agent/SnmpContexts.h"

class AgentContexts final : public IpSnmp::SnmpContexts {
 public:
  void contextIs(const Quor::Name& vrf) override;
  void contextDel(const Quor::Name& vrf) override;
};
