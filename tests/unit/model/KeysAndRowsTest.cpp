// Key orders are walk orders, so each key type is checked by walking a collection keyed by it, with
// the neighbours in order that the integration scenarios never put side by side; and an address row
// answers from its master occurrence, which moves between the status side and the configuration.
#include <gtest/gtest.h>

#include <vector>

#include "model/ArpTableIndex.h"
#include "model/IpCidrRouteTableIndex.h"
#include "model/IpMib.h"
#include "platform/quor/RbTreeMap.h"

namespace IpSnmp {
namespace {

template <class K>
struct Row : Quor::PtrInterface, Quor::RbTreeLink {
  explicit Row(K k) : key(std::move(k)) {}
  const K& fwkKey() const { return key; }
  K key;
};

// Inserts `walk` in reverse and returns the keys in walk order.
template <class K>
std::vector<K> walkOf(std::vector<K> walk) {
  Quor::RbTreeMap<Row<K>, K> table;
  for (auto k = walk.rbegin(); k != walk.rend(); ++k) table.memberIs(Quor::makePtr<Row<K>>(*k));
  std::vector<K> out;
  for (auto it = table.begin(); it; ++it) out.push_back(it.key());
  return out;
}

Pelt::IpAddr ip(const char* text) { return Pelt::IpAddr(std::string_view(text)); }
Snmp::String bytesOf(std::initializer_list<U8> b) { return Snmp::String(std::data(b), b.size()); }

TEST(KeyOrder, EachKeyWalksInTheOrderOfItsIndex) {
  const std::vector<InetAddress> addresses{inetAddress(ip("10.1.2.3")), inetAddress(ip("255.255.255.255")),
                                           InetAddress(Ip::ipVersion6, Snmp::String(std::string(16, '\0')))};
  EXPECT_EQ(walkOf(addresses), addresses) << "IPv4 before IPv6, then by bytes, first octet first";
  const std::vector<IpAddressPrefixKey> prefixes{
      IpAddressPrefixKey(4, Ip::ipVersion6, Snmp::String(std::string(16, '\xff')), 128),
      IpAddressPrefixKey(5, Ip::ipVersion4, bytesOf({10, 1, 0, 0}), 16),
      IpAddressPrefixKey(5, Ip::ipVersion4, bytesOf({10, 1, 0, 0}), 24),
      IpAddressPrefixKey(5, Ip::ipVersion6, Snmp::String(std::string(16, '\0')), 64)};
  EXPECT_EQ(walkOf(prefixes), prefixes) << "interface, type, bytes, then the shorter length";
  const std::vector<IpCidrRouteTableIndex> routes{
      IpCidrRouteTableIndex(ip("9.255.255.255"), ip("255.255.255.255"), 7, ip("0.0.0.0")),
      IpCidrRouteTableIndex(ip("10.0.0.0"), ip("255.0.0.0"), 0, ip("1.1.1.1")),
      IpCidrRouteTableIndex(ip("10.0.0.0"), ip("255.0.0.0"), 0, ip("1.1.1.2")),
      IpCidrRouteTableIndex(ip("10.0.0.0"), ip("255.255.0.0"), 0, ip("0.0.0.0"))};
  EXPECT_EQ(walkOf(routes), routes) << "destination, mask, TOS, next hop";
  const std::vector<ArpTableIndex> neighbours{ArpTableIndex(1, ip("10.0.0.9")), ArpTableIndex(1, ip("192.168.0.1")),
                                              ArpTableIndex(2, ip("10.0.0.1"))};
  EXPECT_EQ(walkOf(neighbours), neighbours) << "interface index, then address";
  const std::vector<IntfDataKey> occurrences{IntfDataKey(addressSourceStatus, Pelt::IntfId("Z")),
                                             IntfDataKey(addressSourceConfig, Pelt::IntfId("A"))};
  EXPECT_EQ(walkOf(occurrences), occurrences) << "status occurrences before configured ones";
}

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
