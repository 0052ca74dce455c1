#pragma once
// The agent's SNMP contexts: the default one, registered once at start and kept for the life of the
// process, and a VRF's, which the VRF lifecycle machine opens when the VRF comes up and closes when it
// goes. Every context registers the same list of units; a unit registers in a VRF's context only what
// exists there (VrfBase nothing). A VRF's communities come with its context (in snmpd; the sub-agent
// has none); when it goes, the communities go first, the units unregister in the same order, and the
// agent forgets the context's subtrees and cached lookups.
#include "agent/SnmpContexts.h"
#include "plugin/VrfCommunities.h"

class AgentContexts final : public IpSnmp::SnmpContexts {
 public:
  // `communities`, when there are any, must outlive this.
  explicit AgentContexts(VrfCommunities* communities) : communities_(communities) {}
  void defaultContextIs();
  void contextIs(const Quor::Name& vrf) override;
  void contextDel(const Quor::Name& vrf) override;

 private:
  VrfCommunities* communities_;
};
