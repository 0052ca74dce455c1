#pragma once
// The IP version of an address. Its values 1 and 2 are also the SNMP InetAddressType numbers of
// ipv4 and ipv6, so they pass to the wire unconverted.
#include <iosfwd>

#include "platform/pelt/Enumeration.h"

namespace Ip {

enum IpVersion : S32 {
  ipVersionUnknown = 0,
  ipVersion4 = 1,
  ipVersion6 = 2,
};

PELT_DECLARE_ENUM_TEXT(IpVersion);
std::ostream& operator<<(std::ostream& out, IpVersion version);

}  // namespace Ip
