// Key orders are walk orders: checked by walking a collection keyed by them, and the text form
// of keys, which traces and mutator failures print.
#include <gtest/gtest.h>

#include <vector>

#include "model/ArpTableIndex.h"
#include "model/InetAddress.h"
#include "model/IntfData.h"
#include "model/IpAddressPrefixKey.h"
#include "model/IpCidrRouteTableIndex.h"
#include "platform/quor/RbTreeMap.h"

namespace IpSnmp {
namespace {

template <class K>
struct Row : Quor::PtrInterface, Quor::RbTreeLink {
  explicit Row(K k) : key(std::move(k)) {}
  const K& fwkKey() const { return key; }
  K key;
};

// Inserts the keys in the order given and returns them in walk order.
template <class K>
std::vector<K> walkOrder(const std::vector<K>& keys) {
  Quor::RbTreeMap<Row<K>, K> table;
  for (const K& k : keys) table.memberIs(Quor::makePtr<Row<K>>(k));
  std::vector<K> out;
  for (auto it = table.begin(); it; ++it) out.push_back(it.key());
  return out;
}

Pelt::IpAddr ip(const char* text) { return Pelt::IpAddr(std::string_view(text)); }
Snmp::String bytesOf(std::initializer_list<U8> b) { return Snmp::String(std::data(b), b.size()); }

TEST(KeyOrder, AddressesWalkIpv4BeforeIpv6ThenByBytes) {
  auto v6zero = InetAddress(Ip::ipVersion6, Snmp::String(std::string(16, '\0')));
  auto top = inetAddress(ip("255.255.255.255"));
  auto low = inetAddress(ip("10.1.2.3"));
  EXPECT_EQ(walkOrder<InetAddress>({v6zero, top, low}), (std::vector<InetAddress>{low, top, v6zero}));
  EXPECT_EQ(low.bytes, bytesOf({10, 1, 2, 3})) << "first octet first, whatever the byte order";
}

TEST(KeyOrder, PrefixesWalkByInterfaceTypeBytesThenShorterLength) {
  IpAddressPrefixKey a(5, Ip::ipVersion4, bytesOf({10, 1, 0, 0}), 24);
  IpAddressPrefixKey b(5, Ip::ipVersion4, bytesOf({10, 1, 0, 0}), 16);
  IpAddressPrefixKey c(5, Ip::ipVersion6, Snmp::String(std::string(16, '\0')), 64);
  IpAddressPrefixKey d(4, Ip::ipVersion6, Snmp::String(std::string(16, '\xff')), 128);
  EXPECT_EQ(walkOrder<IpAddressPrefixKey>({a, b, c, d}), (std::vector<IpAddressPrefixKey>{d, b, a, c}));
  EXPECT_NE(a, b);
}

TEST(KeyOrder, StatusOccurrencesComeBeforeConfigOccurrences) {
  IntfDataKey statusZ(addressSourceStatus, Pelt::IntfId("Z"));
  IntfDataKey configA(addressSourceConfig, Pelt::IntfId("A"));
  EXPECT_EQ(walkOrder<IntfDataKey>({configA, statusZ}), (std::vector<IntfDataKey>{statusZ, configA}));
  EXPECT_TRUE(!IntfDataKey(addressSourceStatus, Pelt::IntfId()));
  EXPECT_FALSE(!statusZ);
}

TEST(KeyOrder, RoutesWalkByDestMaskTosNextHop) {
  IpCidrRouteTableIndex r1(ip("10.0.0.0"), ip("255.0.0.0"), 0, ip("1.1.1.2"));
  IpCidrRouteTableIndex r2(ip("10.0.0.0"), ip("255.0.0.0"), 0, ip("1.1.1.1"));
  IpCidrRouteTableIndex r3(ip("10.0.0.0"), ip("255.255.0.0"), 0, ip("0.0.0.0"));
  IpCidrRouteTableIndex r4(ip("9.255.255.255"), ip("255.255.255.255"), 7, ip("0.0.0.0"));
  EXPECT_EQ(walkOrder<IpCidrRouteTableIndex>({r1, r2, r3, r4}), (std::vector<IpCidrRouteTableIndex>{r4, r2, r1, r3}));
}

TEST(KeyOrder, NeighboursWalkByInterfaceIndexThenAddress) {
  ArpTableIndex a(2, ip("10.0.0.1")), b(1, ip("192.168.0.1")), c(1, ip("10.0.0.9"));
  EXPECT_EQ(walkOrder<ArpTableIndex>({a, b, c}), (std::vector<ArpTableIndex>{c, b, a}));
  EXPECT_TRUE(c < b && c <= b && b > c && b >= c && !(b < c));
}

TEST(KeyText, FormsRoundTrip) {
  auto route = IpCidrRouteTableIndex(ip("10.0.0.0"), ip("255.0.0.0"), 3, ip("1.2.3.4"));
  EXPECT_EQ(valueToStrep(route),
            "Value('IpSnmp::IpCidrRouteTableIndex', ** {'dest': '10.0.0.0', 'mask': '255.0.0.0', 'tos': 3, "
            "'nextHop': '1.2.3.4'})");
  EXPECT_EQ(Quor::strepToValue<IpCidrRouteTableIndex>(valueToStrep(route)), route);
  auto prefix = IpAddressPrefixKey(7, Ip::ipVersion6, Snmp::String(std::string(16, '\x01')), 64);
  EXPECT_EQ(Quor::strepToValue<IpAddressPrefixKey>(valueToStrep(prefix)), prefix);
  auto arp = ArpTableIndex(9, ip("10.9.9.9"));
  EXPECT_EQ(Quor::strepToValue<ArpTableIndex>(valueToStrep(arp)), arp);
  auto occurrence = IntfDataKey(addressSourceConfig, Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(Quor::strepToValue<IntfDataKey>(valueToStrep(occurrence)), occurrence);
  auto addr = inetAddress(ip("10.1.2.3"));
  EXPECT_EQ(Quor::strepToValue<InetAddress>(valueToStrep(addr)), addr);
}

TEST(KeyText, MissingAttributesKeepTheirDefaults) {
  EXPECT_EQ(Quor::strepToValue<InetAddress>("Value('IpSnmp::InetAddress', ** {})"), InetAddress());
  auto noVersion = Quor::strepToValue<InetAddress>("Value('IpSnmp::InetAddress', ** {'bytes': 'ab'})");
  EXPECT_EQ(noVersion.version, Ip::ipVersionUnknown);
  EXPECT_EQ(noVersion.bytes, Snmp::String("ab"));
}

std::string failureOf(const char* text) {
  try {
    Quor::strepToValue<InetAddress>(text);
  } catch (const Quor::RangeException& e) {
    return e.text();
  }
  return "no failure";
}

TEST(KeyText, ParserFailuresSayWhatWasWrong) {
  EXPECT_EQ(failureOf("Value('IpSnmp::InetAddress', ** {"), "premature end of value type InetAddress");
  EXPECT_EQ(failureOf("Value('IpSnmp::InetAddress', ** {'zone': 1})"), "InetAddress has no such attribute: zone");
  std::string valid = "Value('IpSnmp::InetAddress', ** {})";
  EXPECT_EQ(failureOf((valid + "xyz").c_str()), "junk at column 35 deserializing " + valid + "xyz");
}

TEST(OccurrenceData, EqualityIsByPrefixRowIdentity) {
  IntfDataKey key(addressSourceStatus, Pelt::IntfId("Ethernet1"));
  IpAddressPrefixKey prefix(1, Ip::ipVersion4, bytesOf({10, 0, 0, 0}), 8);
  IntfData stored(key, Quor::makePtr<IpAddressPrefixEntry>(prefix));
  IntfData fresh(key, Quor::makePtr<IpAddressPrefixEntry>(prefix));
  EXPECT_FALSE(stored == fresh);
  EXPECT_TRUE(stored == IntfData(key, stored.prefixEntry));
  EXPECT_TRUE(!IntfData());
}

}  // namespace
}  // namespace IpSnmp
