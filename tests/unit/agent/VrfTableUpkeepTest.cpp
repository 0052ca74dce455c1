// vrfTable has a row for a VRF once its three sources exist (IP configuration, local status, routing
// configuration), whatever their order and whether or not the agent is initialized; the row is
// never refreshed and goes only with the VRF's teardown.
#include "tests/unit/agent/VrfLifecycleFixture.h"

namespace IpSnmp {
namespace {

TEST_F(VrfLifecycle, ARowNeedsAllThreeSources) {
  start();
  statusIs("red", Ip::vrfStateInitializing);
  routingConfigIs("red");
  EXPECT_FALSE(hasRow("red")) << "no IP configuration";

  ipConfigIs("blue");
  routingConfigIs("blue");
  EXPECT_FALSE(hasRow("blue")) << "no local status";

  ipConfigIs("green");
  statusIs("green", Ip::vrfStateInitializing);
  EXPECT_FALSE(hasRow("green")) << "no routing configuration";
  routingConfigIs("green");
  ASSERT_TRUE(hasRow("green")) << "the routing configuration came last";
  const VrfTableEntry* row = ipVrfMib->vrfTable(Snmp::String(Quor::Name("green")));
  EXPECT_EQ(row->vrfConfig(), store.allVrfConfig->vrf(L3::VrfName("green")));
  EXPECT_EQ(row->vrfStatusLocal(), store.allVrfStatusLocal->vrf(L3::VrfName("green")));
  ASSERT_NE(row->vrfRoutingStatus(), nullptr);
  EXPECT_EQ(ipVrfMib->vrfTable().members(), 1u);
}

TEST_F(VrfLifecycle, AnIpConfigurationArrivingLastWaitsForTheNextTrigger) {
  start();
  auto status = statusIs("red", Ip::VrfState(3));
  routingConfigIs("red");
  ipConfigIs("red");
  EXPECT_FALSE(hasRow("red")) << "the IP configuration has no reaction of its own";
  status->stateIs(Ip::vrfStateActive);
  EXPECT_FALSE(hasRow("red")) << "state 1 does not add the row";
  routingConfigIs("red");
  EXPECT_TRUE(hasRow("red")) << "a change of the routing configuration does";

  statusIs("blue", Ip::vrfStateInitializing);
  routingConfigIs("blue");
  ipConfigIs("blue");
  statusIs("blue", Ip::vrfStateInitializing);
  EXPECT_TRUE(hasRow("blue")) << "and so does state 0";
}

TEST_F(VrfLifecycle, TheInitializationPassAddsTheRowsOfEveryRoutingConfiguration) {
  start();
  statusIs("red", Ip::vrfStateActive);
  routingConfigIs("red");
  ipConfigIs("red");
  ASSERT_FALSE(hasRow("red"));
  initialized();
  EXPECT_TRUE(hasRow("red"));
}

TEST_F(VrfLifecycle, ARowIsNeverRefreshed) {
  start();
  vrf("red", Ip::vrfStateInitializing);
  const VrfTableEntry* row = ipVrfMib->vrfTable(Snmp::String(Quor::Name("red")));
  ASSERT_NE(row, nullptr);
  const auto config = row->vrfConfig();
  const auto routing = row->vrfRoutingStatus();
  ipConfigIs("red");  // a new object under the same name
  sm().addToVrfTable(Quor::Name("red"));
  EXPECT_EQ(ipVrfMib->vrfTable(Snmp::String(Quor::Name("red"))), row);
  EXPECT_EQ(row->vrfConfig(), config);

  store.routingVrfConfigDir->vrfConfigDel(Quor::Name("red"));
  EXPECT_EQ(ipVrfMib->vrfTable(Snmp::String(Quor::Name("red"))), row) << "the routing member left, the row stays";
  EXPECT_EQ(row->vrfRoutingStatus(), routing);
}

TEST_F(VrfLifecycle, ANameOfMoreThanAHundredBytesIsARangeFailure) {
  start();
  const std::string longest(100, 'v');
  vrf(longest, Ip::vrfStateInitializing);
  EXPECT_TRUE(hasRow(longest));
  try {
    sm().addToVrfTable(Quor::Name(std::string(101, 'v')));
    ADD_FAILURE() << "no failure for 101 bytes";
  } catch (const Quor::RangeException& e) {
    EXPECT_EQ(e.text(), "VrfName::bytes > 100 not allowed");
  }
}

TEST_F(VrfLifecycle, AVrfTornDownBeforeInitializationKeepsItsRow) {
  start();
  auto status = vrf("red", Ip::vrfStateInitializing);
  status->stateIs(Ip::vrfStateDeleting);
  EXPECT_TRUE(hasRow("red"));
  store.allVrfStatusLocal->vrfDel(L3::VrfName("red"));
  EXPECT_TRUE(hasRow("red"));
}

TEST_F(VrfLifecycle, AfterInitializationTheTeardownTakesTheRowOfAVrfThatNeverCameUp) {
  initialized();
  start();
  routingConfigIs("red");
  ipConfigIs("red");
  auto status = statusIs("red", Ip::vrfStateInitializing);
  ASSERT_TRUE(hasRow("red"));
  ASSERT_EQ(vrfRoot("red"), nullptr) << "not published";
  status->stateIs(Ip::vrfStateDeleting);
  EXPECT_FALSE(hasRow("red"));
  EXPECT_TRUE(contexts.calls.empty());
}

}  // namespace
}  // namespace IpSnmp
