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

}  // namespace IntegrationTest
