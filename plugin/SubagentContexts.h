#pragma once
// In the master agent of ipsnmp-subagent (the plug-in loaded with "ipsnmpMode master"): the contexts
// in which AgentX sub-agents hold registrations, opened and closed in VrfCommunities as they come
// and go. The communities must live in the master, which alone sees a request's community; what the
// sub-agent registers is all that the master learns of its VRFs.
//
// A context counts while one of its subtrees belongs to an AgentX session. The registry itself is
// looked at, not the registration callbacks counted: the master keeps a context's placeholder
// subtrees after its last registration goes, and a sub-agent that disconnects takes all of its
// registrations at once. The look comes on the turn of the loop after a burst of callbacks (a VRF
// registers some twenty objects), and once at the start, for sub-agents that stayed connected while
// snmpd read its configuration again.
#include <set>
#include <string>

#include "platform/snmp/Owners.h"
#include "plugin/VrfCommunities.h"

class SubagentContexts {
 public:
  // `communities` must outlive this.
  explicit SubagentContexts(VrfCommunities& communities);
  ~SubagentContexts();
  SubagentContexts(const SubagentContexts&) = delete;
  SubagentContexts& operator=(const SubagentContexts&) = delete;

 private:
  static int onRegistryChange(int major, int minor, void* parameters, void* self);
  static void onReviewDue(unsigned int alarm, void* self);
  void review();

  VrfCommunities& communities_;
  std::set<std::string> contexts_;
  Snmp::Alarm reviewDue_;
};
