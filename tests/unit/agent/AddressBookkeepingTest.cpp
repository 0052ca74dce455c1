// The two bookkeeping types beside the address machine: the set of route prefixes that wait for an
// interface, and the value that maps interfaces to indexes.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "agent/IfIndexMap.h"
#include "agent/PrefixList.h"

namespace IpSnmp {
namespace {

Pelt::Prefix prefix(const char* text) { return Pelt::Prefix(std::string_view(text)); }

TEST(PrefixListOfAnInterface, HoldsEachPrefixOnce) {
  PrefixList list(Pelt::IntfId("Ethernet1"));
  list.prefixIs(prefix("10.0.0.0/8"), true);
  list.prefixIs(prefix("10.0.0.0/8"), true);
  list.prefixIs(prefix("10.0.0.0/16"), true);
  EXPECT_EQ(list.prefixes().members(), 2u);
  ASSERT_NE(list.prefix(prefix("10.0.0.0/16")), nullptr);
  EXPECT_EQ(list.prefix(prefix("10.1.0.0/16")), nullptr);
  EXPECT_NE(list.prefixDel(prefix("10.0.0.0/8")), nullptr);
  EXPECT_EQ(list.prefixDel(prefix("10.0.0.0/8")), nullptr) << "an absent prefix gives null";
  EXPECT_EQ(list.prefixes().members(), 1u);
}

TEST(PrefixListOfAnInterface, WalksInTheOrderOfTheRouteBacklogHash) {
  PrefixList list(Pelt::IntfId("Ethernet1"));
  const std::vector<Pelt::Prefix> prefixes = {prefix("10.0.0.0/8"), prefix("10.1.0.0/16"), prefix("192.168.1.0/24"),
                                              prefix("0.0.0.0/0"), prefix("172.16.0.0/12")};
  for (const Pelt::Prefix& p : prefixes) list.prefixIs(p, true);
  std::vector<U32> order;
  for (auto it = list.prefixes().begin(); it; ++it) order.push_back(Quor::bitReverse(it.key().hash()));
  EXPECT_EQ(order.size(), prefixes.size());
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(PrefixListOfAnInterface, WalkThatRemovesEachPrefixEmptiesTheList) {
  PrefixList list(Pelt::IntfId("Ethernet1"));
  for (int i = 0; i < 50; ++i) list.prefixIs(Pelt::Prefix(Pelt::IpAddr(10, U8(i), 0, 0), 16), true);
  int visited = 0;
  for (auto it = list.prefixes().begin(); it; ++it, ++visited) list.prefixDel(it.key());
  EXPECT_EQ(visited, 50);
  EXPECT_EQ(list.prefixes().members(), 0u);
  list.prefixIs(prefix("10.0.0.0/8"), true);
  list.prefixDelAll();
  EXPECT_EQ(list.prefixes().members(), 0u);
}

TEST(IfIndexMapValue, AbsentInterfaceReadsZeroAndMapsCompareMemberByMember) {
  IfIndexMap a;
  EXPECT_EQ(a.ifIndex(Pelt::IntfId("Ethernet1")), 0);
  a.ifIndexIs(Pelt::IntfId("Ethernet1"), 7);
  a.ifIndexIs(Pelt::IntfId("Ethernet2"), 8);
  EXPECT_EQ(a.ifIndex(Pelt::IntfId("Ethernet1")), 7);
  IfIndexMap b;
  b.ifIndexIs(Pelt::IntfId("Ethernet2"), 8);
  b.ifIndexIs(Pelt::IntfId("Ethernet1"), 7);
  EXPECT_TRUE(a == b);
  b.ifIndexIs(Pelt::IntfId("Ethernet1"), 9);
  EXPECT_TRUE(a != b);
  a.ifIndexDel(Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(a.ifIndexes(), 1u);
  a.ifIndexDelAll();
  EXPECT_TRUE(a == IfIndexMap());
}

TEST(IfIndexMapValue, PrintsAndParsesAsNone) {
  IfIndexMap map;
  map.ifIndexIs(Pelt::IntfId("Ethernet1"), 7);
  EXPECT_EQ(valueToStrep(map), "None");
  std::ostringstream out;
  out << map;
  EXPECT_EQ(out.str(), "None");
  EXPECT_TRUE(Quor::strepToValue<IfIndexMap>(Quor::String8("None")) == IfIndexMap());
  EXPECT_THROW(Quor::strepToValue<IfIndexMap>(Quor::String8("Value('IpSnmp::IfIndexMap')")), Quor::RangeException);
}

}  // namespace
}  // namespace IpSnmp
