#include "tests/unit/agent/VrfLifecycleFixture.h"

#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace IpSnmp {

namespace {

// Table type of the tables that a test holds in the process.
constexpr Tarn::TableType inProcessTables = Tarn::TableType::inProcess;

QuorTarn::Mount mountOn(const Quor::Ptr<Morvane::EntityManager>& entityManager) {
  QuorTarn::Mount mount(entityManager, "");
  mount.handleInitialized();
  return mount;
}

}  // namespace

void VrfLifecycle::SetUp() {
  // The tables that the lifecycle mounts from shared memory are looked for here, and never found.
  tables = std::filesystem::temp_directory_path() / ("ipsnmp-vrf-lifecycle-" + std::to_string(::getpid()));
  ::setenv("TARN_ROOT", tables.c_str(), 1);
  arpTarn->mount("", Tarn::TableType::inProcess);
  vrfIds->mount("", Tarn::TableType::inProcess);
}

void VrfLifecycle::TearDown() {
  root = nullptr;
  std::filesystem::remove_all(tables);
}

void VrfLifecycle::start() {
  root = rootFactory(Quor::Name("ipsnmp"));
  addresses = root->ipAddressTableSmIs(
      {store.intfStatusDir, ipMib, store.ipConfig, store.ipStatus, store.ip6Config, store.ip6Status});
  auto defaultArp = root->arpTableSmIs({store.intfStatusDir, ipMib, arpTarn, Vrf::VrfIdMap::defaultVrfId});
  auto vrfInterfaces = root->vrfIfTableSmIs({ipVrfMib, store.intfStatusDir, store.ipConfig});
  vrfRoots = root->vrfRootDirIs(Quor::Name("vrfroots"));
  root->vrfRootSmIs({addresses, store.intfStatusDir, store.routingVrfConfigDir, store.routingVrfInfoDir, vrfMibsDir,
                     vrfRoots, store.allVrfStatusLocal, store.allVrfConfig, store.snmpStatus, ipVrfMib,
                     store.entityManager, arpTarn, vrfIds, defaultArp, vrfInterfaces, &contexts});
}

void VrfLifecycle::routingConfigIs(const std::string& vrf) {
  auto routing = Quor::makePtr<Routing::Config>(Quor::Name(vrf));
  routing->routingIs(true);
  store.routingVrfConfigDir->vrfConfigIs(routing);
}

void VrfLifecycle::published(const std::string& vrf) {
  store.routingVrfInfoDir->entityPtrIs(Quor::makePtr<Quor::Dir>(Quor::Name(vrf)));
}

void VrfLifecycle::ipConfigIs(const std::string& vrf) {
  store.allVrfConfig->vrfIs(Quor::makePtr<Ip::VrfConfig>(L3::VrfName(vrf)));
}

Quor::Ptr<Ip::VrfStatusLocal> VrfLifecycle::statusIs(const std::string& vrf, Ip::VrfState state) {
  auto status = Quor::makePtr<Ip::VrfStatusLocal>(L3::VrfName(vrf));
  status->stateIs(state);
  store.allVrfStatusLocal->vrfIs(status);
  return status;
}

Quor::Ptr<Ip::VrfStatusLocal> VrfLifecycle::vrf(const std::string& name, Ip::VrfState state) {
  routingConfigIs(name);
  published(name);
  ipConfigIs(name);
  return statusIs(name, state);
}

void VrfLifecycle::intfUp(const char* name, S32 ifIndex, const char* kind) {
  store.intfStatusDir->intfStatusIs(
      Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId(name), Quor::Name(kind), ifIndex));
}

void VrfLifecycle::intfConfiguredIn(const char* name, const char* vrf, const char* addrWithMask) {
  auto config = Quor::makePtr<Ip::IpIntfConfig>(Pelt::IntfId(name));
  if (addrWithMask) config->addrWithMaskIs(Pelt::IpAddrWithMask(std::string_view(addrWithMask)));
  auto l3 = Quor::makePtr<L3::Intf::Config>(Quor::Name(name));
  l3->vrfIs(vrf);
  config->l3ConfigIs(l3);
  store.ipConfig->ipIntfConfigIs(config);
}

void VrfLifecycle::addressIn(const char* name, const char* vrf, const char* addrWithMask) {
  auto l3 = Quor::makePtr<L3::Intf::Status>(Quor::Name(name));
  l3->vrfIs(vrf);
  auto intf = Quor::makePtr<Ip::IpIntfStatus>(Pelt::IntfId(name), l3);
  intf->activeAddrWithMaskIs(Pelt::IpAddrWithMask(std::string_view(addrWithMask)));
  store.ipStatus->ipIntfStatusIs(intf);
}

Arp::Table::ArpEntry VrfLifecycle::neighbourIs(U32 vrfId, const char* intf, const char* addr) {
  Arp::Table::ArpEntry entry;
  entry.vrfId = Vrf::VrfIdMap::VrfId(vrfId);
  entry.intfId = Pelt::IntfId(intf);
  entry.addr = Pelt::IpAddr(std::string_view(addr));
  entry.ethAddr = Pelt::EthAddr(std::string_view("00:1c:73:00:00:01"));
  Tarn::inProcessTable(arpTarn->arpEntry()).put(entry.key(), entry);
  return entry;
}

void VrfLifecycle::neighbourGone(const Arp::Table::ArpEntry& entry) {
  Tarn::inProcessTable(arpTarn->arpEntry()).erase(entry.key());
}

void VrfLifecycle::vrfIdIs(U32 id, const char* name) {
  const Vrf::VrfIdMap::VrfId vrfId(id);
  Tarn::inProcessTable(vrfIds->vrfEntry()).put(vrfId, Vrf::VrfIdMap::VrfEntry(vrfId, L3::VrfName(name)));
}

void VrfLifecycle::vrfIdGone(U32 id) { Tarn::inProcessTable(vrfIds->vrfEntry()).erase(Vrf::VrfIdMap::VrfId(id)); }

Quor::Ptr<Tarn::Fib::RouteStatus> VrfLifecycle::routeTablesMounted(const std::string& vrf) {
  QuorTarn::Mount mount = mountOn(store.entityManager);
  const std::string routePath = Quor::format(Tarn::Fib::vrfRoutePathFormat, vrf.c_str()).str();
  const std::string forwardingPath = Quor::format(Tarn::Fib::vrfForwardingPathFormat, vrf.c_str()).str();
  mount.doMount(routePath, Tarn::Fib::RouteStatus::typeName, Tarn::Fib::TableInfo::routeInfo(inProcessTables));
  mount.doMount(forwardingPath, Tarn::Fib::ForwardingStatus::typeName,
                Tarn::Fib::TableInfo::forwardingInfo(inProcessTables));
  return Quor::dynamicPtrCast<Tarn::Fib::RouteStatus>(mount.getEntity(routePath));
}

Quor::Ptr<Tarn::Fib::ForwardingStatus> VrfLifecycle::forwardingTableOf(const std::string& vrf) const {
  return Quor::dynamicPtrCast<Tarn::Fib::ForwardingStatus>(mountedAt(Tarn::Fib::vrfForwardingPathFormat, vrf));
}

Quor::Ptr<Quor::Entity> VrfLifecycle::mountedAt(const char* format, const std::string& vrf) const {
  return store.entityManager->mounted(Quor::format(format, vrf.c_str()).str());
}

Quor::Ptr<IpMib> VrfLifecycle::ipMibOf(const std::string& name) const {
  VrfMibs* mibs = vrfMibsDir->mibs(Quor::Name(name));
  return mibs ? mibs->ipmib() : nullptr;
}

std::vector<std::string> VrfLifecycle::arpRows(const IpMib& mib) {
  std::vector<std::string> out;
  for (auto it = mib.arpTable().begin(); it; ++it) {
    std::ostringstream text;
    text << it->ifIndex() << ' ' << it->netAddress();
    out.push_back(text.str());
  }
  return out;
}

std::string VrfLifecycle::partsOf(const Quor::Name& vrf) const {
  const std::string name = vrf.str();
  std::vector<const char*> parts;
  if (mountedAt(Tarn::Fib::vrfRoutePathFormat, name) && mountedAt(Tarn::Fib::vrfForwardingPathFormat, name))
    parts.push_back("tables");
  const VrfRoot* vrfRootOfName = vrfRoot(name);
  if (vrfRootOfName) parts.push_back("root");
  const VrfMibs* mibs = vrfMibsDir->mibs(vrf);
  if (mibs && mibs->ipmib() && mibs->ipforwardmib()) parts.push_back("mibs");
  if (vrfRootOfName && vrfRootOfName->arpTableSm() && vrfRootOfName->ipRouteTableSm()) parts.push_back("machines");
  if (addresses->vrfIpMib(vrf)) parts.push_back("addresses");
  if (mibs && mibs->ipmib() && mibs->ipmib()->ipSwFwdStats(Ip::ipVersion4)) parts.push_back("stats");
  if (hasRow(name)) parts.push_back("row");
  for (auto it = ipVrfMib->vrfIfTable().begin(); it; ++it)
    if (it->vrfName() == Snmp::String(vrf)) {
      parts.push_back("interfaces");
      break;
    }
  std::string text;
  for (const char* part : parts) text += text.empty() ? part : std::string(" ") + part;
  return text;
}

}  // namespace IpSnmp
