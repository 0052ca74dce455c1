#pragma once
// The enumerations that rows carry. Each enumerator's name is also its text form.
#include <iosfwd>

#include "platform/quor/Strep.h"

namespace IpSnmp {

// Which side of the store contributed an occurrence of an address. The order matters: every status
// occurrence sorts before every config occurrence, which makes the status side the master.
enum AddressSource : S32 {
  addressSourceStatus = 0,
  addressSourceConfig = 1,
};

// Values of ipAddressStatus; only these two are ever served, the gap is the MIB's numbering.
enum AddressStatus : S32 {
  addressStatusPreferred = 1,
  addressStatusInaccessible = 4,
};

// Values of ipAddressType.
enum AddressType : S32 {
  addressTypeUnicast = 1,
  addressTypeAnycast = 2,
  addressTypeBroadcast = 3,
};

// Values of ipCidrRouteProto.
enum IpRouteProtocol : S32 {
  ipRouteProtocolOther = 1,
  ipRouteProtocolLocal = 2,
  ipRouteProtocolNetmgmt = 3,
  ipRouteProtocolIcmp = 4,
  ipRouteProtocolEgp = 5,
  ipRouteProtocolGgp = 6,
  ipRouteProtocolHello = 7,
  ipRouteProtocolRip = 8,
  ipRouteProtocolIsIs = 9,
  ipRouteProtocolEsIs = 10,
  ipRouteProtocolCiscoIgrp = 11,
  ipRouteProtocolBbnSpfIgp = 12,
  ipRouteProtocolOspf = 13,
  ipRouteProtocolBgp = 14,
  ipRouteProtocolIdpr = 15,
  ipRouteProtocolCiscoEigrp = 16,
  ipRouteProtocolDvmrp = 17,
};

// The enumerator's name, or "<Type>(<n>)" for a number without one.
Quor::String8 stringValue(AddressSource value);
Quor::String8 stringValue(AddressStatus value);
Quor::String8 stringValue(AddressType value);
Quor::String8 stringValue(IpRouteProtocol value);

// The enumerator of a number or a name; an unknown one raises Quor::RangeException with the bare
// type name ("AddressSource", ...).
AddressSource AddressSourceInstance(unsigned int number);
AddressSource AddressSourceInstance(const Quor::String8& name);
AddressStatus AddressStatusInstance(unsigned int number);
AddressStatus AddressStatusInstance(const Quor::String8& name);
AddressType AddressTypeInstance(unsigned int number);
AddressType AddressTypeInstance(const Quor::String8& name);
IpRouteProtocol IpRouteProtocolInstance(unsigned int number);
IpRouteProtocol IpRouteProtocolInstance(const Quor::String8& name);

// The name in single quotes.
template <class E>
  requires requires(E e) { stringValue(e); }
Quor::String8 valueToStrep(E value) {
  return Quor::valueToStrep(Quor::ByteString(stringValue(value)));
}

// Reads a quoted enumerator name.
AddressSource sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, AddressSource*);
AddressStatus sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, AddressStatus*);
AddressType sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, AddressType*);
IpRouteProtocol sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, IpRouteProtocol*);

std::ostream& operator<<(std::ostream& out, AddressSource value);
std::ostream& operator<<(std::ostream& out, AddressStatus value);
std::ostream& operator<<(std::ostream& out, AddressType value);
std::ostream& operator<<(std::ostream& out, IpRouteProtocol value);

}  // namespace IpSnmp
