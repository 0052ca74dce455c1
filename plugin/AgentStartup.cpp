#include "plugin/AgentStartup.h"

#include "platform/tarn/Mount.h"

namespace {

// Table type of the tables that other processes write: shared memory.
constexpr U32 sharedMemoryTables = 1;

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

template <class Table>
Quor::Ptr<const Table> mounted(QuorTarn::Mount& mount, const char* path, const QuorTarn::MountInfo& info) {
  mount.doMount(path, Table::typeName, info);
  return Quor::dynamicPtrCast<const Table>(mount.getEntity(path));
}

const char* const defaultTablePaths[] = {Tarn::Fib::defaultRoutePath, Tarn::Fib::defaultForwardingPath,
                                         Arp::Table::statusPath, Vrf::VrfIdMap::statusPath};

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
  auto routeStatus = mounted<Tarn::Fib::RouteStatus>(mount, Tarn::Fib::defaultRoutePath,
                                                     Tarn::Fib::TableInfo::routeInfo(sharedMemoryTables));
  auto forwardingStatus = mounted<Tarn::Fib::ForwardingStatus>(mount, Tarn::Fib::defaultForwardingPath,
                                                               Tarn::Fib::TableInfo::forwardingInfo(sharedMemoryTables));
  auto arpTarn =
      mounted<Arp::Table::Status>(mount, Arp::Table::statusPath, Arp::Table::TableInfo::arpInfo(sharedMemoryTables));
  auto vrfIdMap = mounted<Vrf::VrfIdMap::Status>(mount, Vrf::VrfIdMap::statusPath,
                                                 Vrf::VrfIdMap::TableInfo::vrfIdMapInfo(sharedMemoryTables));

  root = IpSnmp::rootFactory(Quor::Name("ipsnmp"));
  auto addresses = root->ipAddressTableSmIs(store.intfStatusDir, ipMib, store.ipConfig, store.ipStatus,
                                            store.ip6Config, store.ip6Status);
  // Entries of VRF id 0 belong to the default VRF.
  auto defaultArp = root->arpTableSmIs(store.intfStatusDir, ipMib, arpTarn, Vrf::VrfIdMap::defaultVrfId);
  root->ipRouteTableSmIs(ipForwardMib, store.intfStatusDir, routeStatus, forwardingStatus,
                         Quor::activityManager()->clock());
  root->vrfIfTableSmIs(ipVrfMib, store.intfStatusDir, store.ipConfig);
  auto vrfRoots = root->vrfRootDirIs(Quor::Name("vrfroots"));
  root->vrfRootSmIs(addresses, store.intfStatusDir, store.routingVrfConfigDir, store.routingVrfInfoDir, vrfMibsDir,
                    vrfRoots, store.allVrfStatusLocal, store.allVrfConfig, store.snmpStatus, ipVrfMib, entityManager,
                    arpTarn, vrfIdMap, defaultArp, contexts);
}

AgentStartup::~AgentStartup() {
  root = nullptr;
  QuorTarn::Mount mount(entityManager, "");
  mount.handleInitialized();
  for (const char* path : defaultTablePaths) mount.doUnmount(path);
}
