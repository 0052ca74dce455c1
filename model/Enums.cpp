#include "model/Enums.h"

#include <ostream>

#include "platform/pelt/EnumText.h"

namespace IpSnmp {

namespace {

using Pelt::Enumerator;

constexpr Enumerator<AddressSource> addressSources[] = {
    {addressSourceStatus, "addressSourceStatus"},
    {addressSourceConfig, "addressSourceConfig"},
};
constexpr Enumerator<AddressStatus> addressStatuses[] = {
    {addressStatusPreferred, "addressStatusPreferred"},
    {addressStatusInaccessible, "addressStatusInaccessible"},
};
constexpr Enumerator<AddressType> addressTypes[] = {
    {addressTypeUnicast, "addressTypeUnicast"},
    {addressTypeAnycast, "addressTypeAnycast"},
    {addressTypeBroadcast, "addressTypeBroadcast"},
};
constexpr Enumerator<IpRouteProtocol> ipRouteProtocols[] = {
    {ipRouteProtocolOther, "ipRouteProtocolOther"},
    {ipRouteProtocolLocal, "ipRouteProtocolLocal"},
    {ipRouteProtocolNetmgmt, "ipRouteProtocolNetmgmt"},
    {ipRouteProtocolIcmp, "ipRouteProtocolIcmp"},
    {ipRouteProtocolEgp, "ipRouteProtocolEgp"},
    {ipRouteProtocolGgp, "ipRouteProtocolGgp"},
    {ipRouteProtocolHello, "ipRouteProtocolHello"},
    {ipRouteProtocolRip, "ipRouteProtocolRip"},
    {ipRouteProtocolIsIs, "ipRouteProtocolIsIs"},
    {ipRouteProtocolEsIs, "ipRouteProtocolEsIs"},
    {ipRouteProtocolCiscoIgrp, "ipRouteProtocolCiscoIgrp"},
    {ipRouteProtocolBbnSpfIgp, "ipRouteProtocolBbnSpfIgp"},
    {ipRouteProtocolOspf, "ipRouteProtocolOspf"},
    {ipRouteProtocolBgp, "ipRouteProtocolBgp"},
    {ipRouteProtocolIdpr, "ipRouteProtocolIdpr"},
    {ipRouteProtocolCiscoEigrp, "ipRouteProtocolCiscoEigrp"},
    {ipRouteProtocolDvmrp, "ipRouteProtocolDvmrp"},
};

}  // namespace

PELT_DEFINE_ENUM_TEXT(AddressSource, addressSources)
PELT_DEFINE_ENUM_TEXT(AddressStatus, addressStatuses)
PELT_DEFINE_ENUM_TEXT(AddressType, addressTypes)
PELT_DEFINE_ENUM_TEXT(IpRouteProtocol, ipRouteProtocols)

std::ostream& operator<<(std::ostream& out, AddressSource value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, AddressStatus value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, AddressType value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, IpRouteProtocol value) { return out << valueToStrep(value); }

}  // namespace IpSnmp
