#include "plugin/AgentStartup.h"

#include "platform/tarn/Mount.h"

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

const char* const defaultTablePaths[] = {Tarn::Fib::defaultRoutePath,  Tarn::Fib::defaultForwardingPath,
                                         Tarn::Fib::defaultRoute6Path, Tarn::Fib::defaultForwarding6Path,
                                         Arp::Table::statusPath,       Vrf::VrfIdMap::statusPath};

}  // namespace

AgentStartup::AgentStartup(const Quor::Ptr<Quor::Dir>& rootDir, const Morvane::Store& store,
                           IpSnmp::SnmpContexts* contexts)
    : entityManager(store.entityManager) {
  Quor::Ptr<Quor::Dir> ip = dirIn(dirIn(rootDir, "snmp"), "ip");
  ipMib = containerIn<IpSnmp::IpMib>(ip, "ipmib");
  ipForwardMib = containerIn<IpSnmp::IpForwardMib>(ip, "ipforwardmib");
  ipVrfMib = containerIn<IpSnmp::IpVrfMib>(ip, "ipvrfmib");
  vrfMibsDir = containerIn<IpSnmp::VrfMibsDir>(ip, "vrf");
  // The default VRF serves both IP versions' counters; the other VRFs get theirs when they come up.
  ipMib->ipSwFwdStatsIs(Ip::ipVersion4, Quor::Name("default"));
  ipMib->ipSwFwdStatsIs(Ip::ipVersion6, Quor::Name("default"));

  QuorTarn::Mount mount(entityManager, "");
  mount.handleInitialized();
  auto routeStatus = QuorTarn::mountedAs<Tarn::Fib::RouteStatus>(mount, Tarn::Fib::defaultRoutePath,
                                                     Tarn::Fib::TableInfo::routeInfo());
  auto forwardingStatus = QuorTarn::mountedAs<Tarn::Fib::ForwardingStatus>(mount, Tarn::Fib::defaultForwardingPath,
                                                               Tarn::Fib::TableInfo::forwardingInfo());
  auto route6Status = QuorTarn::mountedAs<Tarn::Fib::Route6Status>(mount, Tarn::Fib::defaultRoute6Path,
                                                                 Tarn::Fib::TableInfo::route6Info());
  auto forwarding6Status = QuorTarn::mountedAs<Tarn::Fib::Forwarding6Status>(
      mount, Tarn::Fib::defaultForwarding6Path, Tarn::Fib::TableInfo::forwarding6Info());
  auto arpTarn =
      QuorTarn::mountedAs<Arp::Table::Status>(mount, Arp::Table::statusPath, Arp::Table::TableInfo::arpInfo());
  auto vrfIdMap = QuorTarn::mountedAs<Vrf::VrfIdMap::Status>(mount, Vrf::VrfIdMap::statusPath,
                                                 Vrf::VrfIdMap::TableInfo::vrfIdMapInfo());

  root = IpSnmp::rootFactory(Quor::Name("ipsnmp"));
  auto addresses = root->ipAddressTableSmIs({.intfStatusDir = store.intfStatusDir,
                                             .ipMib = ipMib,
                                             .config = store.ipConfig,
                                             .status = store.ipStatus,
                                             .config6 = store.ip6Config,
                                             .status6 = store.ip6Status});
  // Entries of VRF id 0 belong to the default VRF.
  auto defaultArp = root->arpTableSmIs({.intfStatusDir = store.intfStatusDir,
                                        .ipMib = ipMib,
                                        .arpTarn = arpTarn,
                                        .arpTarnVrfId = Vrf::VrfIdMap::defaultVrfId});
  root->ipRouteTableSmIs({.ipForwardMib = ipForwardMib,
                          .intfStatusDir = store.intfStatusDir,
                          .routeStatus = routeStatus,
                          .forwardingStatus = forwardingStatus,
                          .clock = Quor::activityManager()->clock()});
  root->ipRoute6TableSmIs({.ipForwardMib = ipForwardMib,
                           .intfStatusDir = store.intfStatusDir,
                           .routeStatus = route6Status,
                           .forwardingStatus = forwarding6Status,
                           .clock = Quor::activityManager()->clock()});
  auto vrfInterfaces =
      root->vrfIfTableSmIs({.ipVrfMib = ipVrfMib, .intfStatusDir = store.intfStatusDir, .config = store.ipConfig});
  root->vrfRootSmIs({.ipAddressTableSm = addresses,
                     .intfStatusDir = store.intfStatusDir,
                     .routingVrfConfigDir = store.routingVrfConfigDir,
                     .routingVrfInfoDir = store.routingVrfInfoDir,
                     .vrfMibsDir = vrfMibsDir,
                     .vrfRootDir = root->vrfRootDirIs(Quor::Name("vrfroots")),
                     .allVrfStatusLocal = store.allVrfStatusLocal,
                     .allVrfConfig = store.allVrfConfig,
                     .snmpStatus = store.snmpStatus,
                     .ipVrfMib = ipVrfMib,
                     .entityManager = entityManager,
                     .arpTarn = arpTarn,
                     .arpTarnVrfIdMap = vrfIdMap,
                     .defaultVrfArpTableSm = defaultArp,
                     .vrfIfTableSm = vrfInterfaces,
                     .snmpContexts = contexts});
}

AgentStartup::~AgentStartup() {
  root = nullptr;
  QuorTarn::Mount mount(entityManager, "");
  mount.handleInitialized();
  for (const char* path : defaultTablePaths) mount.doUnmount(path);
}
