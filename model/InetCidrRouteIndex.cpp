#include "model/InetCidrRouteIndex.h"

#include <algorithm>
#include <bit>
#include <ostream>

#include "model/Mask.h"
#include "platform/quor/Exception.h"

namespace IpSnmp {

namespace {

constexpr unsigned zoneOctets = 4;

std::ostream& operator<<(std::ostream& out, InetAddressType type) {
  switch (type) {
    case InetAddressType::ipv4: return out << "ipv4";
    case InetAddressType::ipv6: return out << "ipv6";
    case InetAddressType::ipv6z: return out << "ipv6z";
    default: return out << "unknown";
  }
}

void putZone(U32 zone, U8* out) {
  for (unsigned i = 0; i < zoneOctets; ++i) out[i] = static_cast<U8>(zone >> (8 * (zoneOctets - 1 - i)));
}

U32 zoneAt(const U8* in) {
  U32 zone = 0;
  for (unsigned i = 0; i < zoneOctets; ++i) zone = zone << 8 | in[i];
  return zone;
}

}  // namespace

InetCidrRoute6Index InetCidrRoute6Index::of(const Pelt::Ip6Addr& dest, U8 pfxLen, const Pelt::Ip6Addr& hop,
                                            U32 ifIndex) {
  if (hop.isZero()) return {dest, pfxLen, InetAddressType::unknown, hop, 0};
  if (hop.isLinkLocal()) return {dest, pfxLen, InetAddressType::ipv6z, hop, ifIndex};
  return {dest, pfxLen, InetAddressType::ipv6, hop, 0};
}

std::ostream& operator<<(std::ostream& out, const InetCidrRoute6Index& key) {
  out << key.dest << "/" << unsigned(key.pfxLen) << " via " << key.nextHopType << " " << key.nextHop;
  if (key.nextHopType == InetAddressType::ipv6z) out << "%" << key.zone;
  return out;
}

unsigned InetCidrRouteIndex::octetsOf(InetAddressType type) noexcept {
  switch (type) {
    case InetAddressType::ipv4: return 4;
    case InetAddressType::ipv6: return 16;
    case InetAddressType::ipv6z: return 16 + zoneOctets;
    default: return 0;
  }
}

InetCidrRouteIndex InetCidrRouteIndex::of(const IpCidrRouteTableIndex& key) {
  InetCidrRouteIndex index;
  index.destType = InetAddressType::ipv4;
  key.dest.copyToBuffer(index.dest.data());
  index.pfxLen = static_cast<U8>(std::popcount(key.mask.hostOrder()));
  if (!(key.nextHop == Pelt::IpAddr())) {
    index.nextHopType = InetAddressType::ipv4;
    key.nextHop.copyToBuffer(index.nextHop.data());
  }
  return index;
}

InetCidrRouteIndex InetCidrRouteIndex::of(const InetCidrRoute6Index& key) {
  InetCidrRouteIndex index;
  index.destType = InetAddressType::ipv6;
  index.dest = key.dest.bytes();
  index.pfxLen = key.pfxLen;
  index.nextHopType = key.nextHopType;
  if (key.nextHopType != InetAddressType::unknown) key.nextHop.copyToBuffer(index.nextHop.data());
  if (key.nextHopType == InetAddressType::ipv6z) putZone(key.zone, index.nextHop.data() + 16);
  return index;
}

InetCidrRouteIndex InetCidrRouteIndex::of(int destType, const Snmp::String& dest, unsigned pfxLen, int nextHopType,
                                          const Snmp::String& nextHop) {
  InetCidrRouteIndex index;
  index.destType = static_cast<InetAddressType>(destType);
  index.nextHopType = static_cast<InetAddressType>(nextHopType);
  const bool ipv4 = destType == int(InetAddressType::ipv4);
  const bool ipv6 = destType == int(InetAddressType::ipv6);
  // The next-hop types that the rows of each family have; an IPv4 row without next hop shows none.
  const bool hopFits = ipv4 ? nextHopType == int(InetAddressType::unknown) || nextHopType == int(InetAddressType::ipv4)
                            : nextHopType == int(InetAddressType::unknown) || nextHopType == int(InetAddressType::ipv6) ||
                                  nextHopType == int(InetAddressType::ipv6z);
  if (!(ipv4 || ipv6) || !hopFits || dest.size() != octetsOf(index.destType) ||
      nextHop.size() != octetsOf(index.nextHopType) || pfxLen > 8 * dest.size())
    Quor::throwRangeException("no inetCidrRouteTable row has this index");
  std::copy_n(dest.bytes(), dest.size(), index.dest.begin());
  std::copy_n(nextHop.bytes(), nextHop.size(), index.nextHop.begin());
  index.pfxLen = static_cast<U8>(pfxLen);
  if (ipv4 && index.nextHopType == InetAddressType::ipv4 && index.ipv4().nextHop == Pelt::IpAddr())
    Quor::throwRangeException("an IPv4 next hop 0.0.0.0 shows as none");
  return index;
}

IpCidrRouteTableIndex InetCidrRouteIndex::ipv4() const {
  const auto address = [](const U8* b) { return Pelt::IpAddr(b[0], b[1], b[2], b[3]); };
  return {address(dest.data()), maskOfLength(pfxLen), 0, address(nextHop.data())};
}

InetCidrRoute6Index InetCidrRouteIndex::ipv6() const {
  return {Pelt::Ip6Addr::fromBytes(dest.data()), pfxLen, nextHopType, Pelt::Ip6Addr::fromBytes(nextHop.data()),
          nextHopType == InetAddressType::ipv6z ? zoneAt(nextHop.data() + 16) : 0};
}

Snmp::String InetCidrRouteIndex::destOctets() const { return Snmp::String(dest.data(), octetsOf(destType)); }
Snmp::String InetCidrRouteIndex::nextHopOctets() const { return Snmp::String(nextHop.data(), octetsOf(nextHopType)); }

std::ostream& operator<<(std::ostream& out, const InetCidrRouteIndex& key) {
  if (key.destType == InetAddressType::ipv4) {
    const IpCidrRouteTableIndex ipv4 = key.ipv4();
    return out << ipv4.dest << "/" << unsigned(key.pfxLen) << " via " << key.nextHopType << " " << ipv4.nextHop;
  }
  return out << key.ipv6();
}

}  // namespace IpSnmp
