#pragma once
// The IPv4 and IPv6 routes of the main table and the IPv4 neighbours of one namespace, with the names
// of its links, kept from the messages of an RtnlSession, and what they make in the tables.
//
// The kernel may hold several routes for one prefix (different metrics or TOS); the table holds one
// per prefix: the one the kernel prefers, of the lowest metric, then the lowest TOS. A neighbour
// counts when it has a hardware address and is neither incomplete nor failed; a permanent one is
// static. Changes are collected as the prefixes and neighbours they touch, for the writer to
// recompute; a resynchronisation asks it to recompute everything.
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/pelt/VrfId.h"
#include "platform/pelt/VrfName.h"
#include "platform/tarn/ArpEntry.h"
#include "sources/linux/RouteTables.h"
#include "sources/linux/RtnlMessages.h"
#include "sources/linux/RtnlSession.h"

namespace Sources::Linux {

class NamespaceRoutes final : public RtnlSession::Handler {
 public:
  using NeighbourKey = std::pair<S32, Pelt::IpAddr>;  // ifIndex, address
  struct Changes {
    bool all = false;  // everything is to be recomputed
    std::set<Pelt::Prefix> prefixes;
    std::set<Pelt::Ip6AddrWithMask> prefixes6;
    std::set<NeighbourKey> neighbours;
  };

  // `vrf` names the interfaces (see KernelNames.h).
  explicit NamespaceRoutes(L3::VrfName vrf) : vrf_(std::move(vrf)) {}

  // What changed since the last call.
  Changes takeChanges() { return std::exchange(changes_, Changes()); }
  // The route table's entry of `prefix`, nothing when the kernel has no route for it.
  std::optional<WantedRoute> wantedRoute(const Pelt::Prefix& prefix) const;
  std::optional<WantedRoute6> wantedRoute(const Pelt::Ip6AddrWithMask& prefix) const;
  // The ARP table's entry of a neighbour, nothing when it does not count.
  std::optional<Arp::Table::ArpEntry> wantedNeighbour(const NeighbourKey& key, Vrf::VrfIdMap::VrfId vrfId) const;
  std::vector<Pelt::Prefix> prefixes() const;
  std::vector<Pelt::Ip6AddrWithMask> prefixes6() const;
  std::vector<NeighbourKey> neighbours() const;

  void resyncBegins() override;
  void message(const nlmsghdr& message) override;
  void dumpsDone() override {}

 private:
  using RouteKey = std::pair<U32, U8>;  // metric, TOS: the kernel's preference among routes of a prefix
  template <class Route>
  using Routes = std::map<decltype(Route::prefix), std::map<RouteKey, Route>>;
  template <class Wanted, class Route>
  std::optional<Wanted> wantedOf(const Routes<Route>& routes, const decltype(Route::prefix)& prefix) const;
  // Notes the prefixes of `routes` that have a next hop on the link `ifIndex`.
  template <class Route>
  static void changedWithLink(const Routes<Route>& routes, S32 ifIndex, std::set<decltype(Route::prefix)>& changed);
  template <class Route>
  static void handleRoute(Routes<Route>& routes, std::set<decltype(Route::prefix)>& changed, const Route& route,
                          bool present);
  void handleLink(const KernelLink& link, bool present);
  void handleNeighbour(const KernelNeigh& neighbour, bool present);
  Pelt::IntfId nameOf(S32 ifIndex) const;

  L3::VrfName vrf_;
  std::map<S32, std::string> links_;
  Routes<KernelRoute> routes_;
  Routes<KernelRoute6> routes6_;
  std::map<NeighbourKey, KernelNeigh> neighbours_;
  Changes changes_;
};

}  // namespace Sources::Linux
