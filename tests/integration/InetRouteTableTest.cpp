// inetCidrRouteTable and inetCidrRouteNumber in the real snmpd, beside ipCidrRouteTable: in the
// default context and a VRF's, the IPv4 rows of inetCidrRouteTable are the rows of ipCidrRouteTable
// under the other index, with the same values (age and next-hop AS unsigned 0), the IPv6 rows follow,
// and inetCidrRouteNumber counts both.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "AgentUnderTest.h"
#include "Eventually.h"
#include "ExpectedTable.h"
#include "TableChecks.h"

namespace IntegrationTest {
namespace {

const std::string ipCidrRouteTable = ".1.3.6.1.2.1.4.24.4";
const std::string inetCidrRouteNumber = ".1.3.6.1.2.1.4.24.6.0";
const std::string inetCidrRouteTable = ".1.3.6.1.2.1.4.24.7";

std::string defaultScenario() {
  std::ifstream in(IPSNMP_DEFAULT_SCENARIO);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// ipCidrRouteTable's column of each column of inetCidrRouteTable that shows the same value.
const std::pair<unsigned, unsigned> sameColumns[] = {{7, 5},   {8, 6},   {9, 7},   {12, 11}, {13, 12},
                                                     {14, 13}, {15, 14}, {16, 15}, {17, 16}};

// inetCidrRouteTable as the walk of ipCidrRouteTable implies it; "dest.mask.tos.nextHop" becomes
// "1.4.dest.pfxLen.2.0.0" and the next hop "0.0" when it is 0.0.0.0, else "1.4.nextHop".
ExpectedTable inetTableOf(const std::vector<Varbind>& ipCidrWalk) {
  ExpectedTable table(inetCidrRouteTable, {7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17});
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
  return table;
}

class InetRouteTableTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
    ASSERT_TRUE(agent_.ready()) << agent_.diagnostics();
  }
  void TearDown() override {
    if (HasFailure()) std::cerr << agent_.diagnostics();
  }

  // Both tables agree in the context of `who` once the machines have built the rows.
  void expectAgreement(const Credentials& who) {
    std::vector<Varbind> ipv4;
    ASSERT_TRUE(eventually([&] {
      ipv4 = agent_.tools().walk(who, ipCidrRouteTable).varbinds;
      return !ipv4.empty() && walksAs(agent_, inetTableOf(ipv4), who);
    })) << "ipCidrRouteTable has " << ipv4.size() << " cells";
    expectWalk(agent_, inetTableOf(ipv4), who);
    EXPECT_EQ(agent_.tools().getOne(who, inetCidrRouteNumber).value_or(Varbind{}).value,
              std::to_string(ipv4.size() / 16));
  }

  AgentUnderTest agent_{defaultScenario()};
};

TEST_F(InetRouteTableTest, Ipv4RowsAreThoseOfIpCidrRouteTableInEveryContext) {
  expectAgreement(Credentials::v2c("public"));
  expectAgreement(Credentials::v3("red"));
}

}  // namespace
}  // namespace IntegrationTest
