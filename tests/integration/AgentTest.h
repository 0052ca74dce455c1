#pragma once
// A test with an agent of its own, started by the test: skipped where snmpd and the tools are
// missing, and the agent's log printed when the test fails.
#include <gtest/gtest.h>

#include <iostream>
#include <memory>

#include "AgentUnderTest.h"
#include "Eventually.h"

namespace IntegrationTest {

class AgentTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
  }
  void TearDown() override {
    if (agent && HasFailure()) std::cerr << agent->diagnostics();
  }

  std::unique_ptr<AgentUnderTest> agent;
};

}  // namespace IntegrationTest
