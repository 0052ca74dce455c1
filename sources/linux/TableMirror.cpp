#include "sources/linux/TableMirror.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <system_error>

#include "platform/quor/Exception.h"
#include "platform/quor/Trace.h"
#include "sources/linux/NetnsDirectory.h"

namespace Sources::Linux {

namespace {

const Quor::Tracer tracer("Linux", "TableMirror");

const std::vector<unsigned> routeGroups{RTNLGRP_LINK, RTNLGRP_NEXTHOP, RTNLGRP_IPV4_ROUTE, RTNLGRP_IPV6_ROUTE,
                                       RTNLGRP_NEIGH};
// Reading between two writes of the tables: long enough to batch a burst, short enough to show it.
constexpr double readQuantum = 0.05;

}  // namespace

struct TableMirror::Namespace {
  Namespace(const std::string& root, const L3::VrfName& name, Vrf::VrfIdMap::VrfId id)
      : vrf(name), vrfId(id), model(name), tables(root, name), tables6(root, name) {}

  L3::VrfName vrf;
  Vrf::VrfIdMap::VrfId vrfId;
  NamespaceRoutes model;
  RouteTables tables;
  Route6Tables tables6;
  std::unique_ptr<RtnlSession> session;
  std::map<NamespaceRoutes::NeighbourKey, Arp::Table::ArpKey> arpKeys;  // what each neighbour wrote
  bool frozen = false;
};

TableMirror::TableMirror(const std::string& root, const std::string& netnsDir)
    : root_(root), arp_(root), vrfIds_(root) {
  netnsDirectory_ = std::make_unique<NetnsDirectory>(netnsDir, [this](const L3::VrfName& vrf, bool present) {
    if (present)
      open(vrf);
    else
      close(vrf);
  });
  open(L3::VrfName("default"));
  if (!namespaces_.count(L3::VrfName("default")))
    throw std::system_error(ENOENT, std::generic_category(), "cannot follow the routes of this namespace");
  for (const L3::VrfName& vrf : netnsDirectory_->vrfs()) open(vrf);
}

TableMirror::~TableMirror() {
  netnsDirectory_.reset();
  for (auto& [vrf, ns] : namespaces_)
    if (!ns->frozen) Quor::activityManager()->fdReadDel(ns->session->fd());
}

void TableMirror::open(const L3::VrfName& vrf) {
  const Vrf::VrfIdMap::VrfId id = vrfIds_.idOf(vrf);
  std::unique_ptr<Namespace> ns;
  try {
    ns = std::make_unique<Namespace>(root_, vrf, id);
    ns->session = std::make_unique<RtnlSession>(
        vrf.isDefault() ? std::string() : namespaceOfVrf(vrf), routeGroups,
        // Nexthop objects before the routes that name them.
        std::vector<RtnlSession::Dump>{{RTM_GETLINK, AF_UNSPEC},
                                       {RTM_GETNEXTHOP, AF_UNSPEC},
                                       {RTM_GETROUTE, AF_INET},
                                       {RTM_GETROUTE, AF_INET6},
                                       {RTM_GETNEIGH, AF_INET}},
        ns->model);
  } catch (const std::exception& e) {
    QTRACE(tracer, 0, "cannot follow the routes of VRF " << vrf << ": " << e.what());
    return;
  }
  if (!vrf.isDefault()) {
    vrfIds_.presentIs(vrf, true);
    vrfIds_.commit();
  }
  Namespace* raw = ns.get();
  Quor::activityManager()->fdReadIs(ns->session->fd(), [this, raw] { onReadable(*raw); });
  namespaces_[vrf] = std::move(ns);
  QTRACE(tracer, 1, "following the routes of VRF " << vrf << " (id " << id << ")");
}

void TableMirror::close(const L3::VrfName& vrf) {
  auto it = namespaces_.find(vrf);
  if (it == namespaces_.end()) return;
  Namespace& ns = *it->second;
  if (!ns.frozen) Quor::activityManager()->fdReadDel(ns.session->fd());
  emptied(ns.tables);
  emptied(ns.tables6);
  for (const Arp::Table::ArpKey& key : arp_.keysOf(ns.vrfId)) arp_.entryIs(key, std::nullopt);
  arp_.commit();
  vrfIds_.presentIs(vrf, false);
  vrfIds_.commit();
  namespaces_.erase(it);
  QTRACE(tracer, 1, "VRF " << vrf << " is gone, its tables are empty");
}

void TableMirror::onReadable(Namespace& ns) {
  try {
    ns.session->readSome(readQuantum);
  } catch (const std::system_error& e) {
    QTRACE(tracer, 0, "netlink of VRF " << ns.vrf << " failed, its tables stay as they are: " << e.what());
    Quor::activityManager()->fdReadDel(ns.session->fd());
    ns.frozen = true;
    return;
  }
  flush(ns);
}

void TableMirror::flush(Namespace& ns) {
  if (ns.session->dumping()) return;
  NamespaceRoutes::Changes changes = ns.model.takeChanges();
  if (changes.all) {
    syncAll(ns);
  } else {
    for (const Pelt::Prefix& prefix : changes.prefixes) routeIs(ns, ns.tables, prefix);
    for (const Pelt::Ip6AddrWithMask& prefix : changes.prefixes6) routeIs(ns, ns.tables6, prefix);
    for (const auto& key : changes.neighbours) neighbourIs(ns, key);
  }
  ns.tables.commit();
  ns.tables6.commit();
  arp_.commit();
  if (!sweptAbsent_) sweepAbsentVrfs();
}

template <class Tables>
void TableMirror::emptied(Tables& tables) {
  for (const auto& prefix : tables.prefixes()) tables.routeIs(prefix, std::nullopt);
  tables.sweepStaleFecs();
  tables.commit();
}

template <class Tables>
void TableMirror::syncRoutes(Namespace& ns, Tables& tables, const std::vector<typename Tables::Prefix>& kernel) {
  std::set<typename Tables::Prefix> prefixes(kernel.begin(), kernel.end());
  for (const auto& prefix : tables.prefixes()) prefixes.insert(prefix);
  for (const auto& prefix : prefixes) routeIs(ns, tables, prefix);
  tables.sweepStaleFecs();
}

void TableMirror::syncAll(Namespace& ns) {
  syncRoutes(ns, ns.tables, ns.model.prefixes());
  syncRoutes(ns, ns.tables6, ns.model.prefixes6());

  ns.arpKeys.clear();
  std::set<Arp::Table::ArpKey> written;
  for (const auto& key : ns.model.neighbours()) {
    neighbourIs(ns, key);
    if (auto it = ns.arpKeys.find(key); it != ns.arpKeys.end()) written.insert(it->second);
  }
  for (const Arp::Table::ArpKey& key : arp_.keysOf(ns.vrfId))
    if (!written.count(key)) arp_.entryIs(key, std::nullopt);
  QTRACE(tracer, 1, "VRF " << ns.vrf << " synchronised: " << ns.tables.routes() << " routes, " << ns.tables.fecs()
                           << " FECs, " << ns.tables6.routes() << " IPv6 routes, " << written.size()
                           << " neighbours");
}

template <class Tables>
void TableMirror::routeIs(Namespace& ns, Tables& tables, const typename Tables::Prefix& prefix) {
  try {
    tables.routeIs(prefix, ns.model.wantedRoute(prefix));
  } catch (const Quor::Exception& e) {
    QTRACE(tracer, 0, "route " << prefix << " of VRF " << ns.vrf << " not written: " << e.text());
  }
}

void TableMirror::neighbourIs(Namespace& ns, const NamespaceRoutes::NeighbourKey& key) {
  std::optional<Arp::Table::ArpEntry> wanted = ns.model.wantedNeighbour(key, ns.vrfId);
  auto old = ns.arpKeys.find(key);
  if (old != ns.arpKeys.end() && (!wanted || old->second != wanted->key())) arp_.entryIs(old->second, std::nullopt);
  if (wanted) {
    arp_.entryIs(wanted->key(), wanted);
    ns.arpKeys[key] = wanted->key();
  } else if (old != ns.arpKeys.end()) {
    ns.arpKeys.erase(old);
  }
}

void TableMirror::sweepAbsentVrfs() {
  for (const auto& [vrf, ns] : namespaces_)
    if (!ns->frozen && !ns->session->synchronised()) return;
  sweptAbsent_ = true;
  for (const L3::VrfName& vrf : vrfIds_.present()) {
    if (namespaces_.count(vrf)) continue;
    for (const Arp::Table::ArpKey& key : arp_.keysOf(vrfIds_.idOf(vrf))) arp_.entryIs(key, std::nullopt);
    vrfIds_.presentIs(vrf, false);
  }
  arp_.commit();
  vrfIds_.commit();
  QTRACE(tracer, 1, "every VRF synchronised");
}

}  // namespace Sources::Linux
