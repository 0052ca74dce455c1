// oskelSwFwdIpStatsTable of a VRF in the real snmpd, against a real network namespace ns-<vrf> that
// each test makes with ip(8) and gives loopback traffic of its own: the VRF's context shows that
// namespace's counters, the default context the host's, and snmpd stays in its own namespace, also
// when the VRF's namespace is deleted under reads. (One read per half second is the kernel read's
// unit test.)
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "AgentTest.h"
#include "Eventually.h"
#include "KernelCounters.h"

namespace IntegrationTest {
namespace {

namespace fs = std::filesystem;

const Credentials defaultContext = Credentials::v2c("public");

std::string statsCell(unsigned column) { return ".1.3.6.1.4.1.48213.3.1.1.1.1." + std::to_string(column) + ".1"; }

// A network namespace of a unique name for one test, removed with this object whatever the test's
// outcome.
class NetworkNamespace {
 public:
  explicit NetworkNamespace(std::string name) : name_(std::move(name)) {
    made_ = ::geteuid() == 0 && runCommand({"ip", "netns", "add", name_}).exitStatus == 0 &&
            runCommand({"ip", "-n", name_, "link", "set", "lo", "up"}).exitStatus == 0;
  }
  ~NetworkNamespace() { remove(); }
  NetworkNamespace(const NetworkNamespace&) = delete;
  NetworkNamespace& operator=(const NetworkNamespace&) = delete;

  bool made() const noexcept { return made_; }
  bool remove() const { return !fs::exists("/var/run/netns/" + name_) || runCommand({"ip", "netns", "del", name_}).exitStatus == 0; }
  // Sends `datagrams` UDP datagrams to the namespace's own loopback address; each is received there,
  // and so is the ICMP error that answers it.
  bool loopbackTraffic(int datagrams) const {
    const std::string loop =
        "for i in $(seq " + std::to_string(datagrams) + "); do echo x >/dev/udp/127.0.0.1/9; done; true";
    return runCommand({"ip", "netns", "exec", name_, "bash", "-c", loop}).exitStatus == 0;
  }
  KernelCounters counters() const {
    return kernelCountersOf(runCommand({"ip", "netns", "exec", name_, "cat", "/proc/net/snmp"}).output);
  }

 private:
  std::string name_;
  bool made_ = false;
};

// The pid of the snmpd that listens on `address`, found by its command line; -1 if none.
pid_t snmpdListeningOn(const std::string& address) {
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    const std::string pid = entry.path().filename().string();
    if (pid.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream in(entry.path() / "cmdline");
    std::vector<std::string> argv;
    for (std::string arg; std::getline(in, arg, '\0');) argv.push_back(arg);
    if (!argv.empty() && fs::path(argv.front()).filename() == "snmpd" && argv.back() == "udp:" + address)
      return static_cast<pid_t>(std::stol(pid));
  }
  return -1;
}

// Long enough for the agent's record of every row to be stale.
void waitPastFreshness() { std::this_thread::sleep_for(std::chrono::milliseconds(600)); }

class VrfStatisticsTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (IsSkipped()) return;
    if (!ns.made()) GTEST_SKIP() << "cannot make a network namespace here (needs root and ip(8))";
    ASSERT_TRUE(ns.loopbackTraffic(20));
    agent = std::make_unique<AgentUnderTest>(scenario());
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
    ASSERT_TRUE(eventually([&] {
      std::optional<Varbind> rate = agent->tools().impatient().getOne(vrfContext, statsCell(47));
      return rate && rate->value == "500";
    })) << "the VRF's context serves its statistics row";
  }
  std::string scenario() const {
    return "routing:\n  ipv4: true\n"
           "vrfs:\n  " + vrf + ":\n    routing: { ipv4: true }\n    published: true\n"
           "    status: { state: active, namespace: ns-" + vrf + " }\n"
           "snmp:\n  initialized: true\n";
  }
  // The numbers of the GET of `columns` of the IPv4 row in `who`'s context.
  std::vector<unsigned long long> row(const Credentials& who, const std::vector<unsigned>& columns) const {
    std::vector<std::string> oids;
    for (unsigned column : columns) oids.push_back(statsCell(column));
    std::vector<unsigned long long> numbers;
    for (const Varbind& vb : agent->tools().get(who, oids).varbinds) {
      EXPECT_TRUE(vb.type == "Counter32" || vb.type == "Counter64") << vb.oid << " is " << vb.type;
      numbers.push_back(vb.value.empty() ? 0 : std::stoull(vb.value));
    }
    EXPECT_EQ(numbers.size(), columns.size());
    numbers.resize(columns.size());
    return numbers;
  }

  static inline int instances = 0;
  const std::string vrf = "stats" + std::to_string(::getpid()) + "n" + std::to_string(++instances);
  const Credentials vrfContext = Credentials::v3(vrf);
  NetworkNamespace ns{"ns-" + vrf};
};

// InReceives (32 and 64 bits), InDelivers and OutRequests.
const std::vector<unsigned> columns = {3, 4, 18, 20};
const char* const names[] = {"InReceives", "InReceives", "InDelivers", "OutRequests"};

// Each row is asked between two reads of its namespace's file, so each number lies between the two.
// The VRF's row is asked first: had snmpd stayed in the VRF's namespace after it, the default row,
// read without any switch, would show the VRF's numbers.
TEST_F(VrfStatisticsTest, VrfContextShowsItsNamespacesCountersAndTheDefaultContextTheHosts) {
  const KernelCounters nsBefore = ns.counters();
  const KernelCounters hostBefore = kernelCountersIn("/proc/net/snmp");
  ASSERT_GE(nsBefore.at("InReceives"), 20u) << "the test's own traffic in the namespace";
  waitPastFreshness();
  const std::vector<unsigned long long> vrfRow = row(vrfContext, columns);
  const std::vector<unsigned long long> defaultRow = row(defaultContext, columns);
  const KernelCounters nsAfter = ns.counters();
  const KernelCounters hostAfter = kernelCountersIn("/proc/net/snmp");
  ASSERT_LT(nsAfter.at("InReceives"), hostBefore.at("InReceives")) << "the two namespaces must be told apart";

  for (std::size_t i = 0; i < columns.size(); ++i) {
    const unsigned long long modulo = columns[i] == 4 ? ~0ull : 1ull << 32;
    EXPECT_GE(vrfRow[i], nsBefore.at(names[i]) % modulo) << "VRF column " << columns[i];
    EXPECT_LE(vrfRow[i], nsAfter.at(names[i]) % modulo) << "VRF column " << columns[i];
    EXPECT_GE(defaultRow[i], hostBefore.at(names[i]) % modulo) << "default column " << columns[i];
    EXPECT_LE(defaultRow[i], hostAfter.at(names[i]) % modulo) << "default column " << columns[i];
  }
}

// Reading the VRF's row switches snmpd into the VRF's namespace and back. Reads go on, every one
// answered with counters, while the namespace is deleted under them, and snmpd ends up in its own
// namespace with the VRF's context answering on. (Which numbers the row shows once the namespace is
// gone is left open: the read does not examine whether it entered the namespace.)
TEST_F(VrfStatisticsTest, SnmpdStaysInItsOwnNamespaceAlsoWhenTheVrfsNamespaceIsDeletedUnderReads) {
  const pid_t snmpd = snmpdListeningOn(agent->address());
  ASSERT_GT(snmpd, 0) << "no snmpd on " << agent->address();
  const std::string procNs = "/proc/" + std::to_string(snmpd) + "/ns/net";
  waitPastFreshness();
  EXPECT_GT(row(vrfContext, {4})[0], 0u) << "the VRF's row was read";
  EXPECT_EQ(fs::read_symlink(procNs), fs::read_symlink("/proc/self/ns/net"));

  std::vector<std::string> failures;
  auto readFor = [&](std::chrono::milliseconds length) {
    for (const auto end = std::chrono::steady_clock::now() + length; std::chrono::steady_clock::now() < end;) {
      const std::optional<Varbind> vb = agent->tools().getOne(vrfContext, statsCell(4));
      if (!vb || vb->type != "Counter64") failures.push_back(vb ? vb->type + " " + vb->value : "no answer");
      std::this_thread::sleep_for(std::chrono::milliseconds(150));
    }
  };
  std::thread reads(readFor, std::chrono::milliseconds(2000));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_TRUE(ns.remove());
  reads.join();
  EXPECT_TRUE(failures.empty()) << failures.size() << " reads not answered with a counter, first: " << failures[0];
  EXPECT_TRUE(agent->running());
  EXPECT_EQ(fs::read_symlink(procNs), fs::read_symlink("/proc/self/ns/net"));
  EXPECT_EQ(agent->tools().getOne(vrfContext, ".1.3.6.1.2.1.4.1.0").value_or(Varbind{}).value, "1");
}

}  // namespace
}  // namespace IntegrationTest
