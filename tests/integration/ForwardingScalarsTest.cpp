// ipForwarding and ipv6IpForwarding as a manager sees them: answered from the scenario's routing
// configuration, following edits of the scenario without a restart, refusing every SET, per VRF
// context for ipForwarding, and a VRF context that goes away and comes back.
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <thread>
#include <vector>

#include "AgentTest.h"
#include "Eventually.h"

namespace IntegrationTest {
namespace {

const std::string ipForwarding = ".1.3.6.1.2.1.4.1.0";
const std::string ipv6IpForwarding = ".1.3.6.1.2.1.4.25.0";
const std::string ipGroup = ".1.3.6.1.2.1.4";
const Credentials publicCommunity = Credentials::v2c("public");
const Credentials defaultContextV3 = Credentials::v3("");

// A scenario of routing: the default VRF's IPv4 and IPv6 routing, and other VRFs that are up, with
// their IPv4 routing, in an initialized agent.
std::string scenario(bool ipv4, bool ipv6, const std::map<std::string, bool>& vrfs = {}) {
  auto flag = [](bool on) { return on ? "true" : "false"; };
  std::string text = "routing:\n  ipv4: " + std::string(flag(ipv4)) + "\n  ipv6: " + flag(ipv6) + "\n";
  if (!vrfs.empty()) text += "vrfs:\n";
  for (const auto& [vrf, on] : vrfs)
    text += "  " + vrf + ":\n    routing: { ipv4: " + flag(on) + " }\n    published: true\n" +
            "    status: { state: active }\n";
  return text + "snmp:\n  initialized: true\n";
}

// The values that a walk (or GETNEXT) showed for `oid`, in the order shown.
std::vector<std::string> walked(const ToolOutput& walk, const std::string& oid) {
  std::vector<std::string> values;
  for (const Varbind& vb : walk.varbinds)
    if (vb.oid == oid) values.push_back(vb.value);
  return values;
}

class ForwardingScalarsTest : public AgentTest {
 protected:
  // Called as ASSERT_NO_FATAL_FAILURE(start(...)): a test goes no further without its agent.
  void start(const std::string& yaml) {
    agent = std::make_unique<AgentUnderTest>(yaml);
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }

  // The INTEGER answered for `oid`, or the exception or failure in its place.
  std::string valueOf(const Credentials& who, const std::string& oid) const {
    auto vb = agent->tools().getOne(who, oid);
    if (!vb) return "no answer";
    return vb->type == "INTEGER" ? vb->value : vb->type;
  }
  bool answersTo(const Credentials& who) const {
    return !agent->tools().impatient().get(who, {ipForwarding}).timedOut;
  }
};

TEST_F(ForwardingScalarsTest, IpForwardingIsOneWithRoutingOnAndTwoWithRoutingOff) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(true, false)));
  EXPECT_EQ(valueOf(publicCommunity, ipForwarding), "1");
  EXPECT_EQ(valueOf(defaultContextV3, ipForwarding), "1");

  agent->scenarioIs(scenario(false, false));
  EXPECT_TRUE(eventually([&] { return valueOf(publicCommunity, ipForwarding) == "2"; }))
      << "ipForwarding did not follow the edit of the scenario";
  EXPECT_TRUE(agent->running());
}

TEST_F(ForwardingScalarsTest, Ipv6IpForwardingFollowsTheIpv6RoutingOnly) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(false, true)));
  EXPECT_EQ(valueOf(publicCommunity, ipv6IpForwarding), "1");
  EXPECT_EQ(valueOf(publicCommunity, ipForwarding), "2");

  agent->scenarioIs(scenario(true, false));
  EXPECT_TRUE(eventually([&] { return valueOf(publicCommunity, ipv6IpForwarding) == "2"; }));
  EXPECT_EQ(valueOf(publicCommunity, ipForwarding), "1");
}

TEST_F(ForwardingScalarsTest, SetOfEitherScalarIsNotWritableAndChangesNothing) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(true, true, {{"red", true}})));
  for (const std::string& oid : {ipForwarding, ipv6IpForwarding}) {
    for (const Credentials& who : {publicCommunity, defaultContextV3}) {
      ToolOutput refused = agent->tools().set(who, oid, "i", "2");
      EXPECT_NE(refused.run.exitStatus, 0) << refused.run.output;
      EXPECT_EQ(refused.error, "notWritable") << refused.run.output;
    }
    EXPECT_EQ(valueOf(publicCommunity, oid), "1");
  }
  ToolOutput inVrf = agent->tools().set(Credentials::v3("red"), ipForwarding, "i", "2");
  EXPECT_EQ(inVrf.error, "notWritable") << inVrf.run.output;
  EXPECT_EQ(valueOf(Credentials::v3("red"), ipForwarding), "1");
}

TEST_F(ForwardingScalarsTest, VrfContextAnswersFromTheVrfsRoutingConfiguration) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(true, true, {{"red", false}, {"blue", true}})));
  EXPECT_EQ(valueOf(Credentials::v2c("public@red"), ipForwarding), "2");
  EXPECT_EQ(valueOf(Credentials::v3("red"), ipForwarding), "2");
  EXPECT_EQ(valueOf(Credentials::v2c("public@blue"), ipForwarding), "1");
  EXPECT_EQ(valueOf(Credentials::v3("red"), ipv6IpForwarding), "noSuchObject");

  agent->scenarioIs(scenario(true, true, {{"red", true}, {"blue", true}}));
  EXPECT_TRUE(eventually([&] { return valueOf(Credentials::v3("red"), ipForwarding) == "1"; }));
}

TEST_F(ForwardingScalarsTest, WalksReachEachScalarWhereItExists) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(true, false, {{"red", true}})));
  ToolOutput first = agent->tools().getNext(publicCommunity, {ipGroup});
  EXPECT_EQ(walked(first, ipForwarding), (std::vector<std::string>{"1"})) << first.run.output;
  ToolOutput forwarding6 = agent->tools().walk(publicCommunity, ".1.3.6.1.2.1.4.25");
  EXPECT_EQ(walked(forwarding6, ipv6IpForwarding), (std::vector<std::string>{"2"})) << forwarding6.run.output;

  ToolOutput inRed = agent->tools().bulkWalk(Credentials::v3("red"), ipGroup);
  EXPECT_EQ(walked(inRed, ipForwarding), (std::vector<std::string>{"1"})) << inRed.run.output;
  EXPECT_TRUE(walked(inRed, ipv6IpForwarding).empty()) << inRed.run.output;
}

// A VRF that leaves the scenario leaves the agent: its context is unknown again, so requests for it
// get no answer at all, as for any context the agent never had. It comes back when the VRF does.
TEST_F(ForwardingScalarsTest, RemovedVrfIsForgottenAndComesBackWhenAddedAgain) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(true, true, {{"red", false}})));
  ASSERT_EQ(valueOf(Credentials::v3("red"), ipForwarding), "2");

  agent->scenarioIs(scenario(true, true));
  EXPECT_TRUE(eventually([&] { return !answersTo(Credentials::v3("red")); }))
      << "the context of a removed VRF still answers";
  EXPECT_FALSE(answersTo(Credentials::v2c("public@red")));
  EXPECT_EQ(valueOf(publicCommunity, ipForwarding), "1");

  agent->scenarioIs(scenario(true, true, {{"red", true}}));
  EXPECT_TRUE(eventually([&] { return valueOf(Credentials::v3("red"), ipForwarding) == "1"; }))
      << "the VRF's context did not come back";
  EXPECT_EQ(valueOf(Credentials::v2c("public@red"), ipForwarding), "1");
  ToolOutput inRed = agent->tools().walk(Credentials::v3("red"), ipGroup);
  EXPECT_EQ(walked(inRed, ipForwarding), (std::vector<std::string>{"1"})) << inRed.run.output;
  EXPECT_TRUE(agent->running());
}

// snmpd unloads and loads the plug-in when it reloads its configuration: nothing of the old library
// may stay registered, and the new one serves and follows the scenario as the first did.
TEST_F(ForwardingScalarsTest, AgentReloadBringsThePluginBackWhole) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(true, false, {{"red", false}})));
  for (int reload = 0; reload < 2; ++reload) {
    agent->reload();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_TRUE(eventually([&] { return valueOf(publicCommunity, ipForwarding) == "1"; })) << "after reload";
  }
  EXPECT_TRUE(eventually([&] { return agent->logCount("ipsnmp: serving") == 3; }))
      << "the plug-in was not loaded three times";
  EXPECT_EQ(valueOf(Credentials::v3("red"), ipForwarding), "2");
  ToolOutput first = agent->tools().getNext(publicCommunity, {ipGroup});
  EXPECT_EQ(walked(first, ipForwarding), (std::vector<std::string>{"1"})) << first.run.output;

  agent->scenarioIs(scenario(false, false));
  EXPECT_TRUE(eventually([&] { return valueOf(publicCommunity, ipForwarding) == "2"; }));
  EXPECT_TRUE(eventually([&] { return !answersTo(Credentials::v3("red")); }));
  EXPECT_TRUE(agent->running());
}

TEST_F(ForwardingScalarsTest, BadScenarioEditKeepsTheLastGoodState) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(true, true, {{"red", true}})));
  agent->scenarioIs("routing:\n  ipv4: false\n  ipv6: maybe\n");
  EXPECT_TRUE(eventually([&] { return agent->log().find("maybe") != std::string::npos; }))
      << "the refusal of the bad scenario is not in the log";
  EXPECT_EQ(valueOf(publicCommunity, ipForwarding), "1");
  EXPECT_EQ(valueOf(publicCommunity, ipv6IpForwarding), "1");
  EXPECT_EQ(valueOf(Credentials::v3("red"), ipForwarding), "1");

  agent->scenarioIs("routing: [unclosed\n");
  agent->scenarioIs(scenario(false, true, {{"red", true}}));
  EXPECT_TRUE(eventually([&] { return valueOf(publicCommunity, ipForwarding) == "2"; }))
      << "a good scenario after bad ones was not applied";
  EXPECT_TRUE(agent->running());
}

TEST_F(ForwardingScalarsTest, BadScenarioAtStartServesAnEmptyStore) {
  ASSERT_NO_FATAL_FAILURE(start("routing:\n  ipv4: yes please\n"));
  EXPECT_EQ(valueOf(publicCommunity, ipForwarding), "2");
  EXPECT_NE(agent->log().find("scenario refused"), std::string::npos) << agent->log();
}

}  // namespace
}  // namespace IntegrationTest
