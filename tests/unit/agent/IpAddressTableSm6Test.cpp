// The IPv6 side of the address machine: every address of an interface counts, always in the default
// VRF's tables and never in ipAddrTable; link-local addresses are ignored, and a second pass over an
// interface leaves prefix rows behind.
#include "AddressStoreFixture.h"

namespace IpSnmp {
namespace {

using Strings = std::vector<std::string>;

class Ipv6Addresses : public AddressStoreFixture {};

TEST_F(Ipv6Addresses, ConfiguredAddressReadsInaccessibleUntilTheStatusHasIt) {
  intfUp("Ethernet1", 1);
  intfUp("Ethernet2", 2);
  configured6("Ethernet2", {"2001:db8::1/64", "2001:db8:1::1/48"});
  start();
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::1"), "inaccessible 2");
  EXPECT_EQ(rowOf(*ipMib, "2001:db8:1::1"), "inaccessible 2");
  auto entity = active6("Ethernet1", {});
  entity->addrIs(info6("2001:db8::1/64"));
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::1"), "preferred 1");
  EXPECT_EQ(prefixesOf(*ipMib), (Strings{"1 2001:db8::/64", "2 2001:db8:1::/48"}));
  EXPECT_TRUE(ipAddrRowsOf(*ipMib).empty()) << "no ipAddrTable row for IPv6";
}

TEST_F(Ipv6Addresses, SecondPassOverTheInterfaceLeavesThePrefixRowBehind) {
  intfUp("Ethernet1", 1);
  auto entity = active6("Ethernet1", {});
  start();
  entity->addrIs(info6("2001:db8::1/64"));
  entity->addrDel(Pelt::Ip6AddrWithMask("2001:db8::1/64"));
  EXPECT_TRUE(empty(*ipMib)) << "after a single pass the prefix row goes with the address";
  entity->addrIs(info6("2001:db8::1/64"));
  intfUp("Ethernet1", 1);  // a new status object: every address is added again
  entity->addrDel(Pelt::Ip6AddrWithMask("2001:db8::1/64"));
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::1"), "none");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"1 2001:db8::/64"}) << "the table holds the first pass's prefix object";
}

TEST_F(Ipv6Addresses, NewStatusWithAnotherIndexMovesTheIndexButNotThePrefixKey) {
  intfUp("Ethernet1", 4);
  auto entity = active6("Ethernet1", {});
  start();
  entity->addrIs(info6("2001:db8::1/64"));
  intfUp("Ethernet1", 8);
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::1"), "preferred 8");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"4 2001:db8::/64"}) << "IPv6 adds again without deleting";
}

TEST_F(Ipv6Addresses, TwoAddressesOfOneSubnetShareOnePrefixRowThatTheLaterOneOwns) {
  intfUp("Ethernet1", 1);
  auto entity = active6("Ethernet1", {});
  start();
  entity->addrIs(info6("2001:db8::1/64"));
  entity->addrIs(info6("2001:db8::2/64"));
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"1 2001:db8::/64"});
  entity->addrDel(Pelt::Ip6AddrWithMask("2001:db8::1/64"));
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"1 2001:db8::/64"}) << "the earlier address leaves the later one's row";
  entity->addrIs(info6("2001:db8::1/64"));
  entity->addrDel(Pelt::Ip6AddrWithMask("2001:db8::1/64"));
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::2"), "preferred 1");
  EXPECT_TRUE(prefixesOf(*ipMib).empty()) << "the later address takes the shared row with it";
}

TEST_F(Ipv6Addresses, LinkLocalAddressIsIgnoredWhenItComesAndWhenItGoes) {
  intfUp("Ethernet1", 1);
  auto entity = active6("Ethernet1", {});
  start();
  {
    TraceCapture trace;
    entity->addrIs(info6("fe80::1/64"));
    EXPECT_TRUE(trace.has(1, "Ignoring link-local address fe80::1/64"));
  }
  EXPECT_TRUE(empty(*ipMib));
  TraceCapture trace;
  entity->addrDel(Pelt::Ip6AddrWithMask("fe80::1/64"));
  EXPECT_TRUE(trace.has(1, "Ignoring link-local address fe80::1/64"));
  EXPECT_FALSE(trace.has(8, "void IpSnmp::IpAddressTableSm::doDelAddr6(Pelt::IntfId, IpSnmp::AddressSource, const "
                            "Pelt::Ip6AddrWithMask&) for Ethernet1, fe80::1/64"));
}

TEST_F(Ipv6Addresses, AllZeroAddressOrMissingIndexGivesNoRow) {
  intfUp("Ethernet1", 1);
  intfUp("Ethernet2", 0);
  active6("Ethernet1", {"::/64"});
  active6("Ethernet2", {"2001:db8::2/64"});
  start();
  EXPECT_TRUE(empty(*ipMib));
  intfUp("Ethernet2", 2);
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::2"), "preferred 2") << "the index arrives with a new status";
}

TEST_F(Ipv6Addresses, WithoutStatusAddressesThatLeaveStayInTheTables) {
  intfUp("Ethernet1", 1);
  auto entity = active6("Ethernet1", {"2001:db8::1/64"});
  start();
  intfGone("Ethernet1");
  entity->addrDel(Pelt::Ip6AddrWithMask("2001:db8::1/64"));
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::1"), "preferred 1");
  status6->intfDel(Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::1"), "preferred 1") << "the reactor without status removes nothing";
}

}  // namespace
}  // namespace IpSnmp
