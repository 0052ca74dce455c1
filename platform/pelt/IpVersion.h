#pragma once
// The IP version of an address. Its values 1 and 2 are also the SNMP InetAddressType numbers of
// ipv4 and ipv6, so they pass to the wire unconverted.
#include <iosfwd>

#include "platform/quor/Strep.h"

namespace Ip {

enum IpVersion : S32 {
  ipVersionUnknown = 0,
  ipVersion4 = 1,
  ipVersion6 = 2,
};

// The enumerator's name; "IpVersion(<n>)" for a number without one.
Quor::String8 stringValue(IpVersion version);
// Raise Quor::RangeException "IpVersion" for a number or name that is not an enumerator.
IpVersion IpVersionInstance(unsigned int number);
IpVersion IpVersionInstance(const Quor::String8& name);
// The name in single quotes, and back.
Quor::String8 valueToStrep(IpVersion version);
IpVersion sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, IpVersion*);
std::ostream& operator<<(std::ostream& out, IpVersion version);

}  // namespace Ip
