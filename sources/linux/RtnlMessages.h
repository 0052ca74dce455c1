#pragma once
// The kernel's objects as rtnetlink messages carry them, decoded with libmnl: links, addresses,
// nexthop objects, IPv4 routes and IPv4 neighbours. A decoder gives nothing for a message that is
// not of its kind or is malformed; whether the object came or went is the message's type
// (RTM_NEW... or RTM_DEL...).
#include <linux/netlink.h>

#include <array>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/pelt/EthAddr.h"
#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/Prefix.h"

namespace Sources::Linux {

struct KernelLink {
  S32 ifIndex = 0;
  std::string name;
  std::string kind;  // IFLA_INFO_KIND ("veth", "vlan", "bond", ...), empty for a physical device
  U16 type = 0;      // ARPHRD_*
  U32 flags = 0;     // IFF_*
};
std::optional<KernelLink> decodeLink(const nlmsghdr& message);

struct KernelAddr {
  S32 ifIndex = 0;
  U8 family = 0;  // AF_INET or AF_INET6
  std::array<U8, 16> bytes{};  // the first 4 for IPv4
  U8 prefixLen = 0;
  U8 scope = 0;   // RT_SCOPE_*
  U32 flags = 0;  // IFA_F_*
};
std::optional<KernelAddr> decodeAddr(const nlmsghdr& message);

template <class Addr>
struct BasicKernelNextHop {
  Addr gateway;     // the zero address for a directly connected next hop
  S32 ifIndex = 0;  // 0 when the kernel names no device
  friend bool operator<(const BasicKernelNextHop& a, const BasicKernelNextHop& b) noexcept {
    return a.gateway == b.gateway ? a.ifIndex < b.ifIndex : a.gateway < b.gateway;
  }
  friend bool operator==(const BasicKernelNextHop&, const BasicKernelNextHop&) = default;
};
using KernelNextHop = BasicKernelNextHop<Pelt::IpAddr>;

// A nexthop object (ip nexthop): one next hop, a group of them (ECMP), or a blackhole. Routes name
// it by id (RTA_NH_ID) instead of carrying their next hops.
struct KernelNexthopObject {
  U32 id = 0;
  S32 ifIndex = 0;  // the device of one next hop; 0 for a group or blackhole
  std::variant<std::monostate, Pelt::IpAddr, Pelt::Ip6Addr> gateway;  // none for a device's own
  bool blackhole = false;
  std::vector<U32> members;  // a group's member ids, in the kernel's order; weights dropped
  bool isGroup() const noexcept { return !members.empty(); }
};
std::optional<KernelNexthopObject> decodeNexthop(const nlmsghdr& message);

template <class Prefix, class Addr>
struct BasicKernelRoute {
  using NextHop = BasicKernelNextHop<Addr>;
  Prefix prefix;
  U8 tos = 0;
  U32 table = 0;     // RT_TABLE_*
  U32 priority = 0;  // the metric
  U8 protocol = 0;   // RTPROT_*
  U8 type = 0;       // RTN_*
  U32 nexthopId = 0;  // the nexthop object that holds its next hops (RTA_NH_ID), 0 for none
  // One per path as the message carries them; next hops by a gateway of the other family are left
  // out. A route by nexthop object carries them too while net.ipv4.nexthop_compat_mode is 1, and
  // never after a change of the object: its next hops are the object's.
  std::vector<NextHop> nextHops;
};
using KernelRoute = BasicKernelRoute<Pelt::Prefix, Pelt::IpAddr>;
using KernelRoute6 = BasicKernelRoute<Pelt::Ip6AddrWithMask, Pelt::Ip6Addr>;
// IPv4 routes, and IPv6 routes.
std::optional<KernelRoute> decodeRoute(const nlmsghdr& message);
std::optional<KernelRoute6> decodeRoute6(const nlmsghdr& message);

struct KernelNeigh {
  S32 ifIndex = 0;
  Pelt::IpAddr addr;
  std::optional<Pelt::EthAddr> lladdr;  // absent unless the entry has a 6-byte hardware address
  U16 state = 0;                        // NUD_*
};
// IPv4 neighbours only.
std::optional<KernelNeigh> decodeNeigh(const nlmsghdr& message);

}  // namespace Sources::Linux
