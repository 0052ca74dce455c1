// inetCidrRouteTable and inetCidrRouteNumber in the real snmpd, beside ipCidrRouteTable, from the
// default scenario: in the default context and a VRF's, the IPv4 rows of inetCidrRouteTable are the
// rows of ipCidrRouteTable under the other index, with the same values (age and next-hop AS unsigned
// 0), the IPv6 rows of the scenario follow, and inetCidrRouteNumber counts both; an IPv6 route added
// to the file while the agent runs shows in the next walk, one taken out goes, and so does the row
// of a next hop that its FEC loses.
#include <gtest/gtest.h>


#include "AgentTest.h"
#include "Eventually.h"
#include "ExpectedTable.h"
#include "TableChecks.h"
#include "tests/support/TestSupport.h"

namespace IntegrationTest {
namespace {

const std::string ipCidrRouteTable = ".1.3.6.1.2.1.4.24.4";
const std::string inetCidrRouteNumber = ".1.3.6.1.2.1.4.24.6.0";
const std::string inetCidrRouteTable = ".1.3.6.1.2.1.4.24.7";

// ipCidrRouteTable's column of each column of inetCidrRouteTable that shows the same value.
const std::pair<unsigned, unsigned> sameColumns[] = {{7, 5},   {8, 6},   {9, 7},   {12, 11}, {13, 12},
                                                     {14, 13}, {15, 14}, {16, 15}, {17, 16}};

// An IPv6 route's row: the index after the destination type, the interface index, the protocol's
// number, the metric and the preference.
struct Ipv6Row {
  std::string index;
  unsigned ifIndex;
  int protocol;
  unsigned metric;
  unsigned preference;
};

// The next hop of an IPv6 row as an index: none, the address, or a link-local one with its zone.
std::string hopIndex(const std::string& hop, unsigned zone = 0) {
  if (hop.empty()) return ".0.0";
  if (!zone) return ".2." + addressIndex(hop, true);
  std::string index = ".4.20." + addressIndex(hop, false);
  for (int shift = 24; shift >= 0; shift -= 8) index += "." + std::to_string((zone >> shift) & 0xff);
  return index;
}

std::string ipv6Dest(const std::string& dest, unsigned pfxLen) {
  return ".2." + addressIndex(dest, true) + "." + std::to_string(pfxLen) + ".2.0.0";
}

// The IPv6 routes of scenarios/default.yaml, and the one that the editing test adds.
const std::string defaultHop = "fe80::21c:73ff:fe00:102";
const std::vector<Ipv6Row> defaultIpv6 = {
    {ipv6Dest("::", 0) + hopIndex("2001:db8:0:1::3"), 1, 3, 1, 1},
    {ipv6Dest("::", 0) + hopIndex(defaultHop, 1), 1, 3, 1, 1},
    {ipv6Dest("2001:db8:0:1::", 64) + hopIndex(""), 1, 2, 0, 1}};
const std::vector<Ipv6Row> redIpv6 = {{ipv6Dest("2001:db8:20::", 48) + hopIndex("fe80::2", 2), 2, 14, 50, 200}};
const std::string addedRoute = "      \"2001:db8:99::/48\": { fec: 7, type: ebgp, metric: 9, preference: 20 }\n";
const std::vector<Ipv6Row> addedIpv6 = {{ipv6Dest("2001:db8:99::", 48) + hopIndex("2001:db8:0:1::3"), 1, 14, 9, 20},
                                        {ipv6Dest("2001:db8:99::", 48) + hopIndex(defaultHop, 1), 1, 14, 9, 20}};

// inetCidrRouteTable as the walk of ipCidrRouteTable implies it; "dest.mask.tos.nextHop" becomes
// "1.4.dest.pfxLen.2.0.0" and the next hop "0.0" when it is 0.0.0.0, else "1.4.nextHop".
ExpectedTable inetTableOf(const std::vector<Varbind>& ipCidrWalk, const std::vector<Ipv6Row>& ipv6) {
  ExpectedTable table(inetCidrRouteTable);
  for (const Varbind& cell : ipCidrWalk) {
    const OidParts parts = oidParts(cell.oid);
    const std::size_t at = oidParts(ipCidrRouteTable).size() + 1;
    const unsigned column = static_cast<unsigned>(parts[at]);
    std::string dest, hop;
    unsigned pfxLen = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      dest += "." + std::to_string(parts[at + 1 + i]);
      pfxLen += static_cast<unsigned>(__builtin_popcountl(parts[at + 5 + i]));
      hop += "." + std::to_string(parts[at + 10 + i]);
    }
    const std::string index =
        ".1.4" + dest + "." + std::to_string(pfxLen) + ".2.0.0" + (hop == ".0.0.0.0" ? ".0.0" : ".1.4" + hop);
    for (const auto& [inet, ip] : sameColumns)
      if (ip == column) table.cellIs(inet, index, cell.type, cell.value);
    if (column == 1) {
      table.cellIs(10, index, "Gauge32", "0");
      table.cellIs(11, index, "Gauge32", "0");
    }
  }
  for (const Ipv6Row& row : ipv6) {
    const std::pair<unsigned, std::string> integers[] = {
        {7, std::to_string(row.ifIndex)}, {8, "1"},  {9, std::to_string(row.protocol)}, {12, std::to_string(row.metric)},
        {13, std::to_string(row.preference)}, {14, "-1"}, {15, "-1"}, {16, "-1"}, {17, "1"}};
    for (const auto& [column, value] : integers) table.cellIs(column, row.index, "INTEGER", value);
    table.cellIs(10, row.index, "Gauge32", "0");
    table.cellIs(11, row.index, "Gauge32", "0");
  }
  return table;
}

class InetRouteTableTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (IsSkipped()) return;
    agent = std::make_unique<AgentUnderTest>(scenario_);
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }

  // inetCidrRouteTable in the context of `who` is ipCidrRouteTable's rows and `ipv6`, once the
  // machines have built the rows.
  void expectRows(const Credentials& who, const std::vector<Ipv6Row>& ipv6) {
    std::vector<Varbind> ipv4;
    ASSERT_TRUE(eventually([&] {
      ipv4 = agent->tools().walk(who, ipCidrRouteTable).varbinds;
      return !ipv4.empty() && walksAs(*agent, inetTableOf(ipv4, ipv6), who);
    })) << "ipCidrRouteTable has " << ipv4.size() << " cells";
    expectWalk(*agent, inetTableOf(ipv4, ipv6), who);
    EXPECT_EQ(agent->tools().getOne(who, inetCidrRouteNumber).value_or(Varbind{}).value,
              std::to_string(ipv4.size() / 16 + ipv6.size()));
  }

  const std::string scenario_ = TestSupport::fileText(IPSNMP_DEFAULT_SCENARIO);
};

TEST_F(InetRouteTableTest, RowsOfBothFamiliesInEveryContextAndIpv4AsInIpCidrRouteTable) {
  expectRows(Credentials::v2c("public"), defaultIpv6);
  expectRows(Credentials::v3("red"), redIpv6);
}

TEST_F(InetRouteTableTest, Ipv6RoutesAddedToAndTakenFromTheScenarioShowInTheNextWalk) {
  expectRows(Credentials::v2c("public"), defaultIpv6);
  const std::string after = "{ fec: 7, type: staticConfig, metric: 1 }\n";
  const std::string connected = "\"2001:db8:0:1::/64\": { fec: 6, type: connected }";
  std::string edited = scenario_;
  const std::size_t at = edited.find(after);
  ASSERT_NE(at, std::string::npos);
  edited.insert(at + after.size(), addedRoute);
  const std::size_t gone = edited.find(connected);
  ASSERT_NE(gone, std::string::npos);
  edited.erase(gone, connected.size());
  agent->scenarioIs(edited);
  std::vector<Ipv6Row> rows(defaultIpv6.begin(), defaultIpv6.end() - 1);  // the connected route's is last
  rows.insert(rows.end(), addedIpv6.begin(), addedIpv6.end());
  expectRows(Credentials::v2c("public"), rows);

  // FEC 7 loses its link-local next hop: both of its routes lose that row.
  const std::string linkLocalVia = "\"" + defaultHop + "@Ethernet1\", ";
  ASSERT_NE(edited.find(linkLocalVia), std::string::npos);
  agent->scenarioIs(edited.erase(edited.find(linkLocalVia), linkLocalVia.size()));
  expectRows(Credentials::v2c("public"), {defaultIpv6[0], addedIpv6[0]});
}

}  // namespace
}  // namespace IntegrationTest
