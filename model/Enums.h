#pragma once
// The enumerations that rows carry. Each enumerator's name is also its text form.
#include <iosfwd>

#include "platform/pelt/Enumeration.h"

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

// The text forms; an enumerator's text form is its name in single quotes, also for operator<<.
PELT_DECLARE_ENUM_TEXT(AddressSource);
PELT_DECLARE_ENUM_TEXT(AddressStatus);
PELT_DECLARE_ENUM_TEXT(AddressType);
PELT_DECLARE_ENUM_TEXT(IpRouteProtocol);

std::ostream& operator<<(std::ostream& out, AddressSource value);
std::ostream& operator<<(std::ostream& out, AddressStatus value);
std::ostream& operator<<(std::ostream& out, AddressType value);
std::ostream& operator<<(std::ostream& out, IpRouteProtocol value);

}  // namespace IpSnmp
