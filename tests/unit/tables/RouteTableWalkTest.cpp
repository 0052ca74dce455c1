// ipCidrRouteTable through the agent's handlers: a walk returns every column of every row in the order
// that the keys define, also across column boundaries and when rows come and go between requests,
// and each request of a walk finds its place without a search.
#include <gtest/gtest.h>

#include "AgentRequests.h"
#include "MibTree.h"
#include "frontend/IpForward.h"
#include "frontend/IteratorHint.h"
#include "platform/snmp/ContextTeardown.h"
#include "platform/quor/Trace.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace {

using TableTest::Oid;
using TableTest::oidOf;

const Oid table = oidOf("1.3.6.1.2.1.4.24.4");
const Oid entry = oidOf("1.3.6.1.2.1.4.24.4.1");

void append(Oid& name, Pelt::IpAddr addr) {
  U8 octets[4];
  addr.copyToBuffer(octets);
  name.insert(name.end(), octets, octets + 4);
}

// The instance of `column` of the row of `key`, with the type of service 0 as the table writes it.
Oid instance(unsigned column, const IpSnmp::IpCidrRouteTableIndex& key) {
  Oid name = entry;
  name.push_back(column);
  append(name, key.dest);
  append(name, key.mask);
  name.push_back(0);
  append(name, key.nextHop);
  return name;
}

// Every instance of the table, column by column, each column in key order.
std::vector<Oid> expectedWalk(const IpSnmp::IpForwardMib& mib) {
  std::vector<Oid> names;
  for (unsigned column = 1; column <= 16; ++column)
    for (auto row = mib.ipCidrRouteTable().begin(); !row.atEnd(); row.advance())
      names.push_back(instance(column, row.key()));
  return names;
}

// Whether a GETNEXT answer lies beyond the table: another object, or the end of the MIB view.
bool leftTable(const TableTest::Varbind& answer) {
  return answer.type == SNMP_ENDOFMIBVIEW || !TableTest::isBelow(answer.name, table);
}

// The instances that GETNEXTs return from `position` on, until they leave the table; `afterEach`
// runs after each answer, before the next request.
template <class AfterEach>
std::vector<Oid> walkFrom(const TableTest::AgentRequests& agent, Oid position, AfterEach afterEach) {
  std::vector<Oid> seen;
  while (true) {
    TableTest::Response response = agent.getNext({position});
    if (response.varbinds.size() != 1 || leftTable(response.varbinds[0])) return seen;
    position = response.varbinds[0].name;
    seen.push_back(position);
    afterEach(position);
  }
}

class RouteTableWalkTest : public ::testing::Test {
 protected:
  void SetUp() override { init_IpForward(""); }
  void TearDown() override {
    iteratorHintsEnabledIs(true);
    Snmp::unregisterHandlersOfThisLibrary();
  }

  TableTest::MibTree tree;
  TableTest::AgentRequests agent;
};

// Counts the rows that requests pass over while `run` requests: the frame's steps along the table,
// and the rows that a direct answer looks at before the one it gives.
template <class Run>
std::size_t stepsOf(Run run) {
  std::ostringstream traces;
  Quor::coverageStream_ = &traces;
  run();
  Quor::coverageStream_ = nullptr;
  std::size_t steps = 0;
  const std::string text = traces.str();
  for (const char* step : {"advancing loop context", "passing row"})
    for (std::size_t at = text.find(step); at != std::string::npos; at = text.find(step, at + 1)) ++steps;
  return steps;
}

TEST_F(RouteTableWalkTest, EveryRequestOfAWalkStartsAtItsRow) {
  constexpr std::size_t rows = 120;
  TableTest::addRoutes(*tree.ipForwardMib, rows);
  const std::size_t varbinds = 16 * rows;
  const std::size_t hinted = stepsOf([&] { agent.bulkWalk(table, 25); });
  // One step past the requested row per varbind; at a column's end, the direct answer's and the
  // helpers' search of the column.
  EXPECT_LE(hinted, varbinds + 2 * 16);
  iteratorHintsEnabledIs(false);
  const std::size_t scanned = stepsOf([&] { agent.bulkWalk(table, 25); });
  EXPECT_GT(scanned, 16 * rows * rows / 2);
}

// Rows that change between the requests of a walk: the row just answered in column 2 goes (the walk
// passes it and goes on), and a row is added ahead of the walk after its first answer (the walk sees
// it in every column).
TEST_F(RouteTableWalkTest, RowRemovedUnderTheWalkIsPassedAndRowAddedAheadIsSeen) {
  TableTest::addRoutes(*tree.ipForwardMib, 5);
  const IpSnmp::IpCidrRouteTableIndex removed = TableTest::routeKey("10.0.2.0", 24, "192.0.2.1");
  bool added = false;
  const std::vector<Oid> seen = walkFrom(agent, table, [&](const Oid& answered) {
    if (!std::exchange(added, true)) TableTest::addRoute(*tree.ipForwardMib, "10.0.1.128", 25, "192.0.2.1");
    if (answered == instance(2, removed)) tree.ipForwardMib->ipCidrRouteTableDel(removed);
  });
  std::vector<Oid> wanted = expectedWalk(*tree.ipForwardMib);
  wanted.push_back(instance(1, removed));
  wanted.push_back(instance(2, removed));
  std::sort(wanted.begin(), wanted.end());
  EXPECT_EQ(seen, wanted);
}

}  // namespace
