// The text forms that the scenario, the table tool and the tables' documentation use: each value
// parses from its forms, prints back in its own, and refuses what is not one; and the few rules of
// the values that no integration scenario reaches.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/pelt/EthAddr.h"
#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/IpAddr.h"
#include "platform/pelt/RouteDistinguisher.h"
#include "tests/support/TestSupport.h"

namespace {

// What `T` makes of `text`: its printed form, or "refused".
template <class T>
std::string readBack(const char* text) {
  const std::optional<T> value = T::parse(text);
  if (!value) return "refused";
  if constexpr (requires { value->stringValue(); }) return std::string(value->stringValue().str());
  else return TestSupport::text(*value);
}

struct Form {
  std::string (*read)(const char*);
  const char* text;
  const char* printed;
};

const Form forms[] = {
    {readBack<Pelt::IpAddr>, "192.168.0.1", "192.168.0.1"},
    {readBack<Pelt::IpAddr>, "1.2.3", "refused"},
    {readBack<Pelt::IpAddr>, "1.2.3.256", "refused"},
    {readBack<Pelt::IpAddr>, "1.2.3.4.5", "refused"},
    {readBack<Pelt::IpAddr>, "1.2.3.4 ", "refused"},
    {readBack<Pelt::IpAddr>, "1.2.3.4/8", "refused"},
    {readBack<Pelt::IpAddrWithMask>, "10.1.0.1/24", "10.1.0.1/24"},
    {readBack<Pelt::IpAddrWithMask>, "10.1.0.1/33", "refused"},
    {readBack<Pelt::IpAddrWithMask>, "10.1.0.1/", "refused"},
    {readBack<Pelt::Ip6Addr>, "2001:0db8:0:0::1", "2001:db8::1"},
    {readBack<Pelt::Ip6AddrWithMask>, "2001:db8::1/129", "refused"},
    {readBack<Pelt::EthAddr>, "00:1C:73:00:0a:01", "00:1c:73:00:0a:01"},
    {readBack<Pelt::EthAddr>, "00:1c:73:00:0a", "refused"},
    {readBack<Pelt::EthAddr>, "00-1c-73-00-0a-01", "refused"},
    {readBack<Pelt::EthAddr>, "00:1c:73:00:0a:0g", "refused"},
    {readBack<Pelt::EthAddr>, "00:1c:73:00:0a:011", "refused"},
    {readBack<Pelt::RouteDistinguisher>, "65000:100", "65000:100"},           // type 0: 2-byte AS
    {readBack<Pelt::RouteDistinguisher>, "10.0.0.1:7", "10.0.0.1:7"},         // type 1: IPv4 address
    {readBack<Pelt::RouteDistinguisher>, "4200000000:9", "4200000000:9"},     // type 2: 4-byte AS
    {readBack<Pelt::RouteDistinguisher>, "65535:4294967295", "65535:4294967295"},
    {readBack<Pelt::RouteDistinguisher>, "10.0.0.1:65536", "refused"},
    {readBack<Pelt::RouteDistinguisher>, "4200000000:65536", "refused"},
    {readBack<Pelt::RouteDistinguisher>, "65000", "refused"},
    {readBack<Pelt::RouteDistinguisher>, "1:-1", "refused"},
    {readBack<Pelt::RouteDistinguisher>, ":", "refused"},
};

TEST(TextForms, EachValueReadsBackInItsOwnFormOrIsRefused) {
  for (const Form& f : forms) EXPECT_EQ(f.read(f.text), f.printed) << f.text;
  EXPECT_EQ(Pelt::RouteDistinguisher().stringValue(), "0:0");
}

TEST(Ip6Rules, TheSubnetClearsTheHostBitsAtAnyLengthAndLinkLocalIsFe80Slash10) {
  EXPECT_EQ(Pelt::Ip6AddrWithMask("2001:dbff::1/21").subnet(), Pelt::Ip6AddrWithMask("2001:d800::/21"));
  EXPECT_EQ(Pelt::Ip6AddrWithMask("2001:db8::1/128").subnet(), Pelt::Ip6AddrWithMask("2001:db8::1/128"));
  EXPECT_EQ(Pelt::Ip6AddrWithMask("2001:db8::1/0").subnet(), Pelt::Ip6AddrWithMask("::/0"));
  EXPECT_TRUE(Pelt::Ip6Addr("febf::1").isLinkLocal());
  EXPECT_FALSE(Pelt::Ip6Addr("fec0::1").isLinkLocal());
}

}  // namespace
