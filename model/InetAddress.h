#pragma once
// The key of ipAddressTable: an address of either IP version as its bytes in network order.
// Its order is the walk order of the table: every IPv4 address before every IPv6 address, then by
// the address bytes.
#include <iosfwd>

#include "model/KeyOperators.h"
#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/IpAddr.h"
#include "platform/pelt/IpVersion.h"
#include "platform/quor/Strep.h"

namespace IpSnmp {

struct InetAddress : KeyOperators<InetAddress> {
  Ip::IpVersion version = Ip::ipVersionUnknown;
  Snmp::String bytes;  // 4 bytes for IPv4, 16 for IPv6, first octet first

  InetAddress() = default;
  InetAddress(Ip::IpVersion v, Snmp::String b) : version(v), bytes(std::move(b)) {}
  InetAddress(Quor::StrepIterator& position, const Quor::StrepIterator& end);

  static InetAddress fromIpAddr(Pelt::IpAddr addr);
  static InetAddress fromIp6Addr(const Pelt::Ip6Addr& addr);

  friend bool operator==(const InetAddress& a, const InetAddress& b) {
    return a.version == b.version && a.bytes == b.bytes;
  }
  friend bool operator<(const InetAddress& a, const InetAddress& b) {
    return a.version != b.version ? a.version < b.version : a.bytes < b.bytes;
  }
};

inline InetAddress inetAddress(Pelt::IpAddr addr) { return InetAddress::fromIpAddr(addr); }
inline InetAddress inetAddress(const Pelt::Ip6Addr& addr) { return InetAddress::fromIp6Addr(addr); }

Quor::String8 valueToStrep(const InetAddress& key);
std::ostream& operator<<(std::ostream& out, const InetAddress& key);

}  // namespace IpSnmp
