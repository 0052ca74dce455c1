#pragma once
// A suite whose tests share one agent: `Suite::scenario()` gives the scenario it starts with, before
// the suite's first test. Its tests must leave what the agent serves as they found it.
#include <gtest/gtest.h>

#include <iostream>
#include <memory>

#include "AgentUnderTest.h"
#include "Eventually.h"

namespace IntegrationTest {

template <class Suite>
class SharedAgentTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (toolsInstalled()) agent = std::make_unique<AgentUnderTest>(Suite::scenario());
  }
  static void TearDownTestSuite() { agent.reset(); }
  void SetUp() override {
    if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }
  void TearDown() override {
    if (agent && HasFailure()) std::cerr << agent->diagnostics();
  }

  static inline std::unique_ptr<AgentUnderTest> agent;
};

}  // namespace IntegrationTest
