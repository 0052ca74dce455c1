#pragma once
// The agent's side of a VRF's SNMP context, for the VRF lifecycle machine: the units IpBase,
// IpForward and IpSwForwarding register in it when the VRF comes up, and the VRF's communities come
// with it (in snmpd; the sub-agent has none); when it goes, the communities go first, the units
// unregister, and the agent forgets the context's subtrees and cached lookups.
#include "agent/SnmpContexts.h"
#include "plugin/VrfCommunities.h"

class AgentContexts final : public IpSnmp::SnmpContexts {
 public:
  // `communities`, when there are any, must outlive this.
  explicit AgentContexts(VrfCommunities* communities) : communities_(communities) {}
  void contextIs(const Quor::Name& vrf) override;
  void contextDel(const Quor::Name& vrf) override;

 private:
  VrfCommunities* communities_;
};
