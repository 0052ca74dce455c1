#pragma once
// The agent's SNMP contexts: the default one, registered once at start and kept for the life of the
// process, and a VRF's, which the VRF lifecycle machine opens when the VRF comes up and closes when it
// goes. Every context registers the same list of units; a unit registers in a VRF's context only what
// exists there (VrfBase nothing). Closing a VRF's context unregisters the units in the same order and
// then makes the agent forget the context's subtrees and cached lookups.
#include "agent/SnmpContexts.h"

class AgentContexts final : public IpSnmp::SnmpContexts {
 public:
  void defaultContextIs();
  void contextIs(const Quor::Name& vrf) override;
  void contextDel(const Quor::Name& vrf) override;
};
