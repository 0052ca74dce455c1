#pragma once
// The IPv4 and IPv6 routes of the main table and the IPv4 neighbours of one namespace, with the names
// of its links and its nexthop objects, kept from the messages of an RtnlSession, and what they make
// in the tables.
//
// The kernel may hold several routes for one prefix (different metrics or TOS); the table holds one
// per prefix: the one the kernel prefers, of the lowest metric, then the lowest TOS. A neighbour
// counts when it has a hardware address and is neither incomplete nor failed; a permanent one is
// static. Changes are collected as the prefixes and neighbours they touch, for the writer to
// recompute; a resynchronisation asks it to recompute everything.
//
// Nexthop objects. A route that names one (as FRR's zebra installs its routes) takes its next hops
// from the object, whatever it carries inline: with net.ipv4.nexthop_compat_mode at 0 it carries
// none, and at 1 the kernel does not send it again when its object changes. A group gives one next
// hop per member, in the group's order; weights are dropped, as a FEC has none. A route whose object
// is not known has no entry in the table until the object comes. The kernel drops some things
// without a message, and the model drops them in the same way (deliberately: nothing else would
// tell): a nexthop object that is deleted takes the routes that name it and leaves the groups that
// hold it, a group left empty going too; a link that goes down, loses its carrier or goes away
// takes the nexthop objects on it.
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
  // The routes of one family by prefix, and the prefixes that have a route naming each nexthop object.
  template <class Route>
  struct Family {
    using Prefix = decltype(Route::prefix);
    std::map<Prefix, std::map<RouteKey, Route>> routes;
    std::map<U32, std::set<Prefix>> nexthopUsers;
  };
  // Calls visit(family, changed prefixes of that family) for each family.
  template <class Visit>
  void forEachFamily(Visit visit) {
    visit(routes_, changes_.prefixes);
    visit(routes6_, changes_.prefixes6);
  }
  template <class Wanted, class Route>
  std::optional<Wanted> wantedOf(const Family<Route>& family, const decltype(Route::prefix)& prefix) const;
  // The next hops of `route`; nothing while the nexthop object it names is unknown.
  template <class Route>
  std::optional<std::vector<typename Route::NextHop>> hopsOf(const Route& route) const;
  template <class Route>
  void handleRoute(Family<Route>& family, std::set<decltype(Route::prefix)>& changed, const Route& route,
                   bool present);
  // Keeps a family's nexthopUsers in step when a route of `prefix` stops naming object `id`.
  template <class Route>
  static void releaseNexthop(Family<Route>& family, U32 id, const decltype(Route::prefix)& prefix);
  void handleLink(const KernelLink& link, bool present);
  void handleNexthop(const KernelNexthopObject& object, bool present);
  void handleNeighbour(const KernelNeigh& neighbour, bool present);
  // Forgets object `id` as the kernel does when it goes (see above).
  void dropNexthop(U32 id);
  // Marks the prefixes whose next hops come from object `id`, through a group or not.
  void markNexthopUsers(U32 id);
  void markUsers(U32 id);
  Pelt::IntfId nameOf(S32 ifIndex) const;

  L3::VrfName vrf_;
  std::map<S32, std::string> links_;
  std::map<U32, KernelNexthopObject> nexthops_;
  Family<KernelRoute> routes_;
  Family<KernelRoute6> routes6_;
  std::map<NeighbourKey, KernelNeigh> neighbours_;
  Changes changes_;
};

}  // namespace Sources::Linux
