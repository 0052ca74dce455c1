// ipCidrRouteTable, ipCidrRouteNumber and ipNetToMediaTable in the real snmpd, filled by the route and
// ARP machines from the shared-memory tables that the scenario file writes: one row per via of each
// route and one per neighbour, in each context the VRF's own, every walk the rows that the scenario
// implies, and edits of the file followed while the agent runs.
#include <gtest/gtest.h>

#include "AgentUnderTest.h"
#include "ExpectedTable.h"
#include "SharedAgentTest.h"
#include "TableChecks.h"

namespace IntegrationTest {
namespace {

const Credentials publicCommunity = Credentials::v2c("public");
const std::string ipCidrRouteNumber = ".1.3.6.1.2.1.4.24.3.0";
const std::string ipCidrRouteTable = ".1.3.6.1.2.1.4.24.4";
const std::string ipNetToMediaTable = ".1.3.6.1.2.1.4.22";

struct Via {
  std::string hop;
  unsigned ifIndex;
};

// A route as the scenario gives it, with the MIB's number for its type.
struct Route {
  std::string dest;
  unsigned length;
  std::vector<Via> vias;
  int protocol;
  unsigned metric;
  unsigned preference;
};

struct Neighbour {
  unsigned ifIndex;
  std::string address;
  std::string mac;  // as the tools print it
  bool isStatic;
};

const std::string switchPart =
    "routing:\n  ipv4: true\n  ipv6: false\n"
    "vrfs:\n"
    "  red:\n"
    "    routing: { ipv4: true }\n"
    "    published: true\n"
    "    status: { state: active, namespace: ns-red }\n"
    "interfaces:\n"
    "  Ethernet1:\n    ifIndex: 1\n    config: { ipv4: 10.0.1.1/24 }\n    status: { ipv4: 10.0.1.1/24 }\n"
    "  Ethernet2:\n    ifIndex: 2\n"
    "    config: { vrf: red, ipv4: 10.0.2.1/24 }\n    status: { vrf: red, ipv4: 10.0.2.1/24 }\n"
    "  Ethernet4:\n    ifIndex: 4\n    config: { ipv4: 10.4.0.1/16 }\n    status: { ipv4: 10.4.0.1/16 }\n"
    "snmp:\n  initialized: true\n"
    "vrfIds:\n  red: 1\n";

const std::string defaultFecs =
    "fib:\n"
    "  default:\n"
    "    fecs:\n"
    "      1: [0.0.0.0@Ethernet1]\n"
    "      2: [10.0.1.2@Ethernet1, 10.0.1.3@Ethernet1]\n"
    "      3: [10.4.0.9@Ethernet4]\n"
    "    routes:\n"
    "      10.0.1.0/24:     { fec: 1, type: connected, metric: 0, preference: 0 }\n"
    "      0.0.0.0/0:       { fec: 2, type: staticConfig, metric: 1, preference: 1 }\n"
    "      172.16.0.0/12:   { fec: 2, type: ebgp, metric: 100, preference: 200 }\n"
    "      198.51.100.0/24: { fec: 3, type: ospfIntraArea, metric: 20, preference: 110 }\n"
    "      10.30.0.0/16:    { fec: 3, type: rip, metric: 3, preference: 120 }\n";
// Added by the editing test.
const std::string moreRoutes = "      203.0.113.0/24:  { fec: 3, type: ibgp, metric: 7, preference: 200 }\n";
const std::string redFib =
    "  red:\n"
    "    fecs:\n"
    "      1: [10.0.2.2@Ethernet2]\n"
    "    routes:\n"
    "      10.20.0.0/16: { fec: 1, type: ibgp, metric: 50, preference: 20 }\n";
const std::string arpTable =
    "arp:\n"
    "  - { interface: Ethernet1, address: 10.0.1.2, mac: 00:1c:73:00:01:02, static: true }\n"
    "  - { interface: Ethernet4, address: 10.4.0.9, mac: 00:1c:73:00:04:09 }\n"
    "  - { vrf: red, interface: Ethernet2, address: 10.0.2.2, mac: 00:1c:73:00:02:02, static: true }\n";
// Taken away by the editing test.
const std::string lastNeighbour = "  - { interface: Ethernet1, address: 10.0.1.3, mac: 00:1c:73:00:01:03 }\n";

std::string switchScenario(bool edited = false) {
  return switchPart + defaultFecs + (edited ? moreRoutes : "") + redFib + arpTable + (edited ? "" : lastNeighbour);
}

const std::vector<Route> defaultRoutes = {
    {"10.0.1.0", 24, {{"0.0.0.0", 1}}, 2, 0, 0},
    {"0.0.0.0", 0, {{"10.0.1.2", 1}, {"10.0.1.3", 1}}, 3, 1, 1},
    {"172.16.0.0", 12, {{"10.0.1.2", 1}, {"10.0.1.3", 1}}, 14, 100, 200},
    {"198.51.100.0", 24, {{"10.4.0.9", 4}}, 13, 20, 110},
    {"10.30.0.0", 16, {{"10.4.0.9", 4}}, 8, 3, 120}};
const Route addedRoute = {"203.0.113.0", 24, {{"10.4.0.9", 4}}, 14, 7, 200};
const std::vector<Route> redRoutes = {{"10.20.0.0", 16, {{"10.0.2.2", 2}}, 14, 50, 20}};

const std::vector<Neighbour> defaultNeighbours = {{1, "10.0.1.2", "00 1C 73 00 01 02", true},
                                                  {1, "10.0.1.3", "00 1C 73 00 01 03", false},
                                                  {4, "10.4.0.9", "00 1C 73 00 04 09", false}};
const std::vector<Neighbour> redNeighbours = {{2, "10.0.2.2", "00 1C 73 00 02 02", true}};

// Every route's row per via; the columns the route store has no value for are fixed numbers.
ExpectedTable routeTableOf(const std::vector<Route>& routes) {
  ExpectedTable table(ipCidrRouteTable);
  for (const Route& r : routes) {
    const std::string mask = ipv4Mask(r.length);
    for (const Via& via : r.vias) {
      const std::string index = "." + r.dest + "." + mask + ".0." + via.hop;
      const std::pair<unsigned, std::string> integers[] = {
          {3, "0"}, {5, std::to_string(via.ifIndex)}, {6, "1"}, {7, std::to_string(r.protocol)}, {8, "-1"}, {10, "0"},
          {11, std::to_string(r.metric)}, {12, std::to_string(r.preference)}, {13, "-1"}, {14, "-1"}, {15, "-1"}, {16, "1"}};
      table.cellIs(1, index, "IpAddress", r.dest);
      table.cellIs(2, index, "IpAddress", mask);
      table.cellIs(4, index, "IpAddress", via.hop);
      table.cellIs(9, index, "OID", ".0.0");
      for (const auto& [column, value] : integers) table.cellIs(column, index, "INTEGER", value);
    }
  }
  return table;
}

ExpectedTable neighbourTableOf(const std::vector<Neighbour>& neighbours) {
  ExpectedTable table(ipNetToMediaTable);
  for (const Neighbour& n : neighbours) {
    const std::string index = "." + std::to_string(n.ifIndex) + "." + n.address;
    table.cellIs(1, index, "INTEGER", std::to_string(n.ifIndex));
    table.cellIs(2, index, "Hex-STRING", n.mac);
    table.cellIs(3, index, "IpAddress", n.address);
    table.cellIs(4, index, "INTEGER", n.isStatic ? "4" : "3");
  }
  return table;
}

std::size_t rowsOf(const std::vector<Route>& routes) {
  std::size_t rows = 0;
  for (const Route& r : routes) rows += r.vias.size();
  return rows;
}

// The machines build the rows after the start, the routes in time slices: the suite waits for them
// once.
class RouteAndNeighbourTablesTest : public SharedAgentTest<RouteAndNeighbourTablesTest> {
 public:
  static std::string scenario() { return switchScenario(); }
  static void SetUpTestSuite() {
    SharedAgentTest::SetUpTestSuite();
    if (agent && agent->ready())
      eventually([] {
        return walksAs(*agent, routeTableOf(defaultRoutes)) && walksAs(*agent, neighbourTableOf(defaultNeighbours));
      });
  }
};

TEST_F(RouteAndNeighbourTablesTest, RouteTableHasARowPerViaOfEachRoute) {
  expectWalk(*agent, routeTableOf(defaultRoutes));
  EXPECT_EQ(lineOf(agent->tools().getOne(publicCommunity, ipCidrRouteNumber).value_or(Varbind{})),
            ipCidrRouteNumber + " = Gauge32: " + std::to_string(rowsOf(defaultRoutes)));
}

TEST_F(RouteAndNeighbourTablesTest, VrfContextShowsItsOwnRoutes) {
  expectWalk(*agent, routeTableOf(redRoutes), Credentials::v3("red"));
  EXPECT_EQ(agent->tools().getOne(Credentials::v3("red"), ipCidrRouteNumber).value_or(Varbind{}).value,
            std::to_string(rowsOf(redRoutes)));
}

TEST_F(RouteAndNeighbourTablesTest, NeighbourTableReadsTheSharedArpTable) {
  expectWalk(*agent, neighbourTableOf(defaultNeighbours));
  expectWalk(*agent, neighbourTableOf(redNeighbours), Credentials::v2c("public@red"));
}

// The agent follows edits of the scenario's tables; the test has an agent of its own.
TEST(RouteAndNeighbourEditsTest, RouteAddedAndNeighbourRemovedWhileRunningShowInTheNextWalk) {
  if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
  AgentUnderTest agent(switchScenario());
  ASSERT_TRUE(agent.ready()) << agent.diagnostics();
  ASSERT_TRUE(eventually([&] { return walksAs(agent, neighbourTableOf(defaultNeighbours)); })) << agent.diagnostics();

  agent.scenarioIs(switchScenario(true));
  std::vector<Route> routes = defaultRoutes;
  routes.push_back(addedRoute);
  std::vector<Neighbour> left = defaultNeighbours;
  left.erase(left.begin() + 1);
  EXPECT_TRUE(eventually([&] { return walksAs(agent, routeTableOf(routes)); })) << agent.diagnostics();
  EXPECT_TRUE(eventually([&] { return walksAs(agent, neighbourTableOf(left)); })) << agent.diagnostics();
  EXPECT_EQ(agent.tools().getOne(publicCommunity, ipCidrRouteNumber).value_or(Varbind{}).value,
            std::to_string(rowsOf(routes)));
}

}  // namespace
}  // namespace IntegrationTest
