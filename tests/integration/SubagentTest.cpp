// The agent as an AgentX sub-agent behind snmpd as master: for the same scenario it answers exactly
// as the plug-in inside snmpd does, in the default context and in a VRF's, through SNMPv2c and v3;
// and when its master dies and comes back, the sub-agent registers again, the VRF contexts with the
// default one, and the same walks answer again.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

#include "AgentUnderTest.h"
#include "Eventually.h"
#include "tests/support/TestSupport.h"

namespace IntegrationTest {
namespace {

const std::string ipGroup = ".1.3.6.1.2.1.4";
const std::string vrfTables = ".1.3.6.1.4.1.48213.3.18";
const std::string statisticsTable = ".1.3.6.1.4.1.48213.3.1.1.1";

const std::vector<Credentials> contexts = {Credentials::v2c("public"), Credentials::v2c("public@red"),
                                           Credentials::v3("red"), Credentials::v3("blue")};

// Everything the agent serves to `who`, one "OID = TYPE: VALUE" line per object: the IP group and the
// VRF tables whole; of the statistics table the objects and their types, since its counters move
// between walks. Empty when a walk fails.
std::string served(const AgentUnderTest& agent, const Credentials& who) {
  std::string text;
  for (const std::string& subtree : {ipGroup, vrfTables, statisticsTable}) {
    ToolOutput walk = agent.tools().bulkWalk(who, subtree);
    if (!walk.error.empty() || walk.timedOut || walk.run.exitStatus != 0) return "";
    for (const Varbind& vb : walk.varbinds)
      text += vb.oid + " = " + vb.type + (subtree == statisticsTable ? "" : ": " + vb.value) + "\n";
  }
  return text;
}

std::size_t lineCount(const std::string& text) { return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')); }

class SubagentTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
  }
  void TearDown() override {
    if (!HasFailure()) return;
    for (const auto* agent : {plugin.get(), subagent.get()})
      if (agent) std::cerr << agent->diagnostics();
  }
  void start(AgentMode mode) {
    auto& agent = mode == AgentMode::plugin ? plugin : subagent;
    agent = std::make_unique<AgentUnderTest>(TestSupport::fileText(IPSNMP_DEFAULT_SCENARIO), "", mode);
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }
  std::unique_ptr<AgentUnderTest> plugin;
  std::unique_ptr<AgentUnderTest> subagent;
};

TEST_F(SubagentTest, SubagentAnswersEveryWalkAsThePluginDoes) {
  start(AgentMode::plugin);
  start(AgentMode::subagent);
  for (const Credentials& who : contexts) {
    const std::string context = who.args.back();
    // The route machine fills its table in time slices after the start: both agents get there.
    std::string fromPlugin, fromSubagent;
    EXPECT_TRUE(eventually([&] {
      fromPlugin = served(*plugin, who);
      fromSubagent = served(*subagent, who);
      return !fromPlugin.empty() && fromPlugin == fromSubagent;
    })) << context << "\nplug-in:\n" << fromPlugin << "\nsub-agent:\n" << fromSubagent;
    // Rows of the addresses, neighbours and routes, not a pair of empty contexts.
    EXPECT_GT(lineCount(fromSubagent), 60u) << context << ":\n" << fromSubagent;
  }
  EXPECT_TRUE(subagent->running());
}

TEST_F(SubagentTest, WalksAnswerAgainAfterTheMasterRestarts) {
  start(AgentMode::subagent);
  const std::vector<Credentials> asked = {Credentials::v2c("public"), Credentials::v3("red")};
  std::vector<std::string> before;
  for (const Credentials& who : asked) {
    std::string walked;
    // Settled: two walks in a row alike.
    ASSERT_TRUE(eventually([&] {
      std::string again = served(*subagent, who);
      bool settled = !again.empty() && again == walked;
      walked = again;
      return settled;
    }));
    before.push_back(walked);
  }

  ASSERT_TRUE(subagent->masterKilled()) << subagent->diagnostics();

  for (std::size_t i = 0; i < asked.size(); ++i) {
    std::string after;
    EXPECT_TRUE(eventually([&] { return (after = served(*subagent, asked[i])) == before[i]; }))
        << asked[i].args.back() << "\nbefore:\n" << before[i] << "\nafter:\n" << after;
  }
  EXPECT_TRUE(subagent->running());
}

}  // namespace
}  // namespace IntegrationTest
