#pragma once
// The index of inetCidrRouteTable as one key for both address families: destination type and
// address, prefix length, next-hop type and address (the policy is always 0.0 and is not held). Its
// order is that of the written index, every field's length being fixed by its type; an IPv4 row's
// key is made from its ipCidrRouteTable key, an IPv6 row's from its own, and back.
#include <array>
#include <iosfwd>

#include "model/InetCidrRoute6Entry.h"
#include "model/IpCidrRouteTableIndex.h"

namespace IpSnmp {

struct InetCidrRouteIndex : KeyOperators<InetCidrRouteIndex> {
  InetAddressType destType = InetAddressType::unknown;
  std::array<U8, 16> dest{};  // 4 octets for IPv4, the rest zero
  U8 pfxLen = 0;
  InetAddressType nextHopType = InetAddressType::unknown;
  std::array<U8, 20> nextHop{};  // octetsOf(nextHopType) octets: the address, then a zone in network order

  static unsigned octetsOf(InetAddressType type) noexcept;
  // An IPv4 row shows no type of service, and its next hop 0.0.0.0 (a connected route) as none.
  static InetCidrRouteIndex of(const IpCidrRouteTableIndex& key);
  static InetCidrRouteIndex of(const InetCidrRoute6Index& key);
  // From the index's values; Quor::RangeException for a combination that no row can have.
  static InetCidrRouteIndex of(int destType, const Snmp::String& dest, unsigned pfxLen, int nextHopType,
                               const Snmp::String& nextHop);
  // The key of each family whose rows map to this key (type of service 0).
  IpCidrRouteTableIndex ipv4() const;
  InetCidrRoute6Index ipv6() const;

  Snmp::String destOctets() const;
  Snmp::String nextHopOctets() const;

  friend bool operator==(const InetCidrRouteIndex& a, const InetCidrRouteIndex& b) {
    return a.destType == b.destType && a.dest == b.dest && a.pfxLen == b.pfxLen && a.nextHopType == b.nextHopType &&
           a.nextHop == b.nextHop;
  }
  friend bool operator<(const InetCidrRouteIndex& a, const InetCidrRouteIndex& b) {
    if (a.destType != b.destType) return a.destType < b.destType;
    if (a.dest != b.dest) return a.dest < b.dest;
    if (a.pfxLen != b.pfxLen) return a.pfxLen < b.pfxLen;
    if (a.nextHopType != b.nextHopType) return a.nextHopType < b.nextHopType;
    return a.nextHop < b.nextHop;
  }
};
std::ostream& operator<<(std::ostream& out, const InetCidrRouteIndex& key);

}  // namespace IpSnmp
