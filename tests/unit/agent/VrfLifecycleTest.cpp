// A VRF comes up, with its tables mounted, its containers and machines made and only then its SNMP
// context, once the agent is initialized and the routing side has published it; it goes with its
// context closed first; and it comes back with fresh containers.
#include <algorithm>

#include "tests/unit/agent/TraceLines.h"
#include "tests/unit/agent/VrfLifecycleFixture.h"

namespace IpSnmp {
namespace {

using Strings = std::vector<std::string>;

// Everything a VRF has while it is up, as the context calls see it (without its vrfTable row).
const std::string everything = "tables root mibs machines addresses stats";

TEST_F(VrfLifecycle, NothingComesUpBeforeTheAgentIsInitialized) {
  vrf("red", Ip::vrfStateActive);
  start();
  EXPECT_EQ(vrfRoot("red"), nullptr);
  EXPECT_EQ(ipMibOf("red"), nullptr);
  EXPECT_EQ(mountedAt(Tarn::Fib::vrfRoutePathFormat, "red"), nullptr);
  EXPECT_TRUE(contexts.calls.empty());

  initialized();
  ASSERT_NE(vrfRoot("red"), nullptr);
  EXPECT_EQ(contexts.calls, Strings{"open red: " + everything + " row"}) << "the context opens last";
  EXPECT_EQ(vrfRoot("red")->ipMib(), ipMibOf("red"));
  EXPECT_EQ(vrfRoot("red")->arpTableSm()->arpTarnVrfId(), Vrf::VrfIdMap::unknownVrfId);
}

TEST_F(VrfLifecycle, AnAgentInitializedAlreadyBringsTheVrfsUpAtConstruction) {
  initialized();
  vrf("red");
  vrf("blue", Ip::vrfStateInitializing);
  start();
  std::sort(contexts.calls.begin(), contexts.calls.end());
  EXPECT_EQ(contexts.calls, (Strings{"open blue: " + everything + " row", "open red: " + everything + " row"}))
      << "states 0 and 1 add the row before the VRF comes up";
}

TEST_F(VrfLifecycle, OnlyAPublishedVrfComesUpAndItNeedsNoStatus) {
  routingConfigIs("red");
  ipConfigIs("red");
  statusIs("red", Ip::vrfStateActive);
  published("blue");  // nothing else of blue
  initialized();
  start();
  EXPECT_EQ(vrfRoot("red"), nullptr) << "not published";
  ASSERT_NE(vrfRoot("blue"), nullptr);
  EXPECT_FALSE(hasRow("blue")) << "a row needs the three sources";
  EXPECT_TRUE(hasRow("red")) << "the row does not wait for the VRF to come up";

  published("red");
  EXPECT_NE(vrfRoot("red"), nullptr) << "publishing brings it up";
}

TEST_F(VrfLifecycle, TheRowComesWithTheLastOfItsThreeSourcesWhateverItIs) {
  initialized();
  start();
  statusIs("red", Ip::vrfStateActive);
  published("red");
  routingConfigIs("red");
  EXPECT_FALSE(hasRow("red"));
  ipConfigIs("red");
  EXPECT_TRUE(hasRow("red")) << "the IP configuration came last";
}

TEST_F(VrfLifecycle, LeavingThePublishedDirectoryTearsNothingDown) {
  initialized();
  vrf("red");
  start();
  store.routingVrfInfoDir->entityPtrDel(Quor::Name("red"));
  EXPECT_NE(vrfRoot("red"), nullptr);
  EXPECT_EQ(contexts.calls.size(), 1u);
}

TEST_F(VrfLifecycle, TheContextClosesBeforeTablesContainersAndMachinesGo) {
  initialized();
  auto status = vrf("red");
  intfUp("Ethernet5", 5);
  intfConfiguredIn("Ethernet5", "red");
  intfUp("Ethernet6", 6);
  intfConfiguredIn("Ethernet6", "blue");
  start();
  ASSERT_EQ(contexts.calls.size(), 1u);

  status->stateIs(Ip::vrfStateDeleting);
  EXPECT_EQ(contexts.calls.back(), "close red: " + everything + " interfaces") << "the vrfTable row goes before the context";
  EXPECT_EQ(partsOf(Quor::Name("red")), "") << "and everything else after it";
  EXPECT_EQ(ipVrfMib->vrfIfTable().members(), 1u) << "rows of other VRFs' interfaces stay";
  EXPECT_NE(ipVrfMib->vrfIfTable(6), nullptr);
}

TEST_F(VrfLifecycle, StateTwoThenRemovalTearsDownOnce) {
  initialized();
  auto status = vrf("red");
  start();
  TraceLines trace;
  status->stateIs(Ip::vrfStateDeleting);
  store.allVrfStatusLocal->vrfDel(L3::VrfName("red"));
  EXPECT_EQ(contexts.calls, (Strings{"open red: " + everything + " row", "close red: " + everything}));
  EXPECT_EQ(trace.count("IpSnmp/8 void IpSnmp::VrfRootSm::QuorVrfStatusLocal::handleDel() for vrf red"), 2)
      << "the second run finds nothing to do";
  EXPECT_EQ(sm().vrfStatusLocal(L3::VrfName("red")), nullptr);
}

TEST_F(VrfLifecycle, RemovingTheStatusMemberTearsDown) {
  initialized();
  vrf("red");
  vrf("blue");
  start();
  store.allVrfStatusLocal->vrfDel(L3::VrfName("red"));
  EXPECT_EQ(vrfRoot("red"), nullptr);
  EXPECT_NE(vrfRoot("blue"), nullptr);
  EXPECT_EQ(contexts.calls.back(), "close red: " + everything);
}

TEST_F(VrfLifecycle, StatesOtherThanZeroOneAndTwoDoNothing) {
  initialized();
  auto status = vrf("red");
  start();
  VrfRoot* up = vrfRoot("red");
  status->stateIs(Ip::VrfState(3));
  status->stateIs(Ip::VrfState(-1));
  EXPECT_EQ(vrfRoot("red"), up);
  EXPECT_EQ(contexts.calls.size(), 1u);
  EXPECT_TRUE(hasRow("red"));
}

TEST_F(VrfLifecycle, ASecondCreationDoesNothing) {
  initialized();
  auto status = vrf("red");
  start();
  VrfRoot* up = vrfRoot("red");
  auto mib = ipMibOf("red");
  auto routes = mountedAt(Tarn::Fib::vrfRoutePathFormat, "red");
  sm().handleVrfCreation(Quor::Name("red"));
  status->stateIs(Ip::vrfStateInitializing);
  published("red");  // the routing side publishes it again
  EXPECT_EQ(vrfRoot("red"), up);
  EXPECT_EQ(ipMibOf("red"), mib);
  EXPECT_EQ(mountedAt(Tarn::Fib::vrfRoutePathFormat, "red"), routes);
  EXPECT_EQ(contexts.calls.size(), 1u) << "no second registration";
}

TEST_F(VrfLifecycle, AVrfComesBackWithFreshEmptyContainers) {
  initialized();
  intfUp("Ethernet1", 1);
  vrfIdIs(7, "red");
  neighbourIs(7, "Ethernet1", "10.0.0.7");
  auto status = vrf("red");
  start();
  auto first = ipMibOf("red");
  ASSERT_EQ(arpRows(*first), Strings{"1 10.0.0.7"});
  intfConfiguredIn("Ethernet1", "red", "10.0.0.1/24");
  addressIn("Ethernet1", "red", "10.0.0.1/24");
  ASSERT_EQ(first->ipAddrTable().members(), 1u);

  status->stateIs(Ip::vrfStateDeleting);
  EXPECT_EQ(ipMibOf("red"), nullptr);
  EXPECT_EQ(mountedAt(Tarn::Fib::vrfRoutePathFormat, "red"), nullptr) << "unmounted";
  EXPECT_EQ(mountedAt(Tarn::Fib::vrfForwardingPathFormat, "red"), nullptr) << "unmounted";
  EXPECT_EQ(arpRows(*first), Strings{"1 10.0.0.7"}) << "rows stay with the container, which is gone";

  vrfIdGone(7);
  status->stateIs(Ip::vrfStateInitializing);
  auto second = ipMibOf("red");
  ASSERT_NE(second, nullptr);
  EXPECT_NE(second, first);
  EXPECT_TRUE(arpRows(*second).empty());
  EXPECT_TRUE(hasRow("red"));
  EXPECT_EQ(contexts.calls.back(), "open red: " + everything + " row");
  EXPECT_EQ(second->ipAddrTable().members(), 1u) << "the configured address comes into the new container";
  vrfIdIs(7, "red");
  EXPECT_EQ(arpRows(*second), Strings{"1 10.0.0.7"}) << "the new machine takes the id";
}

TEST_F(VrfLifecycle, TheVrfsRouteMachineReadsTheVrfsOwnTables) {
  auto routes = routeTablesMounted("red");
  intfUp("Ethernet1", 1);
  Tarn::Fib::Route route;
  route.prefix = Pelt::Prefix("10.1.0.0/16");
  route.routeType = Routing::Fib::routeTypeConnected;
  route.fecId = Tarn::Fib::FecId(3);
  Tarn::inProcessTable(routes->route()).put(route.prefix, route);
  Tarn::Fib::Fec fec;
  fec.fecId = Tarn::Fib::FecId(3);
  fec.viaAdd({Pelt::IpAddr(std::string_view("10.1.0.1")), Pelt::IntfId("Ethernet1")});
  Tarn::inProcessTable(forwardingTableOf("red")->fec()).put(fec.fecId, fec);
  initialized();
  vrf("red");
  start();
  ASSERT_NE(vrfRoot("red"), nullptr);
  EXPECT_EQ(vrfRoot("red")->ipRouteTableSm()->routeStatus(), routes);
  for (int run = 0; run < 10; ++run) Quor::activityManager()->runDue();
  EXPECT_EQ(vrfRoot("red")->ipForwardMib()->ipCidrRouteTable().members(), 1u);
}

TEST_F(VrfLifecycle, StoppingClosesEveryContext) {
  initialized();
  vrf("red");
  vrf("blue");
  start();
  root = nullptr;
  EXPECT_EQ(contexts.calls.size(), 4u);
  EXPECT_EQ(contexts.calls[2].rfind("close ", 0), 0u);
  EXPECT_EQ(contexts.calls[3].rfind("close ", 0), 0u);
  EXPECT_EQ(vrfMibsDir->mibs().members(), 0u);
}

}  // namespace
}  // namespace IpSnmp
