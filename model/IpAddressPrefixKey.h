#pragma once
// The key of ipAddressPrefixTable. The walk keeps the prefixes of one interface together, IPv4
// before IPv6; the length decides only between equal subnet bytes, the shorter prefix first.
#include <iosfwd>

#include "model/KeyOperators.h"
#include "platform/pelt/IpVersion.h"
#include "platform/quor/Strep.h"

namespace IpSnmp {

struct IpAddressPrefixKey : KeyOperators<IpAddressPrefixKey> {
  U32 ifIndex = 0;
  Ip::IpVersion version = Ip::ipVersionUnknown;
  Snmp::String bytes;  // the subnet: the address with its host bits zero
  U32 length = 0;

  IpAddressPrefixKey() = default;
  IpAddressPrefixKey(U32 i, Ip::IpVersion v, Snmp::String b, U32 l)
      : ifIndex(i), version(v), bytes(std::move(b)), length(l) {}
  IpAddressPrefixKey(Quor::StrepIterator& position, const Quor::StrepIterator& end);

  friend bool operator==(const IpAddressPrefixKey& a, const IpAddressPrefixKey& b) {
    return a.ifIndex == b.ifIndex && a.version == b.version && a.bytes == b.bytes && a.length == b.length;
  }
  friend bool operator<(const IpAddressPrefixKey& a, const IpAddressPrefixKey& b) {
    if (a.ifIndex != b.ifIndex) return a.ifIndex < b.ifIndex;
    if (a.version != b.version) return a.version < b.version;
    if (!(a.bytes == b.bytes)) return a.bytes < b.bytes;
    return a.length < b.length;
  }
};

Quor::String8 valueToStrep(const IpAddressPrefixKey& key);
std::ostream& operator<<(std::ostream& out, const IpAddressPrefixKey& key);

}  // namespace IpSnmp
