#include "plugin/AgentStartup.h"

namespace {

Quor::Ptr<Quor::Dir> dirIn(const Quor::Ptr<Quor::Dir>& parent, const char* name) {
  auto dir = Quor::makePtr<Quor::Dir>(Quor::Name(name));
  parent->entityPtrIs(dir);
  return dir;
}

template <class Container>
Quor::Ptr<Container> containerIn(const Quor::Ptr<Quor::Dir>& dir, const char* name) {
  auto container = Quor::makePtr<Container>(Quor::Name(name));
  dir->entityPtrIs(container);
  return container;
}

}  // namespace

AgentStartup::AgentStartup(const Quor::Ptr<Quor::Dir>& root, const Morvane::Store& store) {
  Quor::Ptr<Quor::Dir> ip = dirIn(dirIn(root, "snmp"), "ip");
  ipMib = containerIn<IpSnmp::IpMib>(ip, "ipmib");
  ipForwardMib = containerIn<IpSnmp::IpForwardMib>(ip, "ipforwardmib");
  ipVrfMib = containerIn<IpSnmp::IpVrfMib>(ip, "ipvrfmib");
  vrfMibsDir = containerIn<IpSnmp::VrfMibsDir>(ip, "vrf");
  // The default VRF serves both IP versions' counters; the other VRFs get theirs when they come up.
  ipMib->ipSwFwdStatsIs(Ip::ipVersion4, Quor::Name("default"));
  ipMib->ipSwFwdStatsIs(Ip::ipVersion6, Quor::Name("default"));

  ipAddressTableSm = Quor::makePtr<IpSnmp::IpAddressTableSm>(store.intfStatusDir, ipMib, store.ipConfig,
                                                             store.ipStatus, store.ip6Config, store.ip6Status);
  vrfIfTableSm = Quor::makePtr<IpSnmp::VrfIfTableSm>(ipVrfMib, store.intfStatusDir, store.ipConfig);
}

// The machines go before the containers they write; a machine's teardown leaves the rows it made,
// except the address machine, which takes back its occurrences.
AgentStartup::~AgentStartup() {
  ipAddressTableSm = nullptr;
  vrfIfTableSm = nullptr;
}
