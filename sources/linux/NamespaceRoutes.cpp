#include "sources/linux/NamespaceRoutes.h"

#include <linux/if.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>

#include <algorithm>

#include "platform/quor/Trace.h"
#include "sources/linux/KernelNames.h"

namespace Sources::Linux {

namespace {

const Quor::Tracer tracer("Linux", "NamespaceRoutes");

// Whether the kernel keeps the nexthop objects of a link in this state: it drops them when the link
// goes down or loses its carrier.
bool keepsNexthops(const KernelLink& link) {
  return (link.flags & IFF_UP) && (link.flags & (IFF_RUNNING | IFF_LOWER_UP));
}

// The next hop of a single object for a route of the family of `Addr`: none for a blackhole, a group
// or a gateway of the other family.
template <class Addr>
void addHop(const KernelNexthopObject& object, std::vector<BasicKernelNextHop<Addr>>& hops) {
  if (object.blackhole || object.isGroup()) return;
  if (std::holds_alternative<std::monostate>(object.gateway))
    hops.push_back({Addr(), object.ifIndex});
  else if (const Addr* gateway = std::get_if<Addr>(&object.gateway))
    hops.push_back({*gateway, object.ifIndex});
}

}  // namespace

std::optional<WantedRoute> NamespaceRoutes::wantedRoute(const Pelt::Prefix& prefix) const {
  return wantedOf<WantedRoute>(routes_, prefix);
}

std::optional<WantedRoute6> NamespaceRoutes::wantedRoute(const Pelt::Ip6AddrWithMask& prefix) const {
  return wantedOf<WantedRoute6>(routes6_, prefix);
}

template <class Wanted, class Route>
std::optional<Wanted> NamespaceRoutes::wantedOf(const Family<Route>& family,
                                                const decltype(Route::prefix)& prefix) const {
  using Via = typename decltype(Wanted::vias)::value_type;
  auto it = family.routes.find(prefix);
  if (it == family.routes.end() || it->second.empty()) return std::nullopt;
  const Route& best = it->second.begin()->second;
  const auto hops = hopsOf(best);
  if (!hops) {
    QTRACE(tracer, 2, prefix << " in VRF " << vrf_ << " waits for nexthop object " << best.nexthopId);
    return std::nullopt;
  }
  Wanted wanted;
  wanted.route.prefix = prefix;
  wanted.route.metric = Routing::RouteMetric(best.priority);
  wanted.route.routeType = routeTypeOf(best);
  wanted.route.preference = preferenceOf(wanted.route.routeType);
  for (const auto& hop : *hops) {
    if (wanted.vias.size() == Tarn::Fib::Fec::maxVias) break;
    wanted.vias.push_back(Via{hop.gateway, nameOf(hop.ifIndex)});
  }
  std::sort(wanted.vias.begin(), wanted.vias.end(), [](const Via& a, const Via& b) {
    return !(a.hop == b.hop) ? a.hop < b.hop : a.intfId < b.intfId;
  });
  return wanted;
}

std::optional<Arp::Table::ArpEntry> NamespaceRoutes::wantedNeighbour(const NeighbourKey& key,
                                                                     Vrf::VrfIdMap::VrfId vrfId) const {
  auto it = neighbours_.find(key);
  if (it == neighbours_.end()) return std::nullopt;
  const KernelNeigh& n = it->second;
  Pelt::IntfId intf = nameOf(n.ifIndex);
  if (!n.lladdr || !intf || (n.state & (NUD_INCOMPLETE | NUD_FAILED | NUD_NOARP)) || n.state == NUD_NONE)
    return std::nullopt;
  return Arp::Table::ArpEntry{vrfId, intf, n.addr, *n.lladdr, (n.state & NUD_PERMANENT) != 0};
}

std::vector<Pelt::Prefix> NamespaceRoutes::prefixes() const {
  std::vector<Pelt::Prefix> all;
  for (const auto& entry : routes_.routes) all.push_back(entry.first);
  return all;
}

std::vector<Pelt::Ip6AddrWithMask> NamespaceRoutes::prefixes6() const {
  std::vector<Pelt::Ip6AddrWithMask> all;
  for (const auto& entry : routes6_.routes) all.push_back(entry.first);
  return all;
}

std::vector<NamespaceRoutes::NeighbourKey> NamespaceRoutes::neighbours() const {
  std::vector<NeighbourKey> all;
  for (const auto& entry : neighbours_) all.push_back(entry.first);
  return all;
}

void NamespaceRoutes::resyncBegins() {
  links_.clear();
  nexthops_.clear();
  routes_ = {};
  routes6_ = {};
  neighbours_.clear();
  changes_ = Changes{true, {}, {}, {}};
}

void NamespaceRoutes::message(const nlmsghdr& message) {
  switch (message.nlmsg_type) {
    case RTM_NEWLINK:
    case RTM_DELLINK:
      if (auto link = decodeLink(message)) handleLink(*link, message.nlmsg_type == RTM_NEWLINK);
      break;
    case RTM_NEWNEXTHOP:
    case RTM_DELNEXTHOP:
      if (auto object = decodeNexthop(message)) handleNexthop(*object, message.nlmsg_type == RTM_NEWNEXTHOP);
      break;
    case RTM_NEWROUTE:
    case RTM_DELROUTE:
      if (auto route = decodeRoute(message))
        handleRoute(routes_, changes_.prefixes, *route, message.nlmsg_type == RTM_NEWROUTE);
      else if (auto route6 = decodeRoute6(message))
        handleRoute(routes6_, changes_.prefixes6, *route6, message.nlmsg_type == RTM_NEWROUTE);
      break;
    case RTM_NEWNEIGH:
    case RTM_DELNEIGH:
      if (auto neighbour = decodeNeigh(message)) handleNeighbour(*neighbour, message.nlmsg_type == RTM_NEWNEIGH);
      break;
    default: break;
  }
}

void NamespaceRoutes::handleLink(const KernelLink& link, bool present) {
  if (!present || !keepsNexthops(link)) {
    std::vector<U32> onLink;
    for (const auto& [id, object] : nexthops_)
      if (!object.isGroup() && !object.blackhole && object.ifIndex == link.ifIndex) onLink.push_back(id);
    for (U32 id : onLink) dropNexthop(id);
  }
  auto it = links_.find(link.ifIndex);
  const bool renamed = present ? it == links_.end() || it->second != link.name : it != links_.end();
  if (!renamed) return;
  if (present)
    links_[link.ifIndex] = link.name;
  else
    links_.erase(it);
  // The names in FECs and ARP entries of this link change with it.
  forEachFamily([&](const auto& family, auto& changed) {
    for (const auto& [prefix, routes] : family.routes)
      for (const auto& [key, route] : routes) {
        const auto hops = hopsOf(route);
        if (hops && std::any_of(hops->begin(), hops->end(), [&](const auto& hop) { return hop.ifIndex == link.ifIndex; }))
          changed.insert(prefix);
      }
  });
  for (const auto& [key, neighbour] : neighbours_)
    if (key.first == link.ifIndex) changes_.neighbours.insert(key);
}

void NamespaceRoutes::handleNexthop(const KernelNexthopObject& object, bool present) {
  if (!present) {
    dropNexthop(object.id);
    return;
  }
  // A dump lists groups before members of higher ids; an event's members are always known.
  for (U32 member : object.members) {
    auto it = nexthops_.find(member);
    if (!changes_.all && (it == nexthops_.end() || it->second.isGroup()))
      QTRACE(tracer, 1, "group " << object.id << " in VRF " << vrf_ << " holds " << member
                                 << ", not a known nexthop: that member is left out");
  }
  nexthops_[object.id] = object;
  markNexthopUsers(object.id);
}

void NamespaceRoutes::dropNexthop(U32 id) {
  nexthops_.erase(id);
  // Its routes go with it: the kernel deletes them without a word when the compat mode is 0.
  forEachFamily([&](auto& family, auto& changed) {
    auto users = family.nexthopUsers.extract(id);
    if (!users) return;
    for (const auto& prefix : users.mapped()) {
      auto it = family.routes.find(prefix);
      if (it == family.routes.end()) continue;
      std::erase_if(it->second, [id](const auto& entry) { return entry.second.nexthopId == id; });
      if (it->second.empty()) family.routes.erase(it);
      changed.insert(prefix);
    }
  });
  std::vector<U32> emptied;
  for (auto& [groupId, group] : nexthops_) {
    if (!group.isGroup() || std::erase(group.members, id) == 0) continue;
    if (group.members.empty())
      emptied.push_back(groupId);
    else
      markUsers(groupId);
  }
  for (U32 groupId : emptied) dropNexthop(groupId);
}

void NamespaceRoutes::markNexthopUsers(U32 id) {
  if (changes_.all) return;  // a dump under way: everything is recomputed anyway
  markUsers(id);
  // Objects are few beside routes and change seldom: the groups are found by looking at each.
  for (const auto& [groupId, group] : nexthops_)
    if (std::find(group.members.begin(), group.members.end(), id) != group.members.end()) markUsers(groupId);
}

void NamespaceRoutes::markUsers(U32 id) {
  forEachFamily([id](const auto& family, auto& changed) {
    if (auto it = family.nexthopUsers.find(id); it != family.nexthopUsers.end())
      changed.insert(it->second.begin(), it->second.end());
  });
}

template <class Route>
void NamespaceRoutes::handleRoute(Family<Route>& family, std::set<decltype(Route::prefix)>& changed,
                                  const Route& route, bool present) {
  if (route.table != RT_TABLE_MAIN) return;
  const RouteKey key{route.priority, route.tos};
  if (present) {
    auto& routes = family.routes[route.prefix];
    auto it = routes.find(key);
    const U32 before = it == routes.end() ? 0 : it->second.nexthopId;
    routes[key] = route;
    if (before != route.nexthopId) releaseNexthop(family, before, route.prefix);
    if (route.nexthopId != 0) family.nexthopUsers[route.nexthopId].insert(route.prefix);
  } else {
    auto it = family.routes.find(route.prefix);
    if (it == family.routes.end()) return;
    auto old = it->second.find(key);
    if (old != it->second.end()) {
      const U32 before = old->second.nexthopId;
      it->second.erase(old);
      releaseNexthop(family, before, route.prefix);
    }
    if (it->second.empty()) family.routes.erase(it);
  }
  changed.insert(route.prefix);
}

template <class Route>
std::optional<std::vector<typename Route::NextHop>> NamespaceRoutes::hopsOf(const Route& route) const {
  if (route.nexthopId == 0) return route.nextHops;
  auto it = nexthops_.find(route.nexthopId);
  if (it == nexthops_.end()) return std::nullopt;
  std::vector<typename Route::NextHop> hops;
  const KernelNexthopObject& object = it->second;
  if (!object.isGroup()) addHop(object, hops);
  for (U32 member : object.members)
    if (auto m = nexthops_.find(member); m != nexthops_.end()) addHop(m->second, hops);
  return hops;
}

template <class Route>
void NamespaceRoutes::releaseNexthop(Family<Route>& family, U32 id, const decltype(Route::prefix)& prefix) {
  if (id == 0) return;
  if (auto it = family.routes.find(prefix); it != family.routes.end())
    for (const auto& [key, route] : it->second)
      if (route.nexthopId == id) return;
  auto users = family.nexthopUsers.find(id);
  if (users == family.nexthopUsers.end()) return;
  users->second.erase(prefix);
  if (users->second.empty()) family.nexthopUsers.erase(users);
}

void NamespaceRoutes::handleNeighbour(const KernelNeigh& neighbour, bool present) {
  const NeighbourKey key{neighbour.ifIndex, neighbour.addr};
  if (present)
    neighbours_[key] = neighbour;
  else
    neighbours_.erase(key);
  changes_.neighbours.insert(key);
}

Pelt::IntfId NamespaceRoutes::nameOf(S32 ifIndex) const {
  auto it = links_.find(ifIndex);
  return it == links_.end() ? Pelt::IntfId() : qualifiedIntfName(vrf_, it->second);
}

}  // namespace Sources::Linux
