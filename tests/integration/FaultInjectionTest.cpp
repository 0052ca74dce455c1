// Faults under the real agent: its table writer killed in the middle of a batch, a table file
// damaged while it is read, the scenario file replaced by garbage, a VRF's network namespace
// deleted while its statistics are read. In each the agent keeps answering, says what went wrong
// where it can, and what it served before the fault answers as before.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <thread>

#include "AgentTest.h"
#include "Eventually.h"
#include "VrfScenario.h"
#include "platform/tarn/TableFormat.h"

namespace IntegrationTest {
namespace {

namespace fs = std::filesystem;

const Credentials defaultContext = Credentials::v2c("public");
const Credentials redContext = Credentials::v3("red");

// A run of routes 100.0.0.0/24, 100.0.1.0/24, ... on FECs 1000 to 1003 in turn, whose next hops
// are 10.0.1.10 to 10.0.1.13: route i goes through 10.0.1.(10 + i % 4).
constexpr unsigned runFecs = 4;

// The default VRF and red with a few routes and neighbours each, and `runRoutes` routes of the run
// in the default VRF with metric `runMetric`, and `moreRoutes` from 120.0.0.0/24 on through FEC 1.
std::string tablesScenario(unsigned runRoutes, unsigned runMetric = 7, unsigned moreRoutes = 0) {
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
  if (moreRoutes > 0) text += "      120.0.0.0/24: { count: " + std::to_string(moreRoutes) + ", fec: [1] }\n";
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

// The run's routes, of the first `rows` that a GETBULK of their metric from 100.0.0.0 shows, that
// are not whole: a whole route has the next hop of its place in the run and one of `metrics`.
std::vector<std::string> tornRunRows(const AgentUnderTest& agent, unsigned rows, const std::vector<std::string>& metrics) {
  const std::string column = routeCell(11, "");
  CommandResult run = runCommand({"snmpbulkget", "-m", "", "-On", "-v2c", "-c", "public", "-Cn0", "-Cr" + std::to_string(rows),
                                  agent.address(), column + "100"});
  std::vector<std::string> torn;
  for (const Varbind& vb : parseToolOutput(run).varbinds) {
    if (vb.oid.rfind(column + "100.", 0) != 0) break;
    unsigned a, b, c, d, m1, m2, m3, m4, tos, h1, h2, h3, h4;
    if (std::sscanf(vb.oid.c_str() + column.size(), "%u.%u.%u.%u.%u.%u.%u.%u.%u.%u.%u.%u.%u", &a, &b, &c, &d, &m1, &m2, &m3,
                    &m4, &tos, &h1, &h2, &h3, &h4) != 13) {
      torn.push_back(vb.oid + " is no route index");
      continue;
    }
    const unsigned position = (a - 100) << 16 | b << 8 | c;
    const bool hopRight = h1 == 10 && h2 == 0 && h3 == 1 && h4 == 10 + position % runFecs;
    if (!hopRight || !contains(metrics, vb.value)) torn.push_back(vb.oid + " = " + vb.type + ": " + vb.value);
  }
  if (run.exitStatus != 0) torn.push_back("snmpbulkget failed: " + run.output);
  return torn;
}

// The whole of a file, "" when it cannot be read.
std::string fileText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// The snmpd that serves `address` (`forked` false) or the table writer it forked (true), found by
// the command line, which a fork keeps. -1 when there is none.
pid_t snmpdProcess(const std::string& address, bool forked) {
  auto commandLine = [](const std::string& pid) { return fileText("/proc/" + pid + "/cmdline"); };
  auto parentOf = [](const std::string& pid) {
    const std::string stat = fileText("/proc/" + pid + "/stat");
    const std::size_t close = stat.rfind(')');
    std::istringstream rest(close == std::string::npos ? "" : stat.substr(close + 2));
    std::string state, parent;
    rest >> state >> parent;
    return parent;
  };
  const std::string listen = std::string("udp:") + address + '\0';
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    const std::string pid = entry.path().filename().string();
    if (pid.find_first_not_of("0123456789") != std::string::npos) continue;
    const std::string line = commandLine(pid);
    if (!line.ends_with(listen) || line.find("snmpd") == std::string::npos) continue;
    if (commandLine(parentOf(pid)).ends_with(listen) == forked) return static_cast<pid_t>(std::stol(pid));
  }
  return -1;
}

// A live counter of the header of the table file at `path`, 0 while there is no file.
template <class Counter>
Counter headerCounter(const std::string& path, std::size_t offset) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return 0;
  Counter value = 0;
  const ssize_t n = ::pread(fd, &value, sizeof value, static_cast<off_t>(offset));
  ::close(fd);
  return n == sizeof value ? value : 0;
}
// The records written into the table since it was made, and whether a batch is open in it.
std::uint64_t recordWrites(const std::string& path) {
  return headerCounter<std::uint64_t>(path, offsetof(Tarn::FileHeader, logHead));
}
bool batchOpen(const std::string& path) { return headerCounter<std::uint64_t>(path, offsetof(Tarn::FileHeader, commitSeq)) & 1; }

// A directory of the test's, removed with this object whatever the test's outcome.
struct ScratchDirectory {
  explicit ScratchDirectory(std::string where) : path(std::move(where)) { fs::create_directories(path); }
  ~ScratchDirectory() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  const std::string path;
};

class FaultInjectionTest : public AgentTest {
 protected:
  void start(const std::string& scenario) {
    agent = std::make_unique<AgentUnderTest>(scenario, tables.path());
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
    ASSERT_TRUE(eventually([&] { return lostCells(*agent).empty(); })) << joined(lostCells(*agent));
  }
  std::string routeFile() const { return tables.path() + "/routing/status/route"; }
  std::string arpFile() const { return tables.path() + "/arp/status/arpEntry"; }

  TableRoot tables;
};

// The writer is killed in the middle of the route table's batch, which gives the run other metrics
// and adds a second run; the table holds all of it without growing. The rows it rewrote are whole
// with the old metric or the new, the rows it did not touch are still served, the log names the
// failure, and the next save's writer takes the table over and ends the batch.
TEST_F(FaultInjectionTest, TableWriterKilledMidBatchLeavesWholeRowsAndTheNextWriterEndsTheBatch) {
  constexpr unsigned run = 70000, added = 60000;
  ASSERT_NO_FATAL_FAILURE(start(tablesScenario(run)));
  ASSERT_TRUE(eventually([&] { return routeRows(*agent) == run + 2; }, 30.0)) << routeRows(*agent) << " route rows";
  const std::uint64_t before = recordWrites(routeFile());

  agent->scenarioIs(tablesScenario(run, 8, added));
  pid_t writer = -1;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!(recordWrites(routeFile()) > before + 20000 && (writer = snmpdProcess(agent->address(), true)) > 0) &&
         std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  ASSERT_GT(writer, 0) << "no table writer under way";
  ASSERT_EQ(::kill(writer, SIGKILL), 0);
  ASSERT_TRUE(batchOpen(routeFile())) << "the writer had ended the route table's batch before the kill";
  ASSERT_LT(recordWrites(routeFile()), before + run + added);

  EXPECT_TRUE(eventually([&] { return agent->log().find("the table writer was killed by signal 9") != std::string::npos; }))
      << "the failure is not in the log";
  EXPECT_TRUE(agent->running());
  EXPECT_EQ(joined(lostCells(*agent)), "") << "rows that the batch did not touch";
  EXPECT_EQ(joined(tornRunRows(*agent, 1000, {"7", "8"})), "") << "rows of the killed batch";

  // The same file again, saved anew: a new writer takes the table over and ends the batch.
  agent->scenarioIs(tablesScenario(run, 8, added) + "# saved again\n");
  EXPECT_TRUE(eventually([&] { return routeRows(*agent) == run + added + 2; }, 60.0)) << routeRows(*agent) << " route rows";
  EXPECT_FALSE(batchOpen(routeFile()));
  EXPECT_EQ(joined(tornRunRows(*agent, 1000, {"8"})), "");
  EXPECT_EQ(joined(lostCells(*agent)), "");
}

// A bit flipped in a neighbour's record while the agent serves it: the read that meets it names the
// file and the damage in a corruption report, the agent goes on answering, and the other tables and
// the VRF's context keep their rows. The next save of the scenario rebuilds the table and the
// neighbours come back whole.
TEST_F(FaultInjectionTest, TableFileDamagedUnderTheAgentIsReportedAndRebuiltByTheNextWrite) {
  const ScratchDirectory scratch(tables.path() + "-corruption");
  const std::string& reports = scratch.path;
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
  auto refusals = [&] {
    const std::string log = agent->log();
    std::size_t count = 0;
    for (std::size_t at = log.find("scenario.yaml:"); at != std::string::npos; at = log.find("scenario.yaml:", at + 1)) ++count;
    return count;
  };
  for (const std::string& bad : {garbage, full.substr(0, full.find("red: {") + 20)}) {
    const std::size_t before = refusals();
    agent->scenarioIs(bad);
    EXPECT_TRUE(eventually([&] { return refusals() > before; })) << "the refusal naming the file is not in the log";
    EXPECT_TRUE(agent->running());
    EXPECT_EQ(joined(lostCells(*agent)), "");
    EXPECT_EQ(routeRows(*agent), 102u);
  }
  agent->scenarioIs(tablesScenario(100, 8));
  EXPECT_TRUE(eventually([&] { return tornRunRows(*agent, 100, {"8"}).empty(); })) << "a good save after garbage";
  EXPECT_EQ(joined(lostCells(*agent)), "");
}

// --- statistics -------------------------------------------------------------------------------

std::string statsCell(unsigned column, unsigned ipVersion = 1) {
  return std::string(oskelSwFwdIpStatsTable) + ".1." + std::to_string(column) + "." + std::to_string(ipVersion);
}

// The GET of InReceives (64 bits) of a statistics row: its value, or what came instead.
std::string inReceives(const AgentUnderTest& agent, const Credentials& who, unsigned ipVersion = 1) {
  std::optional<Varbind> vb = agent.tools().getOne(who, statsCell(4, ipVersion));
  if (!vb) return "no answer";
  return vb->type == "Counter64" ? vb->value : vb->type + " " + vb->value;
}

class StatisticsFaultTest : public AgentTest {};

// A VRF's statistics row is read again and again, in the VRF's namespace, while the namespace is
// deleted: every GET is answered with counters, snmpd ends up in its own namespace, and the VRF's
// context and the default row answer on. Which numbers the row shows once the namespace is gone is
// left open here: the read does not examine whether it entered the namespace, so they are those of
// snmpd's own namespace.
TEST_F(StatisticsFaultTest, VrfNamespaceDeletedUnderReadsLeavesTheAgentAnsweringInItsOwnNamespace) {
  const std::string vrf = "gone" + std::to_string(::getpid());
  const std::string ns = "ns-" + vrf;
  if (::geteuid() != 0 || runCommand({"ip", "netns", "add", ns}).exitStatus != 0)
    GTEST_SKIP() << "cannot make a network namespace here (needs root and ip(8))";
  struct NamespaceRemoval {
    std::string ns;
    ~NamespaceRemoval() {
      if (fs::exists("/var/run/netns/" + ns)) runCommand({"ip", "netns", "del", ns});
    }
  } removal{ns};
  agent = std::make_unique<AgentUnderTest>(
      "routing: { ipv4: true }\n"
      "vrfs:\n  " + vrf + ": { routing: { ipv4: true }, published: true, status: { state: active, namespace: " + ns + " } }\n"
      "snmp: { initialized: true }\n");
  ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  const Credentials vrfContext = Credentials::v3(vrf);
  ASSERT_TRUE(eventually([&] { return inReceives(*agent, vrfContext).find_first_not_of("0123456789") == std::string::npos; }))
      << "the VRF's statistics row: " << inReceives(*agent, vrfContext);

  // Reads back to back, each in a fresh half second, before and after the delete.
  std::vector<std::string> failures;
  auto readFor = [&](std::chrono::milliseconds length) {
    const auto end = std::chrono::steady_clock::now() + length;
    while (std::chrono::steady_clock::now() < end) {
      const std::string value = inReceives(*agent, vrfContext);
      if (value.find_first_not_of("0123456789") != std::string::npos || value.empty()) failures.push_back(value);
      std::this_thread::sleep_for(std::chrono::milliseconds(150));
    }
  };
  readFor(std::chrono::milliseconds(1000));
  std::thread reads(readFor, std::chrono::milliseconds(2000));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(runCommand({"ip", "netns", "del", ns}).exitStatus, 0);
  reads.join();
  EXPECT_EQ(joined(failures), "") << "reads of the VRF's row that were not answered with a counter";

  EXPECT_TRUE(agent->running());
  const pid_t snmpd = snmpdProcess(agent->address(), false);
  ASSERT_GT(snmpd, 0) << "no snmpd on " << agent->address();
  EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(snmpd) + "/ns/net"), fs::read_symlink("/proc/self/ns/net"));
  EXPECT_EQ(agent->tools().getOne(vrfContext, ipForwarding).value_or(Varbind{}).value, "1");
  EXPECT_EQ(inReceives(*agent, defaultContext).find_first_not_of("0123456789"), std::string::npos);
}

}  // namespace
}  // namespace IntegrationTest
