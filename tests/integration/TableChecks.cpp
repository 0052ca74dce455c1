#include "TableChecks.h"

#include <gtest/gtest.h>

namespace IntegrationTest {

bool walksAs(const AgentUnderTest& agent, const ExpectedTable& expected, const Credentials& who) {
  return linesOf(agent.tools().walk(who, expected.root()).varbinds) == linesOf(expected.walk());
}

void expectWalk(const AgentUnderTest& agent, const ExpectedTable& expected, const Credentials& who) {
  const std::vector<std::string> lines = linesOf(expected.walk());
  EXPECT_EQ(linesOf(agent.tools().walk(who, expected.root()).varbinds), lines) << "snmpwalk " << expected.root();
  EXPECT_EQ(linesOf(agent.tools().bulkWalk(who, expected.root()).varbinds), lines)
      << "snmpbulkwalk " << expected.root();
}

void expectRightAnswers(const AgentUnderTest& agent, const ExpectedTable& table,
                        const std::vector<std::string>& probes) {
  const Credentials who = Credentials::v2c("public");
  ToolOutput next = agent.tools().getNext(who, probes);
  ASSERT_EQ(next.varbinds.size(), probes.size()) << next.run.output;
  for (std::size_t i = 0; i < probes.size(); ++i) {
    const Varbind& answer = next.varbinds[i];
    if (std::optional<Varbind> expected = table.next(probes[i])) {
      EXPECT_EQ(lineOf(answer), lineOf(*expected)) << "GETNEXT " << probes[i];
    } else {
      EXPECT_NE(answer.oid.rfind(table.root() + ".", 0), 0u) << "GETNEXT " << probes[i] << ": " << lineOf(answer);
      EXPECT_GT(oidParts(answer.oid), oidParts(probes[i])) << "GETNEXT " << probes[i] << ": " << lineOf(answer);
    }
  }
  ToolOutput get = agent.tools().get(who, probes);
  ASSERT_EQ(get.varbinds.size(), probes.size()) << get.run.output;
  for (std::size_t i = 0; i < probes.size(); ++i)
    EXPECT_EQ(lineOf(get.varbinds[i]), lineOf(table.get(probes[i]))) << "GET " << probes[i];
}

}  // namespace IntegrationTest
