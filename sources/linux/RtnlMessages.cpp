#include "sources/linux/RtnlMessages.h"

#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/neighbour.h>
#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <cstring>

namespace Sources::Linux {

namespace {

// The attributes of one level, indexed by type; types beyond `Max` are ignored.
template <int Max>
struct Attributes {
  std::array<const nlattr*, Max + 1> at{};

  static int collect(const nlattr* attr, void* data) {
    auto* self = static_cast<Attributes*>(data);
    int type = mnl_attr_get_type(attr);
    if (type <= Max) self->at[static_cast<std::size_t>(type)] = attr;
    return MNL_CB_OK;
  }
  bool parse(const nlmsghdr& message, std::size_t headerSize) {
    return mnl_attr_parse(&message, static_cast<unsigned>(headerSize), collect, this) >= 0;
  }
  bool parseNested(const nlattr* nest) { return mnl_attr_parse_nested(nest, collect, this) >= 0; }
  bool parsePayload(const void* payload, std::size_t length) {
    return mnl_attr_parse_payload(payload, length, collect, this) >= 0;
  }
  const nlattr* operator[](int type) const { return at[static_cast<std::size_t>(type)]; }
};

template <class Header>
const Header* headerOf(const nlmsghdr& message) {
  if (message.nlmsg_len < mnl_nlmsg_size(sizeof(Header))) return nullptr;
  return static_cast<const Header*>(mnl_nlmsg_get_payload(&message));
}

// A payload of exactly `size` bytes, or null.
const void* payloadOf(const nlattr* attr, std::size_t size) {
  if (!attr || mnl_attr_get_payload_len(attr) != size) return nullptr;
  return mnl_attr_get_payload(attr);
}

std::optional<Pelt::IpAddr> ipv4Of(const nlattr* attr) {
  const void* bytes = payloadOf(attr, 4);
  if (!bytes) return std::nullopt;
  U32 value;
  std::memcpy(&value, bytes, 4);
  return Pelt::IpAddr::fromNetworkOrder(value);
}

std::optional<Pelt::Ip6Addr> ipv6Of(const nlattr* attr) {
  const void* bytes = payloadOf(attr, 16);
  if (!bytes) return std::nullopt;
  return Pelt::Ip6Addr::fromBytes(static_cast<const U8*>(bytes));
}

// What differs between the families' route messages.
template <class Route>
struct RouteFamily;
template <>
struct RouteFamily<KernelRoute> {
  static constexpr int family = AF_INET;
  static constexpr unsigned maxLength = 32;
  static std::optional<Pelt::IpAddr> addressOf(const nlattr* attr) { return ipv4Of(attr); }
};
template <>
struct RouteFamily<KernelRoute6> {
  static constexpr int family = AF_INET6;
  static constexpr unsigned maxLength = 128;
  static std::optional<Pelt::Ip6Addr> addressOf(const nlattr* attr) { return ipv6Of(attr); }
};

template <class Route>
std::optional<Route> decodeRouteOf(const nlmsghdr& message) {
  using Family = RouteFamily<Route>;
  using Addr = decltype(Route::NextHop::gateway);
  if (message.nlmsg_type != RTM_NEWROUTE && message.nlmsg_type != RTM_DELROUTE) return std::nullopt;
  const auto* rtm = headerOf<rtmsg>(message);
  Attributes<RTA_MAX> attrs;
  if (!rtm || rtm->rtm_family != Family::family || rtm->rtm_dst_len > Family::maxLength ||
      !attrs.parse(message, sizeof *rtm))
    return std::nullopt;
  Route route;
  Addr dst;
  if (attrs[RTA_DST]) {
    auto parsed = Family::addressOf(attrs[RTA_DST]);
    if (!parsed) return std::nullopt;
    dst = *parsed;
  }
  route.prefix = decltype(route.prefix)(dst, rtm->rtm_dst_len);
  route.tos = rtm->rtm_tos;
  route.table = rtm->rtm_table;
  if (const void* table = payloadOf(attrs[RTA_TABLE], sizeof(U32))) std::memcpy(&route.table, table, sizeof(U32));
  if (const void* priority = payloadOf(attrs[RTA_PRIORITY], sizeof(U32)))
    std::memcpy(&route.priority, priority, sizeof(U32));
  route.protocol = rtm->rtm_protocol;
  route.type = rtm->rtm_type;
  if (const void* id = payloadOf(attrs[RTA_NH_ID], sizeof(U32))) std::memcpy(&route.nexthopId, id, sizeof(U32));

  if (const nlattr* multipath = attrs[RTA_MULTIPATH]) {
    const auto* hop = static_cast<const rtnexthop*>(mnl_attr_get_payload(multipath));
    int left = static_cast<int>(mnl_attr_get_payload_len(multipath));
    for (; RTNH_OK(hop, left); left -= NLMSG_ALIGN(hop->rtnh_len), hop = RTNH_NEXT(hop)) {
      Attributes<RTA_MAX> hopAttrs;
      if (!hopAttrs.parsePayload(RTNH_DATA(hop), hop->rtnh_len - sizeof *hop)) return std::nullopt;
      if (hopAttrs[RTA_VIA]) continue;
      route.nextHops.push_back({Family::addressOf(hopAttrs[RTA_GATEWAY]).value_or(Addr()), hop->rtnh_ifindex});
    }
  } else if (!attrs[RTA_VIA] && (attrs[RTA_OIF] || attrs[RTA_GATEWAY])) {
    S32 oif = 0;
    if (const void* ifIndex = payloadOf(attrs[RTA_OIF], sizeof(U32))) std::memcpy(&oif, ifIndex, sizeof(U32));
    route.nextHops.push_back({Family::addressOf(attrs[RTA_GATEWAY]).value_or(Addr()), oif});
  }
  return route;
}

}  // namespace

std::optional<KernelLink> decodeLink(const nlmsghdr& message) {
  if (message.nlmsg_type != RTM_NEWLINK && message.nlmsg_type != RTM_DELLINK) return std::nullopt;
  const auto* info = headerOf<ifinfomsg>(message);
  Attributes<IFLA_MAX> attrs;
  if (!info || !attrs.parse(message, sizeof *info) || !attrs[IFLA_IFNAME]) return std::nullopt;
  if (mnl_attr_validate(attrs[IFLA_IFNAME], MNL_TYPE_NUL_STRING) < 0) return std::nullopt;
  KernelLink link{info->ifi_index, mnl_attr_get_str(attrs[IFLA_IFNAME]), {}, info->ifi_type, info->ifi_flags};
  Attributes<IFLA_INFO_MAX> linkInfo;
  if (attrs[IFLA_LINKINFO] && linkInfo.parseNested(attrs[IFLA_LINKINFO]) && linkInfo[IFLA_INFO_KIND] &&
      mnl_attr_validate(linkInfo[IFLA_INFO_KIND], MNL_TYPE_STRING) >= 0)
    link.kind.assign(static_cast<const char*>(mnl_attr_get_payload(linkInfo[IFLA_INFO_KIND])),
                     ::strnlen(static_cast<const char*>(mnl_attr_get_payload(linkInfo[IFLA_INFO_KIND])),
                               mnl_attr_get_payload_len(linkInfo[IFLA_INFO_KIND])));
  return link;
}

std::optional<KernelAddr> decodeAddr(const nlmsghdr& message) {
  if (message.nlmsg_type != RTM_NEWADDR && message.nlmsg_type != RTM_DELADDR) return std::nullopt;
  const auto* ifa = headerOf<ifaddrmsg>(message);
  Attributes<IFA_MAX> attrs;
  if (!ifa || !attrs.parse(message, sizeof *ifa)) return std::nullopt;
  const std::size_t size = ifa->ifa_family == AF_INET ? 4 : ifa->ifa_family == AF_INET6 ? 16 : 0;
  // For a point-to-point link IFA_ADDRESS is the peer's and IFA_LOCAL our own; otherwise both are
  // our own, or only IFA_ADDRESS is there (IPv6).
  const void* bytes = payloadOf(attrs[IFA_LOCAL], size);
  if (!bytes) bytes = payloadOf(attrs[IFA_ADDRESS], size);
  if (size == 0 || !bytes) return std::nullopt;
  KernelAddr addr;
  addr.ifIndex = static_cast<S32>(ifa->ifa_index);
  addr.family = ifa->ifa_family;
  std::memcpy(addr.bytes.data(), bytes, size);
  addr.prefixLen = ifa->ifa_prefixlen;
  addr.scope = ifa->ifa_scope;
  // The 8-bit field cannot hold the newer flags; IFA_FLAGS, when present, holds them all.
  const void* flags = payloadOf(attrs[IFA_FLAGS], sizeof(U32));
  addr.flags = ifa->ifa_flags;
  if (flags) std::memcpy(&addr.flags, flags, sizeof(U32));
  return addr;
}

std::optional<KernelNexthopObject> decodeNexthop(const nlmsghdr& message) {
  if (message.nlmsg_type != RTM_NEWNEXTHOP && message.nlmsg_type != RTM_DELNEXTHOP) return std::nullopt;
  const auto* nhm = headerOf<nhmsg>(message);
  Attributes<NHA_MAX> attrs;
  if (!nhm || !attrs.parse(message, sizeof *nhm)) return std::nullopt;
  const void* id = payloadOf(attrs[NHA_ID], sizeof(U32));
  if (!id) return std::nullopt;
  KernelNexthopObject object;
  std::memcpy(&object.id, id, sizeof(U32));
  if (object.id == 0) return std::nullopt;
  object.blackhole = attrs[NHA_BLACKHOLE] != nullptr;
  if (const nlattr* group = attrs[NHA_GROUP]) {
    const std::size_t length = mnl_attr_get_payload_len(group);
    if (length == 0 || length % sizeof(nexthop_grp) != 0) return std::nullopt;
    const auto* bytes = static_cast<const char*>(mnl_attr_get_payload(group));
    for (std::size_t at = 0; at < length; at += sizeof(nexthop_grp)) {
      nexthop_grp member;
      std::memcpy(&member, bytes + at, sizeof member);
      object.members.push_back(member.id);
    }
  }
  if (const void* ifIndex = payloadOf(attrs[NHA_OIF], sizeof(U32))) std::memcpy(&object.ifIndex, ifIndex, sizeof(U32));
  if (const nlattr* gateway = attrs[NHA_GATEWAY]) {
    if (auto ipv4 = ipv4Of(gateway))
      object.gateway = *ipv4;
    else if (auto ipv6 = ipv6Of(gateway))
      object.gateway = *ipv6;
    else
      return std::nullopt;
  }
  return object;
}

std::optional<KernelRoute> decodeRoute(const nlmsghdr& message) { return decodeRouteOf<KernelRoute>(message); }

std::optional<KernelRoute6> decodeRoute6(const nlmsghdr& message) { return decodeRouteOf<KernelRoute6>(message); }

std::optional<KernelNeigh> decodeNeigh(const nlmsghdr& message) {
  if (message.nlmsg_type != RTM_NEWNEIGH && message.nlmsg_type != RTM_DELNEIGH) return std::nullopt;
  const auto* ndm = headerOf<ndmsg>(message);
  Attributes<NDA_MAX> attrs;
  if (!ndm || ndm->ndm_family != AF_INET || !attrs.parse(message, sizeof *ndm)) return std::nullopt;
  auto dst = ipv4Of(attrs[NDA_DST]);
  if (!dst) return std::nullopt;
  KernelNeigh neigh{ndm->ndm_ifindex, *dst, std::nullopt, ndm->ndm_state};
  if (const auto* mac = static_cast<const U8*>(payloadOf(attrs[NDA_LLADDR], 6)))
    neigh.lladdr = Pelt::EthAddr(static_cast<U16>(mac[0] << 8 | mac[1]), static_cast<U16>(mac[2] << 8 | mac[3]),
                                 static_cast<U16>(mac[4] << 8 | mac[5]));
  return neigh;
}

}  // namespace Sources::Linux
