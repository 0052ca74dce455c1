// The counters that the statistics row computes from the kernel's: sums and a difference, in
// unsigned arithmetic that wraps instead of clamping.
#include <gtest/gtest.h>

#include "platform/quor/Clock.h"
#include "stats/SwFwdStats.h"

namespace {

double fixedNow() { return 5000.0; }

// An entity holding `data` as a fresh record, so that its accessors read nothing.
Quor::Ptr<Ip::SwFwdStats> holding(const Ip::SwFwdStatsData& data) {
  Quor::Ptr<Ip::SwFwdStats> stats = Ip::swFwdStatsFactory(Ip::ipVersion4, Quor::Name("default"));
  stats->dataIs(data);
  stats->lastUpdateIs(Quor::now());
  return stats;
}

TEST(ComputedCounters, CombineTheRecordAndWrapInsteadOfClamping) {
  Quor::nowSourceIs(fixedNow);
  Ip::SwFwdStatsData data;
  data.fragOKsIs(3);
  data.fragFailsIs(4);
  data.inNoRoutesIs(1);
  data.forwDatagramsIs(2);
  data.outRequestsIs(50);
  data.fragCreatesIs(10);
  data.outNoRoutesIs(5);
  data.outDiscardsIs(6);
  EXPECT_EQ(holding(data)->fragReqds(), 7u);
  EXPECT_EQ(holding(data)->inForwDatagrams(), 3u);
  EXPECT_EQ(holding(data)->outTransmits(), 2u + 50 + 10 - 5 - 4 - 3 - 6);
  data = Ip::SwFwdStatsData();
  data.outDiscardsIs(1);
  EXPECT_EQ(holding(data)->outTransmits(), 18446744073709551615ull);
  data.fragOKsIs(18446744073709551615ull);
  data.fragFailsIs(2);
  data.inNoRoutesIs(18446744073709551615ull);
  data.forwDatagramsIs(1);
  EXPECT_EQ(holding(data)->fragReqds(), 1u);
  EXPECT_EQ(holding(data)->inForwDatagrams(), 0u);
  Quor::nowSourceIs(nullptr);
}

}  // namespace
