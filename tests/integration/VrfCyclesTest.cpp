// A VRF created, walked, deleted and created again many times in the real snmpd while walks of its
// context run beside: the agent stays up, and every walk answers with the VRF's own rows or not at
// all. IPSNMP_VRF_CYCLES sets the number of cycles (default 50); run it under an AddressSanitizer
// build with ASAN_OPTIONS=detect_leaks=1 to see that no registration or column list is left behind.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <mutex>
#include <thread>

#include "VrfScenario.h"

namespace IntegrationTest {
namespace {

const Credentials defaultContext = Credentials::v2c("public");
const Credentials redContext = Credentials::v3("red");

int cycles() {
  const char* text = std::getenv("IPSNMP_VRF_CYCLES");
  return text ? std::atoi(text) : 50;
}

// Walks red's tables in a loop and keeps what does not belong to red.
class Walker {
 public:
  explicit Walker(SnmpTools tools) : tools_(std::move(tools)), thread_([this] { run(); }) {}
  ~Walker() { stop(); }
  void stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  int walks() const { return walks_; }
  int answered() const { return answered_; }
  std::vector<std::string> stray() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return stray_;
  }

 private:
  void run() {
    const std::pair<const char*, std::vector<std::string>> tables[] = {
        {ipAddrTable, {redAddress}}, {ipNetToMediaTable, {redNeighbour}}, {ipCidrRouteTable, {redRoute}}};
    for (unsigned i = 0; !stop_; ++i) {
      const auto& [table, allowed] = tables[i % 3];
      ToolOutput walk = tools_.bulkWalk(redContext, table);
      ++walks_;
      if (!walk.timedOut && !walk.varbinds.empty()) ++answered_;
      std::vector<std::string> bad = strayVarbinds(walk, table, allowed);
      if (!walk.timedOut && !walk.error.empty()) bad.push_back("error " + walk.error);
      std::lock_guard<std::mutex> lock(mutex_);
      stray_.insert(stray_.end(), bad.begin(), bad.end());
    }
  }

  SnmpTools tools_;
  std::atomic<bool> stop_{false};
  std::atomic<int> walks_{0};
  std::atomic<int> answered_{0};
  mutable std::mutex mutex_;
  std::vector<std::string> stray_;
  std::thread thread_;
};

TEST(VrfCycles, AVrfCreatedWalkedDeletedAndCreatedAgainWhileWalksRun) {
  if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
  TableRoot tables;
  ASSERT_EQ(tables.writeRed(true), "");
  AgentUnderTest agent(redScenario(""), tables.path());
  ASSERT_TRUE(agent.ready()) << agent.diagnostics();
  const SnmpTools& tools = agent.tools();
  auto redAnswers = [&] {
    std::optional<Varbind> vb = tools.impatient().getOne(redContext, ipForwarding);
    return vb && vb->type == "INTEGER";
  };
  auto redHasRow = [&] {
    std::optional<Varbind> vb = tools.getOne(defaultContext, redVrfState);
    return vb && vb->type == "INTEGER";
  };

  Walker walker(tools.impatient());
  const int count = cycles();
  for (int cycle = 0; cycle < count; ++cycle) {
    agent.scenarioIs(redScenario("initializing"));
    ASSERT_TRUE(eventually(redAnswers, 10)) << "cycle " << cycle << "\n" << agent.diagnostics();
    ToolOutput walk = tools.bulkWalk(redContext, ipAddrTable);
    ASSERT_EQ(rowIndexes(walk, ipAddrTable), std::vector<std::string>{redAddress}) << "cycle " << cycle;
    // Every other cycle the VRF goes by state 2, the others by leaving the store.
    agent.scenarioIs(redScenario(cycle % 2 ? "deleting" : ""));
    ASSERT_TRUE(eventually([&] { return !redHasRow(); }, 10)) << "cycle " << cycle << "\n" << agent.diagnostics();
    if (cycle % 10 == 0) {
      EXPECT_FALSE(redAnswers()) << "cycle " << cycle;
      ASSERT_TRUE(agent.running()) << agent.diagnostics();
    }
  }
  walker.stop();
  EXPECT_TRUE(agent.running()) << agent.diagnostics();
  EXPECT_EQ(walker.stray(), std::vector<std::string>{});
  EXPECT_GT(walker.answered(), 0) << "no walk met red while it was up";
  std::cout << count << " cycles; " << walker.walks() << " walks beside, " << walker.answered()
            << " answered by red\n";
}

}  // namespace
}  // namespace IntegrationTest
