// Enumeration texts: names, fallbacks for numbers without a name, and lookups that refuse.
#include <gtest/gtest.h>

#include "model/Enums.h"
#include "model/ProtocolMap.h"

namespace IpSnmp {
namespace {

TEST(EnumText, NamesAndFallbacks) {
  EXPECT_EQ(stringValue(addressStatusInaccessible), "addressStatusInaccessible");
  EXPECT_EQ(stringValue(AddressStatus(0)), "AddressStatus(0)");
  EXPECT_EQ(stringValue(IpRouteProtocol(99)), "IpRouteProtocol(99)");
  EXPECT_EQ(valueToStrep(addressTypeUnicast), "'addressTypeUnicast'");
}

TEST(EnumText, LookupsRefuseWhatDoesNotExist) {
  EXPECT_EQ(AddressStatusInstance(4u), addressStatusInaccessible);
  EXPECT_EQ(IpRouteProtocolInstance(Quor::String8("ipRouteProtocolBgp")), ipRouteProtocolBgp);
  try {
    AddressStatusInstance(2u);
    FAIL();
  } catch (const Quor::RangeException& e) {
    EXPECT_EQ(e.text(), "AddressStatus");
  }
  EXPECT_THROW(AddressSourceInstance(Quor::String8("addressSourceBoth")), Quor::RangeException);
}

TEST(ProtocolMapping, UnmappedAndZeroMappedTypesReadOther) {
  ProtocolMap map;
  map.protocolIs(Routing::Fib::RouteType(8), ipRouteProtocolLocal);
  map.protocolIs(Routing::Fib::RouteType(9), IpRouteProtocol(0));
  EXPECT_EQ(map.protocol(Routing::Fib::RouteType(8)), ipRouteProtocolLocal);
  EXPECT_EQ(map.protocol(Routing::Fib::RouteType(9)), ipRouteProtocolOther);
  EXPECT_EQ(map.protocol(Routing::Fib::RouteType(5)), ipRouteProtocolOther);
  EXPECT_EQ(valueToStrep(map), "None");
}

}  // namespace
}  // namespace IpSnmp
