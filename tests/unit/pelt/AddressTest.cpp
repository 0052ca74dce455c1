// IPv4 and IPv6 addresses: the numeric order the MIB walks rely on, byte layout, parsing, subnets.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "platform/pelt/IpGenAddr.h"
#include "platform/pelt/Prefix.h"
#include "platform/quor/Strep.h"

namespace {

template <class T>
std::string text(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

TEST(IpAddr, OrdersAsABigEndianNumberNotByMemoryImage) {
  // In memory (network order) 1.0.0.2 < 2.0.0.1 reversed on a little-endian host; the order must not care.
  Pelt::IpAddr low(1, 0, 0, 2), high(2, 0, 0, 1);
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
  EXPECT_TRUE(Pelt::IpAddr(10, 0, 0, 255) < Pelt::IpAddr(10, 0, 1, 0));
  EXPECT_TRUE(Pelt::IpAddr(127, 255, 255, 255) < Pelt::IpAddr(128, 0, 0, 0)) << "top bit is not a sign";
  EXPECT_FALSE(low < low);
}

TEST(IpAddr, HoldsTheOctetsFirstOctetFirst) {
  Pelt::IpAddr addr(10, 1, 2, 3);
  U8 bytes[4];
  addr.copyToBuffer(bytes);
  EXPECT_EQ((std::vector<U8>(bytes, bytes + 4)), (std::vector<U8>{10, 1, 2, 3}));
  EXPECT_EQ(addr.hostOrder(), 0x0a010203u);
  EXPECT_EQ(Pelt::IpAddr::fromHostOrder(0x0a010203u), addr);
}

TEST(IpAddr, ParsesOnlyDottedQuads) {
  EXPECT_EQ(Pelt::IpAddr("192.168.0.1"), Pelt::IpAddr(192, 168, 0, 1));
  EXPECT_EQ(text(Pelt::IpAddr("192.168.0.1")), "192.168.0.1");
  for (const char* bad : {"", "1.2.3", "1.2.3.256", "1.2.3.4.5", "a.b.c.d", "1.2.3.4 ", "1.2.3.4/8"})
    EXPECT_FALSE(Pelt::IpAddr::parse(bad)) << bad;
  try {
    Pelt::IpAddr("10.0.0.300");
    FAIL() << "no exception";
  } catch (const Quor::RangeException& e) {
    EXPECT_EQ(e.text(), "'10.0.0.300' is not an IPv4 address");
  }
}

TEST(IpAddr, StrepIsTheQuotedDottedQuadAndParsesBack) {
  Pelt::IpAddr addr(10, 1, 2, 3);
  EXPECT_EQ(Pelt::valueToStrep(addr), "'10.1.2.3'");
  EXPECT_EQ(Quor::strepToValue<Pelt::IpAddr>(Pelt::valueToStrep(addr)), addr);
  EXPECT_THROW(Quor::strepToValue<Pelt::IpAddr>("'10.1.2'"), Quor::RangeException);
}

TEST(IpAddrWithMask, DefaultsToZeroSlashZeroAndRefusesLongMasks) {
  EXPECT_EQ(text(Pelt::IpAddrWithMask()), "0.0.0.0/0");
  EXPECT_EQ(Pelt::IpAddrWithMask("10.1.0.1/24"), Pelt::IpAddrWithMask(Pelt::IpAddr(10, 1, 0, 1), 24));
  EXPECT_FALSE(Pelt::IpAddrWithMask::parse("10.1.0.1/33"));
  EXPECT_FALSE(Pelt::IpAddrWithMask::parse("10.1.0.1"));
  EXPECT_FALSE(Pelt::IpAddrWithMask::parse("10.1.0.1/"));
  EXPECT_THROW(Pelt::IpAddrWithMask(Pelt::IpAddr(), 33), Quor::RangeException);
}

TEST(Ip6Addr, WordsAreMostSignificantFirstAndCopyInNetworkOrder) {
  Pelt::Ip6Addr addr(0x20010db8u, 0, 0, 1);
  U8 bytes[16];
  addr.copyToBuffer(bytes);
  EXPECT_EQ(bytes[0], 0x20);
  EXPECT_EQ(bytes[3], 0xb8);
  EXPECT_EQ(bytes[15], 1);
  EXPECT_EQ(addr, Pelt::Ip6Addr("2001:db8::1"));
  EXPECT_EQ(text(addr), "2001:db8::1");
}

TEST(Ip6Addr, LinkLocalIsFe80Slash10) {
  EXPECT_TRUE(Pelt::Ip6Addr("fe80::1").isLinkLocal());
  EXPECT_TRUE(Pelt::Ip6Addr("febf::1").isLinkLocal());
  EXPECT_FALSE(Pelt::Ip6Addr("fec0::1").isLinkLocal());
  EXPECT_FALSE(Pelt::Ip6Addr("2001:db8::1").isLinkLocal());
}

TEST(Ip6AddrWithMask, SubnetClearsTheHostBitsAtAnyLength) {
  EXPECT_EQ(Pelt::Ip6AddrWithMask("2001:db8:1:2::5/64").subnet(), Pelt::Ip6AddrWithMask("2001:db8:1:2::/64"));
  EXPECT_EQ(Pelt::Ip6AddrWithMask("2001:dbff::1/21").subnet(), Pelt::Ip6AddrWithMask("2001:d800::/21"));
  EXPECT_EQ(Pelt::Ip6AddrWithMask("2001:db8::1/128").subnet(), Pelt::Ip6AddrWithMask("2001:db8::1/128"));
  EXPECT_EQ(Pelt::Ip6AddrWithMask("2001:db8::1/0").subnet(), Pelt::Ip6AddrWithMask("::/0"));
  EXPECT_FALSE(Pelt::Ip6AddrWithMask::parse("2001:db8::1/129"));
}

TEST(Ip6AddrWithMask, OrdersByAddressThenShorterLength) {
  std::vector<Pelt::Ip6AddrWithMask> addrs{Pelt::Ip6AddrWithMask("2001:db8::2/64"),
                                           Pelt::Ip6AddrWithMask("2001:db8::1/128"),
                                           Pelt::Ip6AddrWithMask("2001:db8::1/64")};
  std::sort(addrs.begin(), addrs.end());
  EXPECT_EQ(text(addrs[0]) + " " + text(addrs[1]) + " " + text(addrs[2]),
            "2001:db8::1/64 2001:db8::1/128 2001:db8::2/64");
  EXPECT_NE(addrs[0].hash(), addrs[1].hash()) << "the length takes part in the hash";
}

TEST(IpGenAddr, KnowsItsVersionAndSortsIpv4First) {
  Pelt::IpGenAddr none, v4(Pelt::IpAddr(10, 0, 0, 1)), v6(Pelt::Ip6Addr("::"));
  EXPECT_EQ(none.version(), Ip::ipVersionUnknown);
  EXPECT_EQ(v4.v4Addr(), Pelt::IpAddr(10, 0, 0, 1));
  EXPECT_EQ(v6.v4Addr(), Pelt::IpAddr());
  EXPECT_TRUE(none < v4);
  EXPECT_TRUE(v4 < v6);
  EXPECT_EQ(text(v4), "10.0.0.1");
}

TEST(Prefix, HashIsTheIntegerMixOfHostOrderAddressAndLength) {
  // Expected values worked out apart from this code, from the host-order address XOR the length.
  EXPECT_EQ(Pelt::Prefix("10.0.0.0/8").hash(), 0xc13c560au);
  EXPECT_EQ(Pelt::Prefix("192.168.1.0/24").hash(), 0xd16ad139u);
  EXPECT_EQ(Pelt::Prefix().hash(), 0xcaa3caa3u) << "0.0.0.0/0";
}

TEST(Prefix, ComparesAddressNumericallyThenLength) {
  EXPECT_TRUE(Pelt::Prefix("9.255.0.0/16") < Pelt::Prefix("10.0.0.0/8"));
  EXPECT_TRUE(Pelt::Prefix("10.0.0.0/8") < Pelt::Prefix("10.0.0.0/16"));
  EXPECT_NE(Pelt::Prefix("10.0.0.0/8"), Pelt::Prefix("10.0.0.0/16"));
  EXPECT_EQ(text(Pelt::Prefix("10.0.0.0/8")), "10.0.0.0/8");
}

}  // namespace
