// The perfect hash from the IPv6 stat names to the counters: all 25 names, each at its index and
// bound to its attribute, and nothing else.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "stats/CounterHash.h"

namespace {

struct Keyword {
  unsigned int index;
  const char* stat;
  const char* attribute;
};

// The keyword table: each stat at the index of its hash, and the attribute it fills.
constexpr Keyword keywords[] = {
    {12, "Ip6OutOctets", "outOctets"},         {13, "Ip6InDiscards", "inDiscards"},
    {14, "Ip6InMcastPkts", "inMcastPkts"},     {15, "Ip6OutMcastPkts", "outMcastPkts"},
    {16, "Ip6InMcastOctets", "inMcastOctets"}, {17, "Ip6OutMcastOctets", "outMcastOctets"},
    {18, "Ip6InNoRoutes", "inNoRoutes"},       {19, "Ip6OutNoRoutes", "outNoRoutes"},
    {20, "Ip6InAddrErrors", "inAddrErrors"},   {21, "Ip6InOctets", "inOctets"},
    {22, "Ip6FragFails", "fragFails"},         {23, "Ip6InReceives", "inReceives"},
    {24, "Ip6OutForwDatagrams", "forwDatagrams"}, {25, "Ip6ReasmTimeout", "reasmTimeout"},
    {26, "Ip6ReasmOKs", "reasmOKs"},           {28, "Ip6ReasmReqds", "reasmReqds"},
    {29, "Ip6OutRequests", "outRequests"},     {30, "Ip6FragOKs", "fragOKs"},
    {33, "Ip6ReasmFails", "reasmFails"},       {34, "Ip6OutDiscards", "outDiscards"},
    {38, "Ip6InTruncatedPkts", "inTruncatedPkts"}, {39, "Ip6InHdrErrors", "inHdrErrors"},
    {43, "Ip6InDelivers", "inDelivers"},       {44, "Ip6FragCreates", "fragCreates"},
    {48, "Ip6InUnknownProtos", "inUnknownProtos"},
};

const Ip::Counter* lookup(const std::string& stat) {
  return Ip::counter(stat.c_str(), static_cast<unsigned int>(stat.size()));
}

bool isKeyword(const std::string& stat) {
  for (const Keyword& k : keywords)
    if (stat == k.stat) return true;
  return false;
}

TEST(CounterHash, FindsEveryKeywordAtItsIndex) {
  std::set<const Ip::Counter*> distinct;
  for (const Keyword& k : keywords) {
    unsigned int len = static_cast<unsigned int>(std::strlen(k.stat));
    EXPECT_EQ(Ip::CounterHash::hash(k.stat, len), k.index) << k.stat;
    const Ip::CounterHash::Entry* entry = Ip::CounterHash::in_word_set(k.stat, len);
    ASSERT_NE(entry, nullptr) << k.stat;
    EXPECT_STREQ(entry->name, k.stat);
    EXPECT_EQ(lookup(k.stat), entry->counter);
    distinct.insert(entry->counter);
  }
  EXPECT_EQ(distinct.size(), 25u);
}

TEST(CounterHash, EachCounterWritesAndReadsItsOwnAttributeOnly) {
  for (const Keyword& k : keywords) {
    const Ip::Counter* c = lookup(k.stat);
    ASSERT_NE(c, nullptr) << k.stat;
    EXPECT_EQ(c->name(), k.attribute);
    Ip::SwFwdStatsData data;
    c->write(data, 77);
    c->write(data, 78);  // overwrites, never adds
    std::string expected = std::string("Value('Ip::SwFwdStatsData', ** {'") + k.attribute + "': 78})";
    EXPECT_EQ(data, Quor::strepToValue<Ip::SwFwdStatsData>(Quor::String8(expected))) << k.stat;
    EXPECT_EQ(c->read(data), 78u);
  }
}

TEST(CounterHash, LengthsOutsideTenToNineteenAreNeverHashed) {
  // The keyword itself, presented with a length that the table cannot hold.
  EXPECT_EQ(Ip::CounterHash::in_word_set("Ip6InReceives", 9), nullptr);
  EXPECT_EQ(Ip::CounterHash::in_word_set("Ip6InReceives", 20), nullptr);
  EXPECT_EQ(lookup("Ip6InFoo9"), nullptr);
  EXPECT_EQ(lookup("Ip6InUnknownProtos20"), nullptr);
  EXPECT_EQ(lookup(""), nullptr);
}

TEST(CounterHash, NamesOnAKeywordsIndexMustMatchItWhole) {
  // Same index as a keyword, different from the second character on: the comparison refuses them.
  EXPECT_EQ(Ip::CounterHash::hash("Ip6InBcastOctets", 16), 16u);
  EXPECT_EQ(lookup("Ip6InBcastOctets"), nullptr);
  EXPECT_EQ(Ip::CounterHash::hash("Ip6OutTransmits", 15), 20u);
  EXPECT_EQ(lookup("Ip6OutTransmits"), nullptr);
  // Same index, different first character.
  EXPECT_EQ(Ip::CounterHash::hash("Xp6InReceives", 13), 23u);
  EXPECT_EQ(lookup("Xp6InReceives"), nullptr);
  // An index with an empty entry, and one past the table.
  EXPECT_EQ(Ip::CounterHash::hash("Ip6Abcdaaz", 10), 10u);
  EXPECT_EQ(lookup("Ip6Abcdaaz"), nullptr);
  EXPECT_GT(Ip::CounterHash::hash("Ip6InZZZZZ", 10), 48u);
  EXPECT_EQ(lookup("Ip6InZZZZZ"), nullptr);
}

TEST(CounterHash, NoOtherStatOfTheKernelFileHasACounter) {
  std::ifstream file(STATS_FIXTURES "/snmp6-kernel");
  std::string line;
  int others = 0;
  while (std::getline(file, line)) {
    std::string stat = line.substr(0, line.find(' '));
    if (isKeyword(stat)) continue;
    ++others;
    EXPECT_EQ(lookup(stat), nullptr) << stat;
  }
  EXPECT_EQ(others, 65);
}

}  // namespace
