#include "sources/linux/NamespaceRoutes.h"

#include <linux/neighbour.h>
#include <linux/rtnetlink.h>

#include <algorithm>

#include "sources/linux/KernelNames.h"

namespace Sources::Linux {

std::optional<WantedRoute> NamespaceRoutes::wantedRoute(const Pelt::Prefix& prefix) const {
  return wantedOf<WantedRoute>(routes_, prefix);
}

std::optional<WantedRoute6> NamespaceRoutes::wantedRoute(const Pelt::Ip6AddrWithMask& prefix) const {
  return wantedOf<WantedRoute6>(routes6_, prefix);
}

template <class Wanted, class Route>
std::optional<Wanted> NamespaceRoutes::wantedOf(const Routes<Route>& routes, const decltype(Route::prefix)& prefix) const {
  using Via = typename decltype(Wanted::vias)::value_type;
  auto it = routes.find(prefix);
  if (it == routes.end() || it->second.empty()) return std::nullopt;
  const Route& best = it->second.begin()->second;
  Wanted wanted;
  wanted.route.prefix = prefix;
  wanted.route.metric = Routing::RouteMetric(best.priority);
  wanted.route.routeType = routeTypeOf(best);
  wanted.route.preference = preferenceOf(wanted.route.routeType);
  for (const auto& hop : best.nextHops) {
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
  for (const auto& entry : routes_) all.push_back(entry.first);
  return all;
}

std::vector<Pelt::Ip6AddrWithMask> NamespaceRoutes::prefixes6() const {
  std::vector<Pelt::Ip6AddrWithMask> all;
  for (const auto& entry : routes6_) all.push_back(entry.first);
  return all;
}

std::vector<NamespaceRoutes::NeighbourKey> NamespaceRoutes::neighbours() const {
  std::vector<NeighbourKey> all;
  for (const auto& entry : neighbours_) all.push_back(entry.first);
  return all;
}

void NamespaceRoutes::resyncBegins() {
  links_.clear();
  routes_.clear();
  routes6_.clear();
  neighbours_.clear();
  changes_ = Changes{true, {}, {}, {}};
}

void NamespaceRoutes::message(const nlmsghdr& message) {
  switch (message.nlmsg_type) {
    case RTM_NEWLINK:
    case RTM_DELLINK:
      if (auto link = decodeLink(message)) handleLink(*link, message.nlmsg_type == RTM_NEWLINK);
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
  auto it = links_.find(link.ifIndex);
  const bool renamed = present ? it == links_.end() || it->second != link.name : it != links_.end();
  if (!renamed) return;
  if (present)
    links_[link.ifIndex] = link.name;
  else
    links_.erase(it);
  // The names in FECs and ARP entries of this link change with it.
  changedWithLink(routes_, link.ifIndex, changes_.prefixes);
  changedWithLink(routes6_, link.ifIndex, changes_.prefixes6);
  for (const auto& [key, neighbour] : neighbours_)
    if (key.first == link.ifIndex) changes_.neighbours.insert(key);
}

template <class Route>
void NamespaceRoutes::changedWithLink(const Routes<Route>& routes, S32 ifIndex,
                                      std::set<decltype(Route::prefix)>& changed) {
  for (const auto& [prefix, ofPrefix] : routes)
    for (const auto& [key, route] : ofPrefix)
      if (std::any_of(route.nextHops.begin(), route.nextHops.end(),
                      [&](const auto& hop) { return hop.ifIndex == ifIndex; }))
        changed.insert(prefix);
}

template <class Route>
void NamespaceRoutes::handleRoute(Routes<Route>& routes, std::set<decltype(Route::prefix)>& changed,
                                  const Route& route, bool present) {
  if (route.table != RT_TABLE_MAIN) return;
  const RouteKey key{route.priority, route.tos};
  if (present) {
    routes[route.prefix][key] = route;
  } else {
    auto it = routes.find(route.prefix);
    if (it == routes.end()) return;
    it->second.erase(key);
    if (it->second.empty()) routes.erase(it);
  }
  changed.insert(route.prefix);
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
