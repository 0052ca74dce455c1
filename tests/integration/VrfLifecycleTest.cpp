// A VRF in the real snmpd, driven by the scenario and the shared-memory tables: its context exists
// only after the agent is initialized, then answers every table with the VRF's own rows; state 3
// changes nothing, state 2 takes the context away, and the VRF comes back whole, as it does when the
// agent's initialization goes and returns; its neighbours show once its VRF id arrives, and those of
// an unknown id nowhere; a VRF that cannot come up leaves the others be.
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "AgentTest.h"
#include "VrfScenario.h"

namespace IntegrationTest {
namespace {

const Credentials defaultContext = Credentials::v2c("public");
const Credentials redContext = Credentials::v3("red");

class VrfLifecycleTest : public AgentTest {
 protected:
  void start(const std::string& scenario) {
    agent = std::make_unique<AgentUnderTest>(scenario, tables.path());
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }
  // Red's context answers; a context the agent does not know gets no answer at all.
  bool redAnswers() const {
    std::optional<Varbind> vb = agent->tools().impatient().getOne(redContext, ipForwarding);
    return vb && vb->type == "INTEGER";
  }
  bool redHasRow() const {
    std::optional<Varbind> vb = agent->tools().getOne(defaultContext, redVrfState);
    return vb && vb->type == "INTEGER";
  }
  std::vector<std::string> rows(const Credentials& who, const char* table) const {
    return rowIndexes(agent->tools().bulkWalk(who, table), table);
  }

  TableRoot tables;
};

TEST_F(VrfLifecycleTest, ContextsComeAfterInitializationAndAnswerEveryTableWithTheVrfsRows) {
  ASSERT_EQ(tables.writeRed(true), "");
  ASSERT_EQ(tables.write({"arp put 8 Ethernet2 10.0.2.8 00:1c:73:00:00:08"}), "");
  start(redScenario("active", false));
  EXPECT_FALSE(redAnswers()) << "no VRF context before the agent is initialized";

  agent->scenarioIs(redScenario("active", true));
  ASSERT_TRUE(eventually([&] { return redAnswers(); }, 10));
  EXPECT_EQ(rows(redContext, ipAddrTable), std::vector<std::string>{redAddress});
  EXPECT_EQ(rows(redContext, ipNetToMediaTable), std::vector<std::string>{redNeighbour});
  ASSERT_TRUE(eventually([&] { return !rows(redContext, ipCidrRouteTable).empty(); }, 5));
  EXPECT_EQ(rows(redContext, ipCidrRouteTable), std::vector<std::string>{redRoute});
  EXPECT_FALSE(rows(redContext, ipAddressTable).empty());
  EXPECT_FALSE(rows(redContext, ipAddressPrefixTable).empty());
  EXPECT_FALSE(rows(redContext, oskelSwFwdIpStatsTable).empty());

  EXPECT_EQ(rows(defaultContext, ipAddrTable), std::vector<std::string>{"10.0.2.1"});
  EXPECT_EQ(rows(defaultContext, ipNetToMediaTable), std::vector<std::string>{"2.10.0.2.2"})
      << "the neighbour of VRF id 8, which nothing names, is nowhere";
  EXPECT_TRUE(redHasRow()) << "oskelVrfTable shows red";
  EXPECT_EQ(rows(defaultContext, oskelVrfIfTable), std::vector<std::string>{"1"}) << "Ethernet1 is in red";
  EXPECT_TRUE(agent->running());
}

TEST_F(VrfLifecycleTest, NeighboursOfAVrfShowOnceItsIdArrives) {
  ASSERT_EQ(tables.writeRed(false), "");
  start(redScenario("active"));
  ASSERT_TRUE(eventually([&] { return redAnswers(); }, 10));
  EXPECT_TRUE(rows(redContext, ipNetToMediaTable).empty()) << "VRF id 7 names nothing yet";

  ASSERT_EQ(tables.write({"vrf put 7 red"}), "");
  EXPECT_TRUE(eventually([&] { return rows(redContext, ipNetToMediaTable) == std::vector<std::string>{redNeighbour}; }, 5))
      << "the id's arrival loads red's neighbours";

  ASSERT_EQ(tables.write({"arp put 8 Ethernet1 10.0.1.8 00:1c:73:00:00:08",
                          "arp put 7 Ethernet1 10.0.1.3 00:1c:73:00:00:04"}),
            "");
  EXPECT_TRUE(eventually([&] { return contains(rows(redContext, ipNetToMediaTable), "1.10.0.1.3"); }, 5));
  EXPECT_FALSE(contains(rows(redContext, ipNetToMediaTable), "1.10.0.1.8")) << "VRF id 8 names nothing";
  EXPECT_FALSE(contains(rows(defaultContext, ipNetToMediaTable), "1.10.0.1.8"));
}

// Red with an interface whose address only its status gives (Ethernet3, 10.0.3.1), beside the
// scenario's own; `redState` "" leaves red out.
std::string redWithStatusOnlyAddress(const std::string& redState, bool initialized = true) {
  std::string text = redScenario(redState, initialized);
  const std::string interfaces = "interfaces:\n";
  text.insert(text.find(interfaces) + interfaces.size(),
              "  Ethernet3:\n    ifIndex: 3\n    config: { vrf: red }\n    status: { vrf: red, ipv4: 10.0.3.1/24 }\n");
  return text;
}

// State 3 changes nothing but the state column; state 2 takes the context away, and so does the
// agent's initialization going. Each time red comes back whole within a second.
TEST_F(VrfLifecycleTest, AVrfGoesWithStateTwoAndTheAgentsInitializationAndComesBackWhole) {
  ASSERT_EQ(tables.writeRed(true), "");
  start(redWithStatusOnlyAddress(""));
  agent->scenarioIs(redWithStatusOnlyAddress("active"));
  const std::vector<std::string> redAddresses{redAddress, "10.0.3.1"};
  const auto whole = [&] {
    return redAnswers() && redHasRow() && rows(redContext, ipAddrTable) == redAddresses &&
           rows(redContext, ipNetToMediaTable) == std::vector<std::string>{redNeighbour} &&
           rows(redContext, ipCidrRouteTable) == std::vector<std::string>{redRoute} &&
           rows(defaultContext, oskelVrfIfTable) == std::vector<std::string>{"1", "3"};
  };
  ASSERT_TRUE(eventually(whole, 1)) << "created after the start: every row within 1 s";

  agent->scenarioIs(redWithStatusOnlyAddress("3"));
  const auto redState = [&] { return agent->tools().getOne(defaultContext, redVrfState).value_or(Varbind{}).value; };
  ASSERT_TRUE(eventually([&] { return redState() == "2"; }, 5)) << "oskelVrfTable shows every state but 1 as 2";
  EXPECT_TRUE(redAnswers());
  EXPECT_EQ(rows(redContext, ipAddrTable), redAddresses);

  agent->scenarioIs(redWithStatusOnlyAddress("deleting"));
  ASSERT_TRUE(eventually([&] { return !redAnswers() && !redHasRow(); }, 5));
  EXPECT_TRUE(rows(defaultContext, oskelVrfIfTable).empty());
  agent->scenarioIs(redWithStatusOnlyAddress(""));
  EXPECT_FALSE(eventually([&] { return redAnswers(); }, 1)) << "removing the status member tears down nothing more";
  EXPECT_EQ(rows(defaultContext, ipAddrTable), std::vector<std::string>{"10.0.2.1"});
  agent->scenarioIs(redWithStatusOnlyAddress("initializing"));
  EXPECT_TRUE(eventually(whole, 1)) << "re-created: neighbours, status-only address, interfaces and row within 1 s";

  agent->scenarioIs(redWithStatusOnlyAddress("initializing", false));
  EXPECT_TRUE(eventually([&] { return !redAnswers(); }, 5)) << "no VRF context while the agent is not initialized";
  agent->scenarioIs(redWithStatusOnlyAddress("initializing", true));
  EXPECT_TRUE(eventually(whole, 1)) << "initialized again: red comes back whole";
  EXPECT_TRUE(agent->running());
}

TEST_F(VrfLifecycleTest, AVrfThatCannotComeUpIsSkippedAndTheOthersServe) {
  ASSERT_EQ(tables.writeRed(true), "");
  std::string scenario = redScenario("active");
  const std::string vrfs = "vrfs:\n";
  // ".." makes no path for its tables: its bring-up fails where its tables are mounted.
  scenario.insert(scenario.find(vrfs) + vrfs.size(),
                  "  \"..\":\n    routing: { ipv4: true }\n    published: true\n    status: { state: active }\n");
  start(scenario);
  ASSERT_TRUE(eventually([&] { return redAnswers(); }, 10)) << agent->diagnostics();
  EXPECT_EQ(rows(redContext, ipAddrTable), std::vector<std::string>{redAddress});
  EXPECT_TRUE(agent->tools().getOne(defaultContext, ipForwarding).has_value());
  EXPECT_NE(agent->log().find("VRF .. not brought up"), std::string::npos) << agent->log();
}

}  // namespace
}  // namespace IntegrationTest
