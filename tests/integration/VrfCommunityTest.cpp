// SNMPv2c reaches each VRF through public@<vrf> while the VRF is up, with the plug-in inside snmpd
// and through the sub-agent's master alike (the launcher's line "ipsnmpVrfCommunity public"): a VRF
// created after the start answers within a second, other communities get nothing, snmpd's reload of
// its configuration brings the communities of the VRFs that are up back, and a VRF that goes stops
// answering within a second.
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <string>

#include "AgentTest.h"

namespace IntegrationTest {
namespace {

const char* const ipForwarding = ".1.3.6.1.2.1.4.1.0";
const char* const communityLine = "ipsnmp: every VRF gets the community public@<vrf>";

std::string scenario(bool withGreen) {
  std::string text = "routing:\n  ipv4: true\n  ipv6: false\nvrfs:\n";
  text += "  red:\n    routing: { ipv4: true }\n    published: true\n    status: { state: active }\n";
  if (withGreen) text += "  green:\n    routing: { ipv4: true }\n    published: true\n    status: { state: active }\n";
  text += "interfaces:\n  Ethernet1:\n    ifIndex: 1\n    config: { ipv4: 10.0.1.1/24 }\n";
  text += "snmp:\n  initialized: true\n";
  return text;
}

class VrfCommunityTest : public AgentModesTest {
 protected:
  void SetUp() override {
    AgentModesTest::SetUp();
    if (IsSkipped()) return;
    agent = std::make_unique<AgentUnderTest>(scenario(false), "", GetParam());
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }
  // The community reaches a context: ipForwarding answers. A community that maps to nothing gets no
  // answer at all, so the probe gives up soon.
  bool answers(const std::string& community) const {
    auto vb = SnmpTools(agent->address(), 0.2, 0).getOne(Credentials::v2c(community), ipForwarding);
    return vb && vb->type == "INTEGER";
  }
  // Milliseconds since `since`, for the record of the run.
  static long long millisecondsSince(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - since).count();
  }
};

TEST_P(VrfCommunityTest, CommunityOfEachVrfComesAndGoesWithTheVrf) {
  EXPECT_TRUE(answers("public@red")) << "a VRF up at the start";
  EXPECT_FALSE(answers("public@green"));

  agent->scenarioIs(scenario(true));
  const auto created = std::chrono::steady_clock::now();
  ASSERT_TRUE(eventually([&] { return answers("public@green"); }, 1.0)) << "no answer within 1 s of the VRF";
  std::cout << "public@green answered " << millisecondsSince(created) << " ms after the VRF was created\n";
  for (const char* other : {"private@green", "PUBLIC@green", "public@blue", "green"})
    EXPECT_FALSE(answers(other)) << other;

  agent->reload();
  ASSERT_TRUE(eventually([&] { return agent->logCount(communityLine) == 2; }, 10.0))
      << "snmpd did not read its configuration again";
  EXPECT_TRUE(eventually([&] { return answers("public@green") && answers("public@red"); }, 5.0)) << "after the reload";
  EXPECT_FALSE(answers("private@green"));

  agent->scenarioIs(scenario(false));
  const auto deleted = std::chrono::steady_clock::now();
  ASSERT_TRUE(eventually([&] { return !answers("public@green"); }, 1.0)) << "still answers 1 s after the VRF went";
  std::cout << "public@green stopped answering " << millisecondsSince(deleted) << " ms after the VRF was deleted\n";
  EXPECT_TRUE(answers("public@red"));
  EXPECT_TRUE(agent->running());
}

BOTH_AGENT_MODES(VrfCommunityTest);

}  // namespace
}  // namespace IntegrationTest
