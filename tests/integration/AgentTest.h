#pragma once
// A test with an agent of its own, started by the test: skipped where snmpd and the tools are
// missing, and the agent's log printed when the test fails.
#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <string>

#include "AgentUnderTest.h"
#include "Eventually.h"

namespace IntegrationTest {

template <class Base>
class AgentTestOf : public Base {
 protected:
  void SetUp() override {
    if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
  }
  void TearDown() override {
    if (agent && this->HasFailure()) std::cerr << agent->diagnostics();
  }

  std::unique_ptr<AgentUnderTest> agent;
};

using AgentTest = AgentTestOf<::testing::Test>;

// A test run against each form of the agent, the plug-in and the sub-agent: a TEST_P of a fixture
// derived from this, instantiated with BOTH_AGENT_MODES(fixture).
using AgentModesTest = AgentTestOf<::testing::TestWithParam<AgentMode>>;

inline std::string agentModeTestName(const ::testing::TestParamInfo<AgentMode>& mode) {
  return mode.param == AgentMode::plugin ? "Plugin" : "Subagent";
}

#define BOTH_AGENT_MODES(fixture)                                                                          \
  INSTANTIATE_TEST_SUITE_P(BothModes, fixture,                                                            \
                           ::testing::Values(::IntegrationTest::AgentMode::plugin,                         \
                                             ::IntegrationTest::AgentMode::subagent),                      \
                           ::IntegrationTest::agentModeTestName)

}  // namespace IntegrationTest
