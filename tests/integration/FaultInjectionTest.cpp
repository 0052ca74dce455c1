// Faults under the real agent: a table file damaged while it is read, the scenario file replaced by
// garbage. In each the agent keeps answering, says what went wrong where it can, and what it served
// before the fault answers as before. (A table writer killed in a batch is the tables' cross-process
// test; a VRF's namespace deleted under reads is VrfStatisticsTest's.)
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>

#include "AgentTest.h"
#include "Eventually.h"
#include "VrfScenario.h"
#include "tests/support/TestSupport.h"

namespace IntegrationTest {
namespace {

namespace fs = std::filesystem;
using TestSupport::fileText;

const Credentials defaultContext = Credentials::v2c("public");
const Credentials redContext = Credentials::v3("red");

// The default VRF and red with a few routes and neighbours each, and in the default VRF a run of
// `runRoutes` routes 100.0.0.0/24, 100.0.1.0/24, ... with metric `runMetric`, on FECs 1000 to 1003 in
// turn, whose next hops are 10.0.1.10 to 10.0.1.13: route i goes through 10.0.1.(10 + i % 4).
std::string tablesScenario(unsigned runRoutes, unsigned runMetric = 7) {
  std::string text =
      "routing: { ipv4: true }\n"
      "vrfs:\n"
      "  red: { routing: { ipv4: true }, published: true, status: { state: active } }\n"
      "interfaces:\n"
      "  Ethernet1: { ifIndex: 1, config: { ipv4: 10.0.1.1/24 }, status: { ipv4: 10.0.1.1/24 } }\n"
      "  Ethernet2: { ifIndex: 2, config: { vrf: red, ipv4: 10.0.2.1/24 }, status: { vrf: red, ipv4: 10.0.2.1/24 } }\n"
      "snmp: { initialized: true }\n"
      "vrfIds: { red: 1 }\n"
      "fib:\n"
      "  default:\n"
      "    fecs:\n"
      "      1: [10.0.1.2@Ethernet1]\n"
      "      1000: { count: 4, vias: [10.0.1.10@Ethernet1] }\n"
      "    routes:\n"
      "      10.50.0.0/16: { fec: 1, metric: 50 }\n"
      "      10.51.0.0/16: { fec: 1, metric: 51 }\n";
  if (runRoutes > 0)
    text += "      100.0.0.0/24: { count: " + std::to_string(runRoutes) + ", fec: [1000, 1001, 1002, 1003], metric: " +
            std::to_string(runMetric) + " }\n";
  text +=
      "  red:\n"
      "    fecs: { 1: [10.0.2.2@Ethernet2] }\n"
      "    routes: { 10.60.0.0/16: { fec: 1, metric: 60 } }\n"
      "arp:\n"
      "  - { interface: Ethernet1, address: 10.0.1.2, mac: 02:c0:ff:ee:01:02 }\n"
      "  - { interface: Ethernet1, address: 10.0.1.3, mac: 02:c0:ff:ee:01:03 }\n"
      "  - { vrf: red, interface: Ethernet2, address: 10.0.2.2, mac: 02:c0:ff:ee:02:02 }\n";
  return text;
}

std::string routeCell(unsigned column, const std::string& index) {
  return std::string(ipCidrRouteTable) + ".1." + std::to_string(column) + "." + index;
}
std::string neighbourMac(const std::string& index) { return std::string(ipNetToMediaTable) + ".1.2." + index; }

// What the agent served before any fault, each with the value it must keep.
struct Cell {
  Credentials who;
  std::string oid;
  std::string value;
};
const std::vector<Cell> goodCells = {
    {defaultContext, routeCell(11, "10.50.0.0.255.255.0.0.0.10.0.1.2"), "50"},
    {defaultContext, routeCell(11, "10.51.0.0.255.255.0.0.0.10.0.1.2"), "51"},
    {defaultContext, neighbourMac("1.10.0.1.3"), "02 C0 FF EE 01 03"},
    {redContext, routeCell(11, "10.60.0.0.255.255.0.0.0.10.0.2.2"), "60"},
    {redContext, neighbourMac("2.10.0.2.2"), "02 C0 FF EE 02 02"},
    {redContext, ipForwarding, "1"},
};

// The cells of goodCells that do not answer their value now, as "OID: what came".
std::vector<std::string> lostCells(const AgentUnderTest& agent, const std::vector<Cell>& cells = goodCells) {
  std::vector<std::string> lost;
  for (const Cell& cell : cells) {
    std::optional<Varbind> vb = agent.tools().getOne(cell.who, cell.oid);
    if (!vb || vb->value != cell.value) lost.push_back(cell.oid + ": " + (vb ? vb->type + " " + vb->value : "no answer"));
  }
  return lost;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

unsigned long routeRows(const AgentUnderTest& agent) {
  std::optional<Varbind> number = agent.tools().getOne(defaultContext, ".1.3.6.1.2.1.4.24.3.0");
  return number && !number->value.empty() ? std::stoul(number->value) : 0;
}

class FaultInjectionTest : public AgentTest {
 protected:
  void start(const std::string& scenario) {
    agent = std::make_unique<AgentUnderTest>(scenario, tables.path());
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
    ASSERT_TRUE(eventually([&] { return lostCells(*agent).empty(); })) << joined(lostCells(*agent));
  }
  std::string arpFile() const { return tables.path() + "/arp/status/arpEntry"; }

  TableRoot tables;
};

// A bit flipped in a neighbour's record while the agent serves it: the read that meets it names the
// file and the damage in a corruption report, the agent goes on answering, and the other tables and
// the VRF's context keep their rows. The next save of the scenario rebuilds the table and the
// neighbours come back whole.
TEST_F(FaultInjectionTest, TableFileDamagedUnderTheAgentIsReportedAndRebuiltByTheNextWrite) {
  const TableRoot scratch;  // a directory of the test's for the reports
  const std::string& reports = scratch.path();
  ::setenv("TARN_CORRUPTION_DIR", reports.c_str(), 1);
  ASSERT_NO_FATAL_FAILURE(start(tablesScenario(0)));
  ::unsetenv("TARN_CORRUPTION_DIR");

  // The MAC address of 10.0.1.2 is in its record only (in one or both of the record's copies), as
  // bytes or as 16-bit words of this machine's order: its third byte is flipped wherever it is.
  const std::string bytes = fileText(arpFile());
  std::fstream file(arpFile(), std::ios::in | std::ios::out | std::ios::binary);
  unsigned flipped = 0;
  for (const std::string mac : {"\x02\xc0\xff\xee\x01\x02", "\xc0\x02\xee\xff\x02\x01"}) {
    for (std::size_t at = bytes.find(mac); at != std::string::npos; at = bytes.find(mac, at + 1), ++flipped) {
      file.seekp(static_cast<std::streamoff>(at + 2));
      file.put(static_cast<char>(bytes[at + 2] ^ 0x10));
    }
  }
  file.close();
  ASSERT_GT(flipped, 0u) << "the neighbour's record is not in " << arpFile();

  std::optional<Varbind> damaged = agent->tools().getOne(defaultContext, neighbourMac("1.10.0.1.2"));
  ASSERT_TRUE(damaged) << "no answer for the damaged neighbour";
  EXPECT_NE(damaged->value, "02 C0 EF EE 01 02") << "the damaged record was served";
  EXPECT_NE(damaged->value, "02 C0 FF FE 01 02") << "the damaged record was served";

  std::string report;
  EXPECT_TRUE(eventually([&] {
    std::error_code missing;
    for (const fs::directory_entry& entry : fs::directory_iterator(reports, missing)) {
      report = fileText(entry.path());
      return true;
    }
    return false;
  })) << "no corruption report in " << reports;
  EXPECT_NE(report.find(arpFile()), std::string::npos) << report;
  EXPECT_NE(report.find("does not match its checksum"), std::string::npos) << report;

  EXPECT_TRUE(agent->running());
  const std::vector<Cell> routes(goodCells.begin(), goodCells.begin() + 2);
  EXPECT_EQ(joined(lostCells(*agent, routes)), "") << "the route table is not the damaged one";
  EXPECT_EQ(joined(lostCells(*agent, {goodCells[3], goodCells[5]})), "") << "red's routes and scalars";

  agent->scenarioIs(tablesScenario(0) + "# saved again\n");
  EXPECT_TRUE(eventually([&] { return lostCells(*agent).empty(); })) << joined(lostCells(*agent));
  EXPECT_TRUE(eventually([&] {
    std::optional<Varbind> vb = agent->tools().getOne(defaultContext, neighbourMac("1.10.0.1.2"));
    return vb && vb->value == "02 C0 FF EE 01 02";
  })) << "the damaged neighbour was not written again";
}

// Binary garbage and a file cut short in the middle of a map, saved over a scenario with tables
// and a VRF: each is refused with the file's name in the log, and everything served before still
// answers, in the default context and in red's, until a good save follows.
TEST_F(FaultInjectionTest, GarbageSavedOverTheScenarioKeepsTablesAndContextsAsTheyWere) {
  ASSERT_NO_FATAL_FAILURE(start(tablesScenario(100)));
  std::string garbage;
  for (unsigned i = 0; i < 4096; ++i) garbage += static_cast<char>((i * 7919u + 13u) % 256u);
  const std::string full = tablesScenario(100);
  // A refusal names the file and the line: ".../scenario.yaml:LINE: what".
  auto refusals = [&] { return agent->logCount("scenario.yaml:"); };
  for (const std::string& bad : {garbage, full.substr(0, full.find("red: {") + 20)}) {
    const std::size_t before = refusals();
    agent->scenarioIs(bad);
    EXPECT_TRUE(eventually([&] { return refusals() > before; })) << "the refusal naming the file is not in the log";
    EXPECT_TRUE(agent->running());
    EXPECT_EQ(joined(lostCells(*agent)), "");
    EXPECT_EQ(routeRows(*agent), 102u);
  }
  agent->scenarioIs(tablesScenario(100, 8));
  const Cell lastOfRun{defaultContext, routeCell(11, "100.0.99.0.255.255.255.0.0.10.0.1.13"), "8"};
  EXPECT_TRUE(eventually([&] { return lostCells(*agent, {lastOfRun}).empty(); })) << "a good save after garbage";
  EXPECT_EQ(joined(lostCells(*agent)), "");
}

}  // namespace
}  // namespace IntegrationTest
