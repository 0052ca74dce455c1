// The agent as an AgentX sub-agent behind snmpd as master: when its master dies and comes back, the
// sub-agent registers again, the VRF contexts with the default one, and the same walks answer again.
// (That it answers as the plug-in does is the walk suites' run through the sub-agent,
// WalkSuitesThroughSubagent, and the VRF communities' test in both modes.)
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "AgentTest.h"
#include "tests/support/TestSupport.h"

namespace IntegrationTest {
namespace {

const std::string ipGroup = ".1.3.6.1.2.1.4";
const std::string vrfTables = ".1.3.6.1.4.1.48213.3.18";
const std::string statisticsTable = ".1.3.6.1.4.1.48213.3.1.1.1";

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

using SubagentTest = AgentTest;

TEST_F(SubagentTest, WalksAnswerAgainAfterTheMasterRestarts) {
  agent = std::make_unique<AgentUnderTest>(TestSupport::fileText(IPSNMP_DEFAULT_SCENARIO), "", AgentMode::subagent);
  ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  const std::vector<Credentials> asked = {Credentials::v2c("public"), Credentials::v3("red")};
  std::vector<std::string> before;
  for (const Credentials& who : asked) {
    std::string walked;
    // Settled: two walks in a row alike.
    ASSERT_TRUE(eventually([&] {
      std::string again = served(*agent, who);
      bool settled = !again.empty() && again == walked;
      walked = again;
      return settled;
    }));
    before.push_back(walked);
  }

  ASSERT_TRUE(agent->masterKilled()) << agent->diagnostics();

  for (std::size_t i = 0; i < asked.size(); ++i) {
    std::string after;
    EXPECT_TRUE(eventually([&] { return (after = served(*agent, asked[i])) == before[i]; }))
        << asked[i].args.back() << "\nbefore:\n" << before[i] << "\nafter:\n" << after;
  }
  EXPECT_TRUE(agent->running());
}

}  // namespace
}  // namespace IntegrationTest
