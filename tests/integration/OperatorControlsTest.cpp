// The operator's controls in the real agent, the plug-in and the sub-agent alike: the launcher's
// --trace reaches the agent as a configuration line and switches on exactly the facility and levels
// it names, from the agent's start-up on, and SIGUSR2 has the agent write its Flitlog ring, whose records name the handlers that
// served the requests.
#include <gtest/gtest.h>

#include <memory>

#include "AgentTest.h"

namespace IntegrationTest {
namespace {

const char* const scenario =
    "routing:\n  ipv4: true\n  ipv6: false\n"
    "vrfs:\n  red:\n    routing: { ipv4: true }\n    published: true\n    status: { state: active }\n"
    "interfaces:\n"
    "  Ethernet1:\n    ifIndex: 1\n    config: { ipv4: 10.0.1.1/24 }\n    status: { ipv4: 10.0.1.1/24 }\n"
    "snmp:\n  initialized: true\n";

class OperatorControlsTest : public AgentModesTest {
 protected:
  void SetUp() override {
    AgentModesTest::SetUp();
    if (IsSkipped()) return;
    agent = std::make_unique<AgentUnderTest>(scenario, "", GetParam());
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }
};

TEST_P(OperatorControlsTest, TraceOptionSwitchesOnTheNamedFacilityAndLevelsOnly) {
  // The harness starts every agent with --trace Snmp:0-2: request flow, not function entry. VRF red's
  // context, opened during the start, has no ipv6IpForwarding: a level-2 line of the start-up.
  EXPECT_NE(agent->log().find("init_IpBase in context \"red\": morvanePathWithContext not specified"),
            std::string::npos)
      << agent->log();
  ASSERT_FALSE(agent->tools().walk(Credentials::v2c("public"), ".1.3.6.1.2.1.4.20").varbinds.empty());
  EXPECT_TRUE(eventually([&] { return agent->log().find("Snmp/2 ") != std::string::npos; }, 5.0)) << agent->log();
  EXPECT_EQ(agent->log().find("Snmp/8 "), std::string::npos);
  EXPECT_EQ(agent->log().find("IpSnmp/"), std::string::npos);
}

TEST_P(OperatorControlsTest, SignalWritesTheFlitlogRingOfTheHandlersThatRan) {
  ASSERT_FALSE(agent->tools().walk(Credentials::v2c("public"), ".1.3.6.1.2.1.4.20").varbinds.empty());
  const std::string dump = agent->flitlogDump();
  EXPECT_NE(dump.find("# Flitlog ring of ipsnmp"), std::string::npos) << dump;
  EXPECT_NE(dump.find("ipAddrTable_handler"), std::string::npos) << dump;
  EXPECT_NE(dump.find("IpSnmpAgent: "), std::string::npos) << "the machines' handlers at start\n" << dump;
  EXPECT_NE(agent->log().find("Flitlog ring of "), std::string::npos) << agent->log();
  EXPECT_TRUE(agent->running());
}

BOTH_AGENT_MODES(OperatorControlsTest);

}  // namespace
}  // namespace IntegrationTest
