// An address row answers from its master occurrence, which moves between the status side and the
// configuration. (Key orders are walk orders: the hinted search's comparison with the walk of every
// table, at the boundaries of each index, and the integration walks fail on each key out of order.)
#include <gtest/gtest.h>

#include "model/IpMib.h"

namespace IpSnmp {
namespace {

Pelt::IpAddr ip(const char* text) { return Pelt::IpAddr(std::string_view(text)); }

Quor::Ptr<const IpAddressPrefixEntry> prefix(U32 ifIndex) {
  return Quor::makePtr<IpAddressPrefixEntry>(
      IpAddressPrefixKey(ifIndex, Ip::ipVersion4, inetAddress(ip("10.1.2.0")).bytes, 24));
}

TEST(AddressRow, TheMasterOccurrenceSwitchesBetweenStatusAndConfig) {
  auto mib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  Quor::ValidPtr<IpAddressEntry> row = mib->ipAddressTableIs(inetAddress(ip("10.1.2.3")));
  row->intfIs(IntfData(IntfDataKey(addressSourceConfig, Pelt::IntfId("B")), prefix(2)));
  EXPECT_EQ(row->addressStatus(), addressStatusInaccessible) << "configured only";
  EXPECT_EQ(row->ifIndex(), 2u);
  row->intfIs(IntfData(IntfDataKey(addressSourceStatus, Pelt::IntfId("Z")), prefix(9)));
  row->intfIs(IntfData(IntfDataKey(addressSourceStatus, Pelt::IntfId("A")), prefix(1)));
  EXPECT_EQ(row->addressStatus(), addressStatusPreferred);
  EXPECT_EQ(row->ifIndex(), 1u) << "the first of two status interfaces";
  row->intfDel(IntfDataKey(addressSourceStatus, Pelt::IntfId("A")));
  row->intfDel(IntfDataKey(addressSourceStatus, Pelt::IntfId("Z")));
  EXPECT_EQ(row->addressStatus(), addressStatusInaccessible) << "back to the configured occurrence";
  EXPECT_EQ(row->ifIndex(), 2u);
}

}  // namespace
}  // namespace IpSnmp
