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

// One set of text functions per enumeration, all from its table of names.
#define IPSNMP_ENUM_TEXT(Type, table)                                                                   \
  Quor::String8 stringValue(Type value) { return Pelt::enumName(table, value, #Type); }                \
  Type Type##Instance(unsigned int number) { return Pelt::enumByNumber(table, number, #Type); }        \
  Type Type##Instance(const Quor::String8& name) { return Pelt::enumByName(table, name.view(), #Type); } \
  Type sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, Type*) {        \
    return Type##Instance(Quor::readQuotedString(position, end));                                       \
  }                                                                                                    \
  std::ostream& operator<<(std::ostream& out, Type value) { return out << valueToStrep(value); }

IPSNMP_ENUM_TEXT(AddressSource, addressSources)
IPSNMP_ENUM_TEXT(AddressStatus, addressStatuses)
IPSNMP_ENUM_TEXT(AddressType, addressTypes)
IPSNMP_ENUM_TEXT(IpRouteProtocol, ipRouteProtocols)

#undef IPSNMP_ENUM_TEXT

}  // namespace IpSnmp
