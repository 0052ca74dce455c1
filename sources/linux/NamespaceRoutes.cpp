#include "sources/linux/NamespaceRoutes.h"

#include <linux/neighbour.h>
#include <linux/rtnetlink.h>

#include <algorithm>

#include "sources/linux/KernelNames.h"

namespace Sources::Linux {

std::optional<WantedRoute> NamespaceRoutes::wantedRoute(const Pelt::Prefix& prefix) const {
  auto it = routes_.find(prefix);
  if (it == routes_.end() || it->second.empty()) return std::nullopt;
  const KernelRoute& best = it->second.begin()->second;
  WantedRoute wanted;
  wanted.route.prefix = prefix;
  wanted.route.metric = Routing::RouteMetric(best.priority);
  wanted.route.routeType = routeTypeOf(best);
  wanted.route.preference = preferenceOf(wanted.route.routeType);
  for (const KernelNextHop& hop : best.nextHops) {
    if (wanted.vias.size() == Tarn::Fib::Fec::maxVias) break;
    wanted.vias.push_back(Tarn::Fib::Via{hop.gateway, nameOf(hop.ifIndex)});
  }
  std::sort(wanted.vias.begin(), wanted.vias.end(), [](const Tarn::Fib::Via& a, const Tarn::Fib::Via& b) {
    return a.hop != b.hop ? a.hop < b.hop : a.intfId < b.intfId;
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

std::vector<NamespaceRoutes::NeighbourKey> NamespaceRoutes::neighbours() const {
  std::vector<NeighbourKey> all;
  for (const auto& entry : neighbours_) all.push_back(entry.first);
  return all;
}

void NamespaceRoutes::resyncBegins() {
  links_.clear();
  routes_.clear();
  neighbours_.clear();
  changes_ = Changes{true, {}, {}};
}

void NamespaceRoutes::message(const nlmsghdr& message) {
  switch (message.nlmsg_type) {
    case RTM_NEWLINK:
    case RTM_DELLINK:
      if (auto link = decodeLink(message)) handleLink(*link, message.nlmsg_type == RTM_NEWLINK);
      break;
    case RTM_NEWROUTE:
    case RTM_DELROUTE:
      if (auto route = decodeRoute(message)) handleRoute(*route, message.nlmsg_type == RTM_NEWROUTE);
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
  for (const auto& [prefix, routes] : routes_)
    for (const auto& [key, route] : routes)
      if (std::any_of(route.nextHops.begin(), route.nextHops.end(),
                      [&](const KernelNextHop& hop) { return hop.ifIndex == link.ifIndex; }))
        changes_.prefixes.insert(prefix);
  for (const auto& [key, neighbour] : neighbours_)
    if (key.first == link.ifIndex) changes_.neighbours.insert(key);
}

void NamespaceRoutes::handleRoute(const KernelRoute& route, bool present) {
  if (route.table != RT_TABLE_MAIN) return;
  const RouteKey key{route.priority, route.tos};
  if (present) {
    routes_[route.prefix][key] = route;
  } else {
    auto it = routes_.find(route.prefix);
    if (it == routes_.end()) return;
    it->second.erase(key);
    if (it->second.empty()) routes_.erase(it);
  }
  changes_.prefixes.insert(route.prefix);
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
