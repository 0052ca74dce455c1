// What requests of oskelSwFwdIpStatsTable cost in reads of the kernel's files, counted on the
// statistics entities while a hand-moved clock decides what is fresh: columns of a row asked within
// half a second share one read, the discontinuity time and the refresh rate read nothing, and a walk
// reads each row at most once per half second however many columns it visits. The rows read this
// machine's own /proc/net files.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "AgentRequests.h"
#include "MibTree.h"
#include "frontend/IpSwForwarding.h"
#include "platform/quor/Clock.h"
#include "platform/snmp/ContextTeardown.h"

namespace {

using TableTest::oidOf;

const TableTest::Oid statsTable = oidOf("1.3.6.1.4.1.48213.3.1.1.1");

TableTest::Oid column(unsigned number) {
  TableTest::Oid name = statsTable;
  name.insert(name.end(), {1, number});
  return name;
}

TableTest::Oid cell(unsigned number, unsigned ipVersion) {
  TableTest::Oid name = column(number);
  name.push_back(ipVersion);
  return name;
}

double clockTime = 0.0;
double tick = 0.0;
// The test's clock: `tick` seconds pass at every look at it.
double testClock() { return clockTime += tick; }

class StatsReadCost : public ::testing::Test {
 protected:
  void SetUp() override {
    clockTime = 100.0;
    tick = 0.0;
    Quor::nowSourceIs(testClock);
    if (!std::filesystem::exists("/proc/net/snmp6")) GTEST_SKIP() << "no IPv6 counters on this machine";
    init_IpSwForwarding("");
  }
  void TearDown() override {
    Quor::nowSourceIs(nullptr);
    Snmp::unregisterHandlersOfThisLibrary();
  }

  TableTest::MibTree tree;
  Quor::Ptr<Ip::SwFwdStats> ipv4 = tree.ipMib->ipSwFwdStatsIs(Ip::ipVersion4, Quor::Name("default")).ptr();
  Quor::Ptr<Ip::SwFwdStats> ipv6 = tree.ipMib->ipSwFwdStatsIs(Ip::ipVersion6, Quor::Name("default")).ptr();
  TableTest::AgentRequests agent;
};

TEST_F(StatsReadCost, ColumnsOfARowWithinHalfASecondShareOneRead) {
  const TableTest::Response both = agent.get({cell(3, 1), cell(4, 1)});
  ASSERT_EQ(both.varbinds.size(), 2u);
  EXPECT_EQ(ipv4->reads(), 1u);
  EXPECT_GT(both.varbinds[1].counter64, 0u) << "this machine has received IPv4 packets";
  EXPECT_EQ(static_cast<unsigned long>(both.varbinds[0].integer), both.varbinds[1].counter64 & 0xffffffffu)
      << "the 32-bit and the 64-bit column show one read";

  clockTime += 0.5;
  agent.get({cell(20, 1)});
  EXPECT_EQ(ipv4->reads(), 1u) << "at exactly half a second the record is still fresh";
  clockTime += 0.001;
  agent.get({cell(20, 1)});
  EXPECT_EQ(ipv4->reads(), 2u);
  EXPECT_EQ(ipv6->reads(), 0u) << "the other row is read only when asked";
}

TEST_F(StatsReadCost, DiscontinuityTimeAndRefreshRateReadNoFile) {
  const TableTest::Response answer = agent.get({cell(46, 1), cell(47, 1), cell(46, 2), cell(47, 2)});
  ASSERT_EQ(answer.varbinds.size(), 4u);
  EXPECT_EQ(answer.varbinds[1].integer, 500);
  EXPECT_EQ(agent.walk(column(46)).size(), 2u);
  EXPECT_EQ(agent.bulkWalk(column(47), 5).size(), 2u);
  EXPECT_EQ(ipv4->reads(), 0u);
  EXPECT_EQ(ipv6->reads(), 0u);
  EXPECT_EQ(ipv4->lastUpdate(), 0.0);
}

TEST_F(StatsReadCost, WalkWithinHalfASecondReadsEachRowOnce) {
  EXPECT_EQ(agent.walk(statsTable).size(), 2u * 45u);
  EXPECT_EQ(agent.bulkWalk(statsTable, 10).size(), 2u * 45u);
  EXPECT_EQ(ipv4->reads(), 1u);
  EXPECT_EQ(ipv6->reads(), 1u);
}

// A walk slower than the freshness: every look at the clock takes 20 ms, so that the 90 cells span
// about two seconds. Each row is read again once its record is stale, and no more often.
TEST_F(StatsReadCost, SlowWalkReadsEachRowAtMostOncePerHalfSecond) {
  tick = 0.02;
  const double start = Quor::now();
  EXPECT_EQ(agent.walk(statsTable).size(), 2u * 45u);
  const double span = Quor::now() - start;
  ASSERT_GT(span, 1.0);
  const U64 bound = 1 + static_cast<U64>(std::floor(span / 0.5));
  for (const Quor::Ptr<Ip::SwFwdStats>& row : {ipv4, ipv6}) {
    EXPECT_LE(row->reads(), bound) << row->ipVersion();
    EXPECT_GE(row->reads(), 2u) << "a row whose record went stale during the walk is read again";
  }
}

}  // namespace
