// The private tables in the real snmpd: oskelSwFwdIpStatsTable with the kernel's own counters of this
// machine, one row per IP version in the default context and the IPv4 row alone in a VRF's;
// oskelVrfTable and oskelVrfIfTable, which describe the whole switch, in the default context and in no
// other. (Their SET refusals are AddressTablesTest's, with every other object's.)
#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <set>
#include <thread>

#include "AgentUnderTest.h"
#include "ExpectedTable.h"
#include "KernelCounters.h"
#include "SharedAgentTest.h"
#include "TableChecks.h"

namespace IntegrationTest {
namespace {

const Credentials publicCommunity = Credentials::v2c("public");
const std::string statsTable = ".1.3.6.1.4.1.48213.3.1.1.1";
const std::string vrfTable = ".1.3.6.1.4.1.48213.3.18.1.1";
const std::string vrfIfTable = ".1.3.6.1.4.1.48213.3.18.1.2";

const char* const switchScenario =
    "routing:\n  ipv4: true\n  ipv6: true\n"
    "vrfs:\n"
    "  red:\n"
    "    routing: { ipv4: true }\n"
    "    published: true\n"
    "    config: { routeDistinguisher: \"65000:100\" }\n"
    "    status: { state: active, namespace: ns-red }\n"
    "  blue:\n"
    "    routing: { ipv4: false }\n"
    "    published: true\n"
    "    config: { routeDistinguisher: \"65000:200\" }\n"
    "    status: { state: active, namespace: ns-blue }\n"
    "interfaces:\n"
    "  Ethernet1:\n    ifIndex: 1\n    config: { ipv4: 10.0.1.1/24 }\n    status: { ipv4: 10.0.1.1/24 }\n"
    "  Ethernet2:\n    ifIndex: 2\n    config: { vrf: red }\n    status: { vrf: red }\n"
    "  Ethernet3:\n    ifIndex: 3\n    config: { vrf: blue }\n    status: { vrf: blue }\n"
    "snmp:\n  initialized: true\n";

// The columns of the statistics table that are 64 bits wide; the others up to 45 are 32 bits wide.
const std::set<unsigned> counter64Columns = {4, 6, 13, 19, 21, 24, 31, 33, 35, 37, 39, 41, 43, 45};

std::string statsCell(unsigned column, unsigned ipVersion) {
  return statsTable + ".1." + std::to_string(column) + "." + std::to_string(ipVersion);
}

class DeviceTablesTest : public SharedAgentTest<DeviceTablesTest> {
 public:
  static std::string scenario() { return switchScenario; }

 protected:
  // The value of a GET, or the exception or failure in its place.
  static std::string valueOf(const std::string& oid, const Credentials& who = publicCommunity) {
    std::optional<Varbind> vb = agent->tools().getOne(who, oid);
    return vb ? (vb->value.empty() ? vb->type : vb->value) : "no answer";
  }};

TEST_F(DeviceTablesTest, StatisticsHaveARowPerIpVersionWithTheTypesOfTheirColumns) {
  const std::vector<Varbind> walk = agent->tools().walk(publicCommunity, statsTable).varbinds;
  ASSERT_EQ(walk.size(), 2u * 45u);
  for (unsigned column = 3; column <= 47; ++column) {
    for (unsigned version : {1u, 2u}) {
      const Varbind& vb = walk[2 * (column - 3) + (version - 1)];
      EXPECT_EQ(vb.oid, statsCell(column, version));
      const char* type = column == 46                    ? "Timeticks"
                         : column == 47                  ? "Gauge32"
                         : counter64Columns.count(column) ? "Counter64"
                                                          : "Counter32";
      EXPECT_EQ(vb.type, type) << vb.oid;
    }
  }
  std::vector<std::string> bulkNames, walkNames;
  for (const Varbind& vb : agent->tools().bulkWalk(publicCommunity, statsTable).varbinds) bulkNames.push_back(vb.oid);
  for (const Varbind& vb : walk) walkNames.push_back(vb.oid);
  EXPECT_EQ(bulkNames, walkNames);
}

// The IPv6 row's counter is answered between two reads of the kernel's file, which lie more than the
// half second of the agent's freshness before and after the GET, so that the agent reads the file
// anew; the IPv4 octet counters are not read from the kernel. (The IPv4 row against the kernel is
// VrfStatisticsTest's, in the default context and a VRF's.)
TEST_F(DeviceTablesTest, Ipv6CountersAreThoseOfTheKernelAndIpv4OctetsAreZero) {
  const unsigned long long before = kernelCountersIn("/proc/net/snmp6").at("Ip6InReceives");
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  const std::string value = valueOf(statsCell(4, 2));
  ASSERT_TRUE(!value.empty() && std::isdigit(static_cast<unsigned char>(value[0]))) << value;
  EXPECT_GE(std::stoull(value), before);
  EXPECT_LE(std::stoull(value), kernelCountersIn("/proc/net/snmp6").at("Ip6InReceives"));
  EXPECT_EQ(valueOf(statsCell(5, 1)), "0");
}

TEST_F(DeviceTablesTest, VrfTablesDescribeEveryVrfInTheDefaultContext) {
  ExpectedTable vrfs(vrfTable);
  // The name is the index with its length first: "red" comes before "blue".
  vrfs.cellIs(2, ".3.114.101.100", "Hex-STRING", "80");
  vrfs.cellIs(3, ".3.114.101.100", "STRING", "\"65000:100\"");
  vrfs.cellIs(4, ".3.114.101.100", "INTEGER", "1");
  vrfs.cellIs(2, ".4.98.108.117.101", "Hex-STRING", "00");
  vrfs.cellIs(3, ".4.98.108.117.101", "STRING", "\"65000:200\"");
  vrfs.cellIs(4, ".4.98.108.117.101", "INTEGER", "1");
  expectWalk(*agent, vrfs);

  ExpectedTable memberships(vrfIfTable);
  memberships.cellIs(1, ".2", "STRING", "\"red\"");
  memberships.cellIs(1, ".3", "STRING", "\"blue\"");
  expectWalk(*agent, memberships);
}

TEST_F(DeviceTablesTest, VrfContextHasTheIpv4StatisticsRowOnlyAndNoVrfTables) {
  for (const Credentials& who : {Credentials::v3("red"), Credentials::v2c("public@blue")}) {
    const std::vector<Varbind> column = agent->tools().walk(who, statsTable + ".1.47").varbinds;
    ASSERT_EQ(column.size(), 1u);
    EXPECT_EQ(lineOf(column[0]), statsCell(47, 1) + " = Gauge32: 500");
    EXPECT_EQ(valueOf(vrfTable + ".1.4.3.114.101.100", who), "noSuchObject");
    EXPECT_EQ(valueOf(vrfIfTable + ".1.1.2", who), "noSuchObject");
    // The context ends before the subtree: the walk's one answer is endOfMibView.
    ToolOutput walk = agent->tools().walk(who, ".1.3.6.1.4.1.48213.3.18");
    EXPECT_EQ(walk.run.exitStatus, 0) << walk.run.output;
    EXPECT_TRUE(walk.varbinds.empty()) << walk.run.output;
  }
}

}  // namespace
}  // namespace IntegrationTest
