// The counter record as a value: comparison, zero test, and its textual form both ways.
#include <gtest/gtest.h>

#include <sstream>

#include "stats/SwFwdStatsData.h"

namespace {

using Ip::SwFwdStatsData;

// Every attribute different, in the order of the form: 1, 2, ... 27.
SwFwdStatsData numbered() {
  SwFwdStatsData data;
  U64 n = 0;
#define NUMBER(attr, Attr) data.attr##Is(++n);
  IP_SW_FWD_STATS_ATTRIBUTES(NUMBER)
#undef NUMBER
  return data;
}

std::string rangeFailure(const char* text) {
  try {
    Quor::strepToValue<SwFwdStatsData>(Quor::String8(text));
  } catch (const Quor::RangeException& e) {
    return e.text();
  }
  return "no exception";
}

TEST(SwFwdStatsDataValue, StartsAtZero) {
  SwFwdStatsData data;
  EXPECT_TRUE(!data);
  EXPECT_EQ(data, SwFwdStatsData());
}

TEST(SwFwdStatsDataValue, EveryAttributeTakesPartInComparison) {
  const SwFwdStatsData all = numbered();
#define DIFFERS_IN(attr, Attr)                                \
  {                                                           \
    SwFwdStatsData other = all;                               \
    other.attr##Is(0);                                        \
    EXPECT_NE(other, all) << #attr;                           \
    EXPECT_FALSE(other == all) << #attr;                      \
    SwFwdStatsData single;                                    \
    single.attr##Is(1);                                       \
    EXPECT_FALSE(!single) << #attr;                           \
  }
  IP_SW_FWD_STATS_ATTRIBUTES(DIFFERS_IN)
#undef DIFFERS_IN
}

TEST(SwFwdStatsDataText, PrintsAllAttributesInOrder) {
  std::ostringstream out;
  out << numbered();
  EXPECT_EQ(out.str(),
            "Value('Ip::SwFwdStatsData', ** {'inReceives': 1, 'inOctets': 2, 'inHdrErrors': 3, 'inAddrErrors': 4, "
            "'forwDatagrams': 5, 'inUnknownProtos': 6, 'inDiscards': 7, 'inDelivers': 8, 'outRequests': 9, "
            "'outDiscards': 10, 'outNoRoutes': 11, 'outOctets': 12, 'reasmTimeout': 13, 'reasmReqds': 14, "
            "'reasmOKs': 15, 'reasmFails': 16, 'fragOKs': 17, 'fragFails': 18, 'fragCreates': 19, "
            "'inNoRoutes': 20, 'inTruncatedPkts': 21, 'inMcastPkts': 22, 'inMcastOctets': 23, "
            "'outMcastPkts': 24, 'outMcastOctets': 25, 'inBcastPkts': 26, 'outBcastPkts': 27})");
}

TEST(SwFwdStatsDataText, RoundTripGivesTheSameRecord) {
  SwFwdStatsData data = numbered();
  data.outBcastPktsIs(18446744073709551615ull);
  EXPECT_EQ(Quor::strepToValue<SwFwdStatsData>(Ip::valueToStrep(data)), data);
  EXPECT_EQ(Quor::strepToValue<SwFwdStatsData>(Ip::valueToStrep(SwFwdStatsData())), SwFwdStatsData());
}

TEST(SwFwdStatsDataText, OmittedAttributesAreZeroAndOrderIsFree) {
  SwFwdStatsData only = Quor::strepToValue<SwFwdStatsData>(
      Quor::String8("Value('Ip::SwFwdStatsData', ** {'outBcastPkts': 9})"));
  SwFwdStatsData expected;
  expected.outBcastPktsIs(9);
  EXPECT_EQ(only, expected);
  SwFwdStatsData two = Quor::strepToValue<SwFwdStatsData>(
      Quor::String8(" Value ( 'Ip::SwFwdStatsData' , ** { 'fragOKs' : 4 , 'inReceives':3 } ) "));
  EXPECT_EQ(two.inReceives(), 3u);
  EXPECT_EQ(two.fragOKs(), 4u);
  EXPECT_EQ(two.inOctets(), 0u);
}

TEST(SwFwdStatsDataText, FailuresNameTheirCause) {
  EXPECT_EQ(rangeFailure("Value('Ip::SwFwdStatsData', ** {'outTransmits': 1})"),
            "SwFwdStatsData has no such attribute: outTransmits");
  EXPECT_EQ(rangeFailure("Value('Ip::SwFwdStatsData', ** {'inReceives': 1"), "premature end of value type SwFwdStatsData");
  EXPECT_EQ(rangeFailure("Value('Ip::SwFwdStatsData', ** {"), "premature end of value type SwFwdStatsData");
  EXPECT_EQ(rangeFailure("Value('Ip::SwFwdStatsData', ** {}) 7"),
            "junk at column 35 deserializing Value('Ip::SwFwdStatsData', ** {}) 7");
  EXPECT_EQ(rangeFailure("Value('IpSnmp::InetAddress', ** {})"),
            "expected \"'Ip::SwFwdStatsData'\" at column 6, found \"'IpSnmp::InetAddress...\"");
  EXPECT_EQ(rangeFailure("Value('Ip::SwFwdStatsData', ** {'inReceives': -1})"),
            "cannot convert \"-1})\" at column 46 to integer deserializing attribute inReceives");
}

}  // namespace
