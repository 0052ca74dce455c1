#pragma once
// One IPv6 row of inetCidrRouteTable: one next hop of one IPv6 route, under its key. Like an IPv4
// row, a plain value fixed at creation, kept by value in its table (Quor::BlockMap).
#include <iosfwd>

#include "model/KeyOperators.h"
#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/RouteAttributes.h"

namespace IpSnmp {

// The values of InetAddressType (RFC 4001) that the route table shows.
enum class InetAddressType : U8 { unknown = 0, ipv4 = 1, ipv6 = 2, ipv6z = 4 };

// Destination, prefix length, next-hop type, next hop and its zone, in the order of the index.
struct InetCidrRoute6Index : KeyOperators<InetCidrRoute6Index> {
  Pelt::Ip6Addr dest;
  U8 pfxLen = 0;
  InetAddressType nextHopType = InetAddressType::unknown;
  Pelt::Ip6Addr nextHop;
  U32 zone = 0;  // the interface index of a link-local next hop, else 0

  InetCidrRoute6Index() = default;
  InetCidrRoute6Index(const Pelt::Ip6Addr& d, U8 len, InetAddressType type, const Pelt::Ip6Addr& hop, U32 z)
      : dest(d), pfxLen(len), nextHopType(type), nextHop(hop), zone(z) {}
  // The key of `hop` over the interface of index `ifIndex`: no next hop (unknown) for ::, the
  // address with its zone (ipv6z) for a link-local hop, as RFC 4001 wants a scoped address.
  static InetCidrRoute6Index of(const Pelt::Ip6Addr& dest, U8 pfxLen, const Pelt::Ip6Addr& hop, U32 ifIndex);

  friend bool operator==(const InetCidrRoute6Index& a, const InetCidrRoute6Index& b) {
    return a.dest == b.dest && a.pfxLen == b.pfxLen && a.nextHopType == b.nextHopType && a.nextHop == b.nextHop &&
           a.zone == b.zone;
  }
  friend bool operator<(const InetCidrRoute6Index& a, const InetCidrRoute6Index& b) {
    if (!(a.dest == b.dest)) return a.dest < b.dest;
    if (a.pfxLen != b.pfxLen) return a.pfxLen < b.pfxLen;
    if (a.nextHopType != b.nextHopType) return a.nextHopType < b.nextHopType;
    if (!(a.nextHop == b.nextHop)) return a.nextHop < b.nextHop;
    return a.zone < b.zone;
  }
};
std::ostream& operator<<(std::ostream& out, const InetCidrRoute6Index& key);

class InetCidrRoute6Entry {
 public:
  InetCidrRoute6Entry() = default;
  InetCidrRoute6Entry(const InetCidrRoute6Index& index, U32 ifIndex, Routing::RouteMetric metric,
                      Routing::RoutePreference preference, Routing::Fib::RouteType protocol)
      : index_(index), ifIndex_(ifIndex), metric_(metric), protocol_(protocol), preference_(preference) {}

  const InetCidrRoute6Index& fwkKey() const noexcept { return index_; }
  const InetCidrRoute6Index& index() const noexcept { return index_; }
  U32 ifIndex() const noexcept { return ifIndex_; }
  Routing::RouteMetric metric() const noexcept { return metric_; }
  Routing::RoutePreference preference() const noexcept { return preference_; }
  Routing::Fib::RouteType protocol() const noexcept { return protocol_; }

 private:
  InetCidrRoute6Index index_;
  U32 ifIndex_ = 0;
  Routing::RouteMetric metric_;
  Routing::Fib::RouteType protocol_ = Routing::Fib::routeTypeInvalid;
  Routing::RoutePreference preference_;
};

}  // namespace IpSnmp
