// The small values: MAC addresses, route distinguishers, enumerations with their text forms, VRF
// ids, and entering network namespaces.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "platform/pelt/EthAddr.h"
#include "platform/pelt/IpVersion.h"
#include "platform/pelt/Netns.h"
#include "platform/pelt/RouteAttributes.h"
#include "platform/pelt/RouteDistinguisher.h"
#include "platform/pelt/VrfId.h"
#include "platform/pelt/VrfState.h"

namespace {

template <class T>
std::string text(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

TEST(EthAddr, WritesSixOctetsInWireOrderAndParsesItsText) {
  Pelt::EthAddr mac(0x001c, 0x7300, 0x0a01);
  U8 octets[6];
  mac.copyToBuffer(octets);
  EXPECT_EQ(std::string(octets, octets + 6), std::string("\x00\x1c\x73\x00\x0a\x01", 6));
  EXPECT_EQ(text(mac), "00:1c:73:00:0a:01");
  EXPECT_EQ(Pelt::EthAddr("00:1C:73:00:0a:01"), mac);
  for (const char* bad : {"00:1c:73:00:0a", "00-1c-73-00-0a-01", "00:1c:73:00:0a:0g", "00:1c:73:00:0a:011"})
    EXPECT_FALSE(Pelt::EthAddr::parse(bad)) << bad;
}

TEST(RouteDistinguisher, DefaultReadsZeroColonZero) {
  EXPECT_EQ(Pelt::RouteDistinguisher().stringValue(), "0:0");
}

TEST(RouteDistinguisher, EachTypeReadsBackInItsOwnForm) {
  for (const char* form : {"65000:100", "10.0.0.1:7", "4200000000:9", "65535:4294967295"})
    EXPECT_EQ(Pelt::RouteDistinguisher(form).stringValue(), form);
  EXPECT_EQ(Pelt::RouteDistinguisher("65000:100").type(), 0);
  EXPECT_EQ(Pelt::RouteDistinguisher("10.0.0.1:7").type(), 1);
  EXPECT_EQ(Pelt::RouteDistinguisher("4200000000:9").type(), 2);
  EXPECT_EQ(Pelt::RouteDistinguisher("65000:100").value(), 0x0000fde800000064ull);
}

TEST(RouteDistinguisher, RefusesNumbersThatFitNoType) {
  for (const char* bad : {"65000", "10.0.0.1:65536", "4200000000:65536", "x:1", "1:-1", ":"})
    EXPECT_FALSE(Pelt::RouteDistinguisher::parse(bad)) << bad;
}

TEST(IpVersion, NamesNumbersAndRefusals) {
  EXPECT_EQ(Ip::stringValue(Ip::ipVersion6), "ipVersion6");
  EXPECT_EQ(Ip::stringValue(static_cast<Ip::IpVersion>(7)), "IpVersion(7)");
  EXPECT_EQ(Ip::IpVersionInstance(1u), Ip::ipVersion4);
  EXPECT_EQ(Ip::IpVersionInstance(Quor::String8("ipVersionUnknown")), Ip::ipVersionUnknown);
  EXPECT_EQ(Ip::valueToStrep(Ip::ipVersion4), "'ipVersion4'");
  EXPECT_EQ(Quor::strepToValue<Ip::IpVersion>("'ipVersion6'"), Ip::ipVersion6);
  for (auto refuse : {+[] { Ip::IpVersionInstance(3u); }, +[] { Ip::IpVersionInstance(Quor::String8("ipv4")); }}) {
    try {
      refuse();
      FAIL() << "no exception";
    } catch (const Quor::RangeException& e) {
      EXPECT_EQ(e.text(), "IpVersion");
    }
  }
}

TEST(RouteType, PrintsItsNameOrTheNumberedFallback) {
  EXPECT_EQ(text(Routing::Fib::routeTypeEbgp), "routeTypeEbgp");
  EXPECT_EQ(Routing::Fib::valueToStrep(Routing::Fib::routeTypeConnected), "'routeTypeConnected'");
  EXPECT_EQ(text(static_cast<Routing::Fib::RouteType>(42)), "RouteType(42)");
  EXPECT_EQ(Routing::Fib::RouteTypeInstance(8u), Routing::Fib::routeTypeConnected);
  EXPECT_THROW(Routing::Fib::RouteTypeInstance(20u), Quor::RangeException);
}

TEST(RouteAttributes, PreferencePrintsAsANumberNotACharacter) {
  EXPECT_EQ(text(Routing::RoutePreference(200)), "200");
  EXPECT_EQ(Routing::valueToStrep(Routing::RoutePreference(65)), "65");
  EXPECT_EQ(Routing::valueToStrep(Routing::RouteMetric(4000000000u)), "4000000000");
  EXPECT_NE(Routing::RouteMetric(1), Routing::RouteMetric(2));
}

TEST(VrfState, KeepsNumbersWithoutAName) {
  EXPECT_EQ(text(Ip::vrfStateActive), "vrfStateActive");
  EXPECT_EQ(Ip::stringValue(static_cast<Ip::VrfState>(3)), "VrfState(3)");
  EXPECT_EQ(Ip::VrfStateInstance(Quor::String8("vrfStateDeleting")), Ip::vrfStateDeleting);
}

TEST(VrfId, UnknownIsAllOnesAndPrintsMinusOne) {
  using Vrf::VrfIdMap::VrfId;
  EXPECT_EQ(Vrf::VrfIdMap::unknownVrfId, VrfId(0xffffffffu));
  EXPECT_TRUE(Vrf::VrfIdMap::unknownVrfId.isUnknown());
  EXPECT_EQ(VrfId(), Vrf::VrfIdMap::defaultVrfId);
  EXPECT_EQ(text(Vrf::VrfIdMap::unknownVrfId), "-1");
  EXPECT_EQ(Vrf::VrfIdMap::valueToStrep(VrfId(12)), "12");
}

TEST(Netns, AnAbsentNamespaceIsRefusedAndDefaultFindsTheWayBack) {
  EXPECT_FALSE(Pelt::setNsByName("no-such-namespace-here"));
  // Entering a namespace needs CAP_SYS_ADMIN; without it "default" is refused like any other.
  if (!Pelt::setNsByName("default")) GTEST_SKIP() << "no permission to enter network namespaces";
  EXPECT_TRUE(Pelt::setNsByName("default"));
}

}  // namespace
