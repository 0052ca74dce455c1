// The conversions that carry the MIBs' mappings and the elementary ones beneath them, read back as a
// manager would see the value after snmp_set_var_typed_value.
#include <gtest/gtest.h>

#include <climits>

#include "frontend/Conversions.h"
#include "frontend/ElementaryConversions.h"
#include "model/ProtocolMap.h"
#include "platform/quor/Exception.h"
#include "platform/snmp/NetSnmp.h"

namespace {

// The varbind a handler would set from `bytes` with `type`.
struct OnTheWire {
  OnTheWire(u_char type, const unsigned char* bytes, int length) {
    EXPECT_GE(length, 0);
    EXPECT_EQ(snmp_set_var_typed_value(&var, type, bytes, static_cast<size_t>(length)), 0);
  }
  ~OnTheWire() { snmp_free_var_internals(&var); }
  netsnmp_variable_list var{};
};

TEST(PrefixRowPointer, NamesColumnFiveOfThePrefixRow) {
  unsigned char buffer[1024];
  U8 subnet[] = {10, 1, 2, 0};
  auto entry = Quor::makePtr<IpSnmp::IpAddressPrefixEntry>(
      IpSnmp::IpAddressPrefixKey(5, Ip::ipVersion4, Snmp::String(subnet, sizeof subnet), 24));
  const int length = IpAddressPrefixEntryToAsnOid(entry, buffer, sizeof buffer);
  OnTheWire wire(ASN_OBJECT_ID, buffer, length);
  const oid expected[] = {1, 3, 6, 1, 2, 1, 4, 32, 1, 5, 5, 1, 4, 10, 1, 2, 0, 24};
  ASSERT_EQ(wire.var.val_len, sizeof expected);
  EXPECT_EQ(snmp_oid_compare(wire.var.val.objid, wire.var.val_len / sizeof(oid), expected, std::size(expected)), 0);
}

TEST(PrefixRowPointer, ReportsLackOfRoomWithZero) {
  unsigned char buffer[16];
  auto entry = Quor::makePtr<IpSnmp::IpAddressPrefixEntry>(IpSnmp::IpAddressPrefixKey(5, Ip::ipVersion6, Snmp::String(std::string(16, '\1')), 64));
  EXPECT_EQ(IpAddressPrefixEntryToAsnOid(entry, buffer, sizeof buffer), 0);
}

TEST(RoutingStatusBits, Ipv4RoutingIsTheTopBit) {
  unsigned char buffer[1] = {0xff};
  auto config = Quor::makePtr<Routing::Config>(Quor::Name("red"));
  config->routingIs(true);
  EXPECT_EQ(RoutingStatusToAsnBits(Quor::makePtr<IpSnmp::VrfRoutingStatus>(Quor::Name("s"), config), buffer, 0), 1);
  EXPECT_EQ(buffer[0], 0x80);
  config->routingIs(false);
  RoutingStatusToAsnBits(Quor::makePtr<IpSnmp::VrfRoutingStatus>(Quor::Name("s"), config), buffer, 0);
  EXPECT_EQ(buffer[0], 0);
}

TEST(RoutingStatusBits, WithoutConfigurationNoBitIsSet) {
  unsigned char buffer[1] = {0xff};
  EXPECT_EQ(RoutingStatusToAsnBits(Quor::makePtr<IpSnmp::VrfRoutingStatus>(Quor::Name("s"), nullptr), buffer, 1024), 1);
  EXPECT_EQ(buffer[0], 0);
}

long integerOf(int (*convert)(int, unsigned char*, int), int value) {
  unsigned char buffer[1024];
  OnTheWire wire(ASN_INTEGER, buffer, convert(value, buffer, sizeof buffer));
  return *wire.var.val.integer;
}

TEST(VrfStateInteger, OnlyTheActiveStateIsOne) {
  auto convert = [](int state, unsigned char* buffer, int size) {
    return VrfStateToAsnInteger(static_cast<Ip::VrfState>(state), buffer, size);
  };
  EXPECT_EQ(integerOf(convert, Ip::vrfStateActive), 1);
  EXPECT_EQ(integerOf(convert, Ip::vrfStateInitializing), 2);
  EXPECT_EQ(integerOf(convert, Ip::vrfStateDeleting), 2);
  EXPECT_EQ(integerOf(convert, 7), 2);
}

TEST(ArpEntryTypeInteger, StaticIsFourAndAnythingElseDynamic) {
  auto convert = [](int isStatic, unsigned char* buffer, int size) {
    Arp::ArpEntryStatus entry;
    entry.isStatic = isStatic != 0;
    return ArpEntryStaticToAsnInteger(entry, buffer, size);
  };
  EXPECT_EQ(integerOf(convert, 1), 4);
  EXPECT_EQ(integerOf(convert, 0), 3);  // also the default entry of a neighbour that has left the table
  unsigned char buffer[2];
  EXPECT_LT(ArpEntryStaticToAsnInteger(Arp::ArpEntryStatus(), buffer, sizeof buffer), 0);
}

TEST(RouteTypeInteger, UnmappedTypeIsOther) {
  auto convert = [](int type, unsigned char* buffer, int size) {
    return RouteTypeToAsnInteger(static_cast<Routing::Fib::RouteType>(type), buffer, size);
  };
  EXPECT_EQ(integerOf(convert, Routing::Fib::routeTypeEbgp), 1);
  IpSnmp::protoMap.protocolIs(Routing::Fib::routeTypeEbgp, IpSnmp::ipRouteProtocolBgp);
  EXPECT_EQ(integerOf(convert, Routing::Fib::routeTypeEbgp), 14);
  IpSnmp::protoMap = IpSnmp::ProtocolMap();
}

TEST(RouteMetricInteger, KeepsTheThirtyTwoBits) {
  auto convert = [](int metric, unsigned char* buffer, int size) {
    return RouteMetricToAsnInteger(Routing::RouteMetric(static_cast<U32>(metric)), buffer, size);
  };
  EXPECT_EQ(integerOf(convert, 20), 20);
  EXPECT_EQ(integerOf(convert, -1), -1);
}

TEST(RouteDistinguisherText, IsTheTextFormNotTheBytes) {
  unsigned char buffer[256];
  const int length = RouteDistinguisherToAsnOctetString(Pelt::RouteDistinguisher("65000:100"), buffer, sizeof buffer);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(length)), "65000:100");
  EXPECT_LT(RouteDistinguisherToAsnOctetString(Pelt::RouteDistinguisher("65000:100"), buffer, 4), 0);
}

TEST(ElementaryConversions, UnsignedAndCountersKeepTheirWidth) {
  unsigned char buffer[1024];
  {
    OnTheWire wire(ASN_UNSIGNED, buffer, U32ToAsnUnsignedF()(4294967295u, buffer, sizeof buffer));
    EXPECT_EQ(static_cast<unsigned long>(*wire.var.val.integer), 4294967295ul);
  }
  {
    OnTheWire wire(ASN_COUNTER, buffer, U64ToCounter32F()(0x100000005ull, buffer, sizeof buffer));
    EXPECT_EQ(*wire.var.val.integer, 5);
  }
  {
    OnTheWire wire(ASN_COUNTER64, buffer, U64ToCounter64F()(0x100000005ull, buffer, sizeof buffer));
    EXPECT_EQ(wire.var.val.counter64->high, 1u);
    EXPECT_EQ(wire.var.val.counter64->low, 5u);
  }
  {
    OnTheWire wire(ASN_TIMETICKS, buffer, SecondsToTimeTicksF()(1.5, buffer, sizeof buffer));
    EXPECT_EQ(*wire.var.val.integer, 150);
  }
}

TEST(ElementaryConversions, TimeBeforeTheAgentStartedIsZeroTicks) {
  unsigned char buffer[1024];
  OnTheWire wire(ASN_TIMETICKS, buffer, NowSecondsToUptimeTimeTicksF()(0.0, buffer, sizeof buffer));
  EXPECT_EQ(*wire.var.val.integer, 0);
}

TEST(ElementaryConversions, OidTextBecomesSubidentifiers) {
  unsigned char buffer[1024];
  const int length = StringToAsnOidF()("0.0", buffer, sizeof buffer);
  OnTheWire wire(ASN_OBJECT_ID, buffer, length);
  const oid zeroDotZero[] = {0, 0};
  EXPECT_EQ(snmp_oid_compare(wire.var.val.objid, wire.var.val_len / sizeof(oid), zeroDotZero, 2), 0);
  EXPECT_LT(StringToAsnOidF()("0..1", buffer, sizeof buffer), 0);
  EXPECT_LT(StringToAsnOidF()("0.x", buffer, sizeof buffer), 0);
  EXPECT_LT(StringToAsnOidF()("1.3.6", buffer, 2 * sizeof(oid)), 0);
}

TEST(ElementaryConversions, OctetsFailWhenTheyDoNotFit) {
  unsigned char buffer[4];
  EXPECT_EQ(StringToAsnOctetStringF()("abcd", buffer, 4), 4);
  EXPECT_LT(StringToAsnOctetStringF()("abcde", buffer, 4), 0);
  EXPECT_EQ(PeltIpAddrToAsnOctetStringF()(Pelt::IpAddr(10, 0, 0, 1), buffer, 4), 4);
  EXPECT_EQ(buffer[0], 10);
  EXPECT_EQ(buffer[3], 1);
  EXPECT_LT(PeltEthAddrToAsnOctetStringF()(Pelt::EthAddr(1, 2, 3), buffer, 4), 0);
}

TEST(ReverseConversions, IntegerOutsideThirtyTwoBitsIsOutOfRange) {
  long value = 4294967295l;
  EXPECT_THROW(AsnIntegerToS32(&value), Quor::RangeException);
  value = -5;
  EXPECT_EQ(AsnIntegerToS32(&value), -5);
  unsigned long big = 4294967296ul;
  EXPECT_THROW(AsnUnsignedToU32(&big), Quor::RangeException);
}

TEST(ReverseConversions, AddressTypeIsTakenUnchecked) {
  long value = 3;
  EXPECT_EQ(static_cast<int>(AsnIntegerToIpVersion(&value)), 3);
  value = 2;
  EXPECT_EQ(AsnIntegerToIpVersion(&value), Ip::ipVersion6);
}

TEST(ReverseConversions, AddressAndOctetsReadTheBytes) {
  U8 octets[] = {192, 0, 2, 7};
  EXPECT_EQ(AsnIpAddressToPeltIpAddr(octets), Pelt::IpAddr(192, 0, 2, 7));
  EXPECT_EQ(AsnOctetStringToSnmpString(octets, 2), Snmp::String(octets, 2));
}

}  // namespace
