// ipForwarding and ipv6IpForwarding as a manager sees them: answered from the scenario's routing
// configuration, following edits of the scenario without a restart, per VRF context for
// ipForwarding, whole again after snmpd reloads the plug-in, and from an empty store when the
// scenario at the start is refused.
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

// Each scalar is 1 while its routing is on and 2 while it is off, and follows edits of the scenario;
// a VRF's context answers ipForwarding from the VRF's own routing and has no ipv6IpForwarding.
TEST_F(ForwardingScalarsTest, EachScalarFollowsItsOwnRoutingSwitchInEachContext) {
  ASSERT_NO_FATAL_FAILURE(start(scenario(true, false, {{"red", false}, {"blue", true}})));
  EXPECT_EQ(valueOf(publicCommunity, ipForwarding), "1");
  EXPECT_EQ(valueOf(defaultContextV3, ipForwarding), "1");
  EXPECT_EQ(valueOf(publicCommunity, ipv6IpForwarding), "2");
  EXPECT_EQ(valueOf(Credentials::v2c("public@red"), ipForwarding), "2");
  EXPECT_EQ(valueOf(Credentials::v3("red"), ipForwarding), "2");
  EXPECT_EQ(valueOf(Credentials::v2c("public@blue"), ipForwarding), "1");
  EXPECT_EQ(valueOf(Credentials::v3("red"), ipv6IpForwarding), "noSuchObject");

  agent->scenarioIs(scenario(false, true, {{"red", true}, {"blue", true}}));
  EXPECT_TRUE(eventually([&] { return valueOf(publicCommunity, ipForwarding) == "2"; }))
      << "ipForwarding did not follow the edit of the scenario";
  EXPECT_EQ(valueOf(publicCommunity, ipv6IpForwarding), "1");
  EXPECT_TRUE(eventually([&] { return valueOf(Credentials::v3("red"), ipForwarding) == "1"; }));
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

TEST_F(ForwardingScalarsTest, BadScenarioAtStartServesAnEmptyStore) {
  ASSERT_NO_FATAL_FAILURE(start("routing:\n  ipv4: yes please\n"));
  EXPECT_EQ(valueOf(publicCommunity, ipForwarding), "2");
  EXPECT_NE(agent->log().find("scenario refused"), std::string::npos) << agent->log();
}

}  // namespace
}  // namespace IntegrationTest
