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

void addHop(const KernelNexthopObject& object, std::vector<KernelNextHop>& hops) {
  if (object.blackhole || object.ipv6Gateway || object.isGroup()) return;
  hops.push_back({object.gateway.value_or(Pelt::IpAddr()), object.ifIndex});
}

}  // namespace

std::optional<WantedRoute> NamespaceRoutes::wantedRoute(const Pelt::Prefix& prefix) const {
  auto it = routes_.find(prefix);
  if (it == routes_.end() || it->second.empty()) return std::nullopt;
  const KernelRoute& best = it->second.begin()->second;
  const std::optional<std::vector<KernelNextHop>> hops = hopsOf(best);
  if (!hops) {
    QTRACE(tracer, 2, prefix << " in VRF " << vrf_ << " waits for nexthop object " << best.nexthopId);
    return std::nullopt;
  }
  WantedRoute wanted;
  wanted.route.prefix = prefix;
  wanted.route.metric = Routing::RouteMetric(best.priority);
  wanted.route.routeType = routeTypeOf(best);
  wanted.route.preference = preferenceOf(wanted.route.routeType);
  for (const KernelNextHop& hop : *hops) {
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
  nexthops_.clear();
  nexthopUsers_.clear();
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
    case RTM_NEWNEXTHOP:
    case RTM_DELNEXTHOP:
      if (auto object = decodeNexthop(message)) handleNexthop(*object, message.nlmsg_type == RTM_NEWNEXTHOP);
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
  for (const auto& [prefix, routes] : routes_)
    for (const auto& [key, route] : routes) {
      const auto hops = hopsOf(route);
      if (hops && std::any_of(hops->begin(), hops->end(),
                              [&](const KernelNextHop& hop) { return hop.ifIndex == link.ifIndex; }))
        changes_.prefixes.insert(prefix);
    }
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
  if (auto users = nexthopUsers_.extract(id)) {
    for (const Pelt::Prefix& prefix : users.mapped()) {
      auto it = routes_.find(prefix);
      if (it == routes_.end()) continue;
      std::erase_if(it->second, [id](const auto& entry) { return entry.second.nexthopId == id; });
      if (it->second.empty()) routes_.erase(it);
      changes_.prefixes.insert(prefix);
    }
  }
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
  if (auto it = nexthopUsers_.find(id); it != nexthopUsers_.end())
    changes_.prefixes.insert(it->second.begin(), it->second.end());
}

void NamespaceRoutes::handleRoute(const KernelRoute& route, bool present) {
  if (route.table != RT_TABLE_MAIN) return;
  const RouteKey key{route.priority, route.tos};
  if (present) {
    auto& routes = routes_[route.prefix];
    auto it = routes.find(key);
    const U32 before = it == routes.end() ? 0 : it->second.nexthopId;
    routes[key] = route;
    if (before != route.nexthopId) releaseNexthop(before, route.prefix);
    if (route.nexthopId != 0) nexthopUsers_[route.nexthopId].insert(route.prefix);
  } else {
    auto it = routes_.find(route.prefix);
    if (it == routes_.end()) return;
    auto old = it->second.find(key);
    if (old != it->second.end()) {
      const U32 before = old->second.nexthopId;
      it->second.erase(old);
      releaseNexthop(before, route.prefix);
    }
    if (it->second.empty()) routes_.erase(it);
  }
  changes_.prefixes.insert(route.prefix);
}

std::optional<std::vector<KernelNextHop>> NamespaceRoutes::hopsOf(const KernelRoute& route) const {
  if (route.nexthopId == 0) return route.nextHops;
  auto it = nexthops_.find(route.nexthopId);
  if (it == nexthops_.end()) return std::nullopt;
  std::vector<KernelNextHop> hops;
  const KernelNexthopObject& object = it->second;
  if (!object.isGroup()) addHop(object, hops);
  for (U32 member : object.members)
    if (auto m = nexthops_.find(member); m != nexthops_.end()) addHop(m->second, hops);
  return hops;
}

void NamespaceRoutes::releaseNexthop(U32 id, const Pelt::Prefix& prefix) {
  if (id == 0) return;
  if (auto it = routes_.find(prefix); it != routes_.end())
    for (const auto& [key, route] : it->second)
      if (route.nexthopId == id) return;
  auto users = nexthopUsers_.find(id);
  if (users == nexthopUsers_.end()) return;
  users->second.erase(prefix);
  if (users->second.empty()) nexthopUsers_.erase(users);
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
