// The route machine, driven through its route and forwarding tables, the interface directory and the
// clock: marks come in, and only a pass of the clock turns them into rows of ipCidrRouteTable.
#include "model/ProtocolMap.h"
#include "tests/unit/agent/RouteTableFixture.h"

namespace IpSnmp {
namespace {

using Strings = std::vector<std::string>;
using Prefixes = std::set<Pelt::Prefix>;

Pelt::Prefix P(const char* text) { return Pelt::Prefix(text); }

// ---- Intake: what marks prefixes, and that nothing but the pass writes rows ----------------------

using RouteIntake = RouteTableFixture;

TEST_F(RouteIntake, ConstructionMarksEveryRouteAndTheClockBuildsThem) {
  intfUp("Ethernet1", 7);
  fecIs(1, {"@Ethernet1"});
  routeIs("10.1.0.0/16", 1);
  routeIs("10.2.0.0/16", 1);
  start();
  EXPECT_EQ(marked(), (Prefixes{P("10.1.0.0/16"), P("10.2.0.0/16")}));
  EXPECT_TRUE(scheduled());
  EXPECT_TRUE(rows().empty());

  runClock();
  EXPECT_EQ(rows(), (Strings{"10.1.0.0 255.255.0.0 0 0.0.0.0 if7", "10.2.0.0 255.255.0.0 0 0.0.0.0 if7"}));
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(idle());
}

TEST_F(RouteIntake, AMachineOnAnEmptyTableGoesStraightToDone) {
  start();
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(scheduled());
  TraceLines trace;
  runClock();
  EXPECT_EQ(trace.count("IpSnmp/2 Starting backlog processing"), 1);
  EXPECT_EQ(trace.count("IpSnmp/2 Backlog processing done"), 1);
  EXPECT_TRUE(idle());
  EXPECT_EQ(sm->bookmark(), Pelt::Prefix());
}

TEST_F(RouteIntake, RouteAddChangeAndDeleteReachTheTableAfterThePass) {
  intfUp("Ethernet1", 7);
  fecIs(1, {"10.0.0.1@Ethernet1"});
  start();
  runClock();
  const IpCidrRouteTableIndex key(Pelt::IpAddr(192, 168, 1, 0), Pelt::IpAddr(255, 255, 255, 0), 0,
                                  Pelt::IpAddr(10, 0, 0, 1));

  routeIs("192.168.1.0/24", 1, Routing::Fib::routeTypeStaticConfig, 10, 5);
  EXPECT_EQ(marked(), Prefixes{P("192.168.1.0/24")});
  EXPECT_TRUE(scheduled());
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), 0u);
  runClock();
  const IpCidrRouteTableEntry* row = ipForwardMib->ipCidrRouteTable(key);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->ifIndex(), 7u);
  EXPECT_EQ(row->metric(), Routing::RouteMetric(10));
  EXPECT_EQ(row->preference(), Routing::RoutePreference(5));
  EXPECT_EQ(row->protocol(), Routing::Fib::routeTypeStaticConfig);
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), 1u);

  routeIs("192.168.1.0/24", 1, Routing::Fib::routeTypeStaticConfig, 20, 5);
  runClock();
  row = ipForwardMib->ipCidrRouteTable(key);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->metric(), Routing::RouteMetric(20));
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), 1u);

  routeGone("192.168.1.0/24");
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), 1u);
  runClock();
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), 0u);
  EXPECT_TRUE(idle());
}

TEST_F(RouteIntake, ARouteAddedAndDeletedBeforeThePassLeavesOneMarkAndNoRow) {
  intfUp("Ethernet1", 7);
  fecIs(1, {"10.0.0.1@Ethernet1"});
  start();
  runClock();
  routeIs("10.1.0.0/16", 1);
  routeIs("10.1.0.0/16", 1, Routing::Fib::routeTypeConnected, 3);
  routeGone("10.1.0.0/16");
  EXPECT_EQ(sm->backlog().members(), 1u);
  runClock();
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(marked().empty());
}

TEST_F(RouteIntake, AFecChangeMarksEveryPrefixThatUsesItAndNothingElse) {
  intfUp("Ethernet1", 1);
  intfUp("Ethernet2", 2);
  fecIs(1, {"10.0.0.1@Ethernet1"});
  fecIs(2, {"10.0.0.2@Ethernet2"});
  routeIs("10.1.0.0/16", 1);
  routeIs("10.2.0.0/16", 1);
  routeIs("10.3.0.0/16", 2);
  routeIs("10.4.0.0/16", 1);
  start();
  runClock();
  routeIs("10.4.0.0/16", 2);  // moves to the other FEC
  runClock();

  fecIs(1, {"10.0.0.9@Ethernet2"});
  EXPECT_EQ(marked(), (Prefixes{P("10.1.0.0/16"), P("10.2.0.0/16")}));
  EXPECT_TRUE(scheduled());
  runClock();
  EXPECT_EQ(rows(), (Strings{"10.1.0.0 255.255.0.0 0 10.0.0.9 if2", "10.2.0.0 255.255.0.0 0 10.0.0.9 if2",
                             "10.3.0.0 255.255.0.0 0 10.0.0.2 if2", "10.4.0.0 255.255.0.0 0 10.0.0.2 if2"}));

  fecGone(2);
  EXPECT_EQ(marked(), (Prefixes{P("10.3.0.0/16"), P("10.4.0.0/16")}));
  runClock();
  EXPECT_EQ(rows(), (Strings{"10.1.0.0 255.255.0.0 0 10.0.0.9 if2", "10.2.0.0 255.255.0.0 0 10.0.0.9 if2"}));
}

TEST_F(RouteIntake, AFecThatNoRouteNamesDoesNotArmTheClock) {
  start();
  runClock();
  fecIs(5, {"10.0.0.1@Ethernet1"});
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(idle());
}

TEST_F(RouteIntake, ConstructionFillsTheProtocolMap) {
  protoMap = ProtocolMap();
  start();
  using namespace Routing::Fib;
  EXPECT_EQ(protoMap.protocol(routeTypeStaticConfig), ipRouteProtocolNetmgmt);
  EXPECT_EQ(protoMap.protocol(routeTypeRip), ipRouteProtocolRip);
  EXPECT_EQ(protoMap.protocol(routeTypeConnected), ipRouteProtocolLocal);
  for (RouteType ospf : {routeTypeOspfIntraArea, routeTypeOspfInterArea, routeTypeOspfExternalType1,
                         routeTypeOspfExternalType2, routeTypeOspfNssaType1, routeTypeOspfNssaType2})
    EXPECT_EQ(protoMap.protocol(ospf), ipRouteProtocolOspf) << ospf;
  EXPECT_EQ(protoMap.protocol(routeTypeIbgp), ipRouteProtocolBgp);
  EXPECT_EQ(protoMap.protocol(routeTypeEbgp), ipRouteProtocolBgp);
  for (RouteType other : {routeTypeKernel, routeTypeAggregate, routeTypeIsisLevel1, routeTypeIsisLevel2,
                          routeTypeVrfLeak, static_cast<RouteType>(20)})
    EXPECT_EQ(protoMap.protocol(other), ipRouteProtocolOther) << other;
  EXPECT_EQ(protoMap.protocols(), 11u);
}

// ---- Rebuilding a prefix: one row per usable via ---------------------------------------------------

using RouteRebuild = RouteTableFixture;

TEST_F(RouteRebuild, AnEcmpRouteMakesOneRowPerVia) {
  intfUp("Ethernet1", 1);
  intfUp("Ethernet2", 2);
  intfUp("Ethernet3", 3);
  fecIs(1, {"10.0.0.3@Ethernet3", "10.0.0.1@Ethernet1", "10.0.0.2@Ethernet2"});
  routeIs("172.16.0.0/12", 1, Routing::Fib::routeTypeOspfIntraArea, 30, 110);
  start();
  runClock();
  EXPECT_EQ(rows(), (Strings{"172.16.0.0 255.240.0.0 0 10.0.0.1 if1", "172.16.0.0 255.240.0.0 0 10.0.0.2 if2",
                             "172.16.0.0 255.240.0.0 0 10.0.0.3 if3"}));
  for (auto it = ipForwardMib->ipCidrRouteTable().begin(); it; ++it) {
    EXPECT_EQ(it->metric(), Routing::RouteMetric(30));
    EXPECT_EQ(it->preference(), Routing::RoutePreference(110));
    EXPECT_EQ(it->protocol(), Routing::Fib::routeTypeOspfIntraArea);
  }
}

TEST_F(RouteRebuild, ConnectedRoutesOnTwoInterfacesCollideAndTheFirstViaKeepsTheRow) {
  intfUp("Ethernet5", 5);
  intfUp("Ethernet6", 6);
  fecIs(1, {"@Ethernet5", "@Ethernet6"});
  fecIs(2, {"@Ethernet6", "@Ethernet5"});
  routeIs("10.5.0.0/16", 1);
  routeIs("10.6.0.0/16", 2);
  TraceLines trace;
  start();
  runClock();
  EXPECT_EQ(rows(), (Strings{"10.5.0.0 255.255.0.0 0 0.0.0.0 if5", "10.6.0.0 255.255.0.0 0 0.0.0.0 if6"}));
  EXPECT_EQ(trace.countStarting("IpSnmp/8 Route already in ipCidrRouteTable: "), 2);
}

TEST_F(RouteRebuild, TwoEqualViasGiveOneRowWithoutACollision) {
  intfUp("Ethernet5", 5);
  fecIs(1, {"10.0.0.1@Ethernet5", "10.0.0.1@Ethernet5"});
  routeIs("10.5.0.0/16", 1);
  TraceLines trace;
  start();
  runClock();
  EXPECT_EQ(rows(), Strings{"10.5.0.0 255.255.0.0 0 10.0.0.1 if5"});
  EXPECT_EQ(trace.countStarting("IpSnmp/8 Route already in ipCidrRouteTable: "), 0);
}

TEST_F(RouteRebuild, AViaWithoutInterfaceHasIndexZeroAndAnEmptyViaMakesNoRow) {
  fecIs(1, {"10.0.0.1@", "@"});
  routeIs("10.1.0.0/16", 1);
  start();
  runClock();
  EXPECT_EQ(rows(), Strings{"10.1.0.0 255.255.0.0 0 10.0.0.1 if0"});
}

TEST_F(RouteRebuild, MasksFollowThePrefixLengthFromZeroToThirtyTwo) {
  fecIs(1, {"10.0.0.1@"});
  routeIs("0.0.0.0/0", 1);
  routeIs("10.9.9.9/32", 1);
  routeIs("10.128.0.0/9", 1);
  start();
  runClock();
  EXPECT_EQ(rows(), (Strings{"0.0.0.0 0.0.0.0 0 10.0.0.1 if0", "10.9.9.9 255.255.255.255 0 10.0.0.1 if0",
                             "10.128.0.0 255.128.0.0 0 10.0.0.1 if0"}));
}

TEST_F(RouteRebuild, ARebuildDeletesEveryRowOfItsPrefixAndNoOther) {
  fecIs(1, {"10.0.0.1@"});
  routeIs("10.0.0.0/8", 1);
  routeIs("10.0.0.0/16", 1);
  routeIs("10.0.0.0/24", 1);
  start();
  runClock();
  // Rows of the /16 that no via would make: another type of service, another next hop.
  ipForwardMib->ipCidrRouteTableIs(
      IpCidrRouteTableIndex(Pelt::IpAddr(10, 0, 0, 0), Pelt::IpAddr(255, 255, 0, 0), 4, Pelt::IpAddr(10, 0, 0, 77)),
      9, Routing::RouteMetric(), Routing::RoutePreference(), Routing::Fib::routeTypeKernel);
  ipForwardMib->ipCidrRouteTableIs(
      IpCidrRouteTableIndex(Pelt::IpAddr(10, 0, 0, 0), Pelt::IpAddr(255, 255, 0, 0), 0, Pelt::IpAddr(10, 0, 0, 78)),
      9, Routing::RouteMetric(), Routing::RoutePreference(), Routing::Fib::routeTypeKernel);

  routeGone("10.0.0.0/16");
  runClock();
  EXPECT_EQ(rows(), (Strings{"10.0.0.0 255.0.0.0 0 10.0.0.1 if0", "10.0.0.0 255.255.255.0 0 10.0.0.1 if0"}));
}

TEST_F(RouteRebuild, RouteTypesZeroToThreeMakeNoRows) {
  fecIs(1, {"10.0.0.1@"});
  routeIs("10.0.0.0/16", 1, Routing::Fib::routeTypeInvalid);
  routeIs("10.1.0.0/16", 1, Routing::Fib::routeTypeReceive);
  routeIs("10.2.0.0/16", 1, Routing::Fib::routeTypeReceiveBcast);
  routeIs("10.3.0.0/16", 1, Routing::Fib::routeTypeDropped);
  routeIs("10.4.0.0/16", 1, Routing::Fib::routeTypeStaticConfig);
  TraceLines trace;
  start();
  runClock();
  EXPECT_EQ(rows(), Strings{"10.4.0.0 255.255.0.0 0 10.0.0.1 if0"});
  EXPECT_EQ(trace.countStarting("IpSnmp/8 Route is of type "), 4);
  EXPECT_TRUE(marked().empty());
}

TEST_F(RouteRebuild, AFecWithoutViasMakesNoRowsAndNoTrace) {
  fecIs(1, {});
  routeIs("10.1.0.0/16", 1);
  TraceLines trace;
  start();
  runClock();
  EXPECT_TRUE(rows().empty());
  EXPECT_TRUE(marked().empty());
  EXPECT_EQ(trace.countStarting("IpSnmp/6 "), 0);
}

TEST_F(RouteRebuild, ARouteWhoseFecIsMissingComesBackWithTheFec) {
  routeIs("10.1.0.0/16", 4);
  TraceLines trace;
  start();
  runClock();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.count("IpSnmp/6 10.1.0.0/16 has a route but can't find fec 4"), 1);
  EXPECT_TRUE(idle());

  fecIs(4, {"10.0.0.1@"});
  EXPECT_TRUE(scheduled());
  runClock();
  EXPECT_EQ(rows(), Strings{"10.1.0.0 255.255.0.0 0 10.0.0.1 if0"});
}

TEST_F(RouteRebuild, AFecOfMoreThan128ViasLeavesThePassWithItsPrefixStillMarked) {
  Tarn::Fib::Fec fec;
  fec.fecId = Tarn::Fib::FecId(1);
  for (U32 i = 0; i < Tarn::Fib::Fec::maxVias; ++i) fec.viaAdd({Pelt::IpAddr(10, 0, 0, U8(i + 1)), Pelt::IntfId()});
  fec.viaCount = Tarn::Fib::Fec::maxVias + 1;
  fecs->table().put(fec.fecId, fec);
  routeIs("10.1.0.0/16", 1);
  start();
  runClock();
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), Tarn::Fib::Fec::maxVias);
  EXPECT_EQ(marked(), Prefixes{P("10.1.0.0/16")});
  EXPECT_TRUE(idle());
}

// ---- Interfaces: vias that wait for their interface's status ---------------------------------------

using RouteInterfaceWait = RouteTableFixture;

TEST_F(RouteInterfaceWait, APrefixWaitingForAnInterfaceComesBackWhenItsStatusArrives) {
  intfUp("Ethernet2", 2);
  fecIs(1, {"10.0.0.1@Ethernet1", "10.0.0.2@Ethernet2"});
  routeIs("10.1.0.0/16", 1);
  start();
  runClock();
  EXPECT_EQ(rows(), Strings{"10.1.0.0 255.255.0.0 0 10.0.0.2 if2"});
  EXPECT_EQ(waitingFor("Ethernet1"), std::set<std::string>{"10.1.0.0/16"});
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(idle());

  intfUp("Ethernet1", 1);
  EXPECT_EQ(marked(), Prefixes{P("10.1.0.0/16")});
  EXPECT_EQ(waitingFor("Ethernet1"), std::set<std::string>{});  // emptied, and kept
  EXPECT_TRUE(scheduled());
  runClock();
  EXPECT_EQ(rows(), (Strings{"10.1.0.0 255.255.0.0 0 10.0.0.1 if1", "10.1.0.0 255.255.0.0 0 10.0.0.2 if2"}));
}

TEST_F(RouteInterfaceWait, AnInterfaceWithoutStatusEmptiesItsListWithoutMarking) {
  fecIs(1, {"10.0.0.1@Ethernet1"});
  routeIs("10.1.0.0/16", 1);
  start();
  runClock();
  ASSERT_EQ(waitingFor("Ethernet1"), std::set<std::string>{"10.1.0.0/16"});

  sm->handleIntfStatus(Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(waitingFor("Ethernet1"), std::set<std::string>{});
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(idle());
  // By design the prefix is revisited only when something else marks it.
  intfUp("Ethernet1", 1);
  EXPECT_TRUE(marked().empty());
}

TEST_F(RouteInterfaceWait, ANegativeIndexSkipsTheViaAndWaitsForNothing) {
  intfUp("Tunnel1", 3, "tunnel");  // a kind without details provider: index -1
  intfUp("Ethernet1", 0);          // no index yet, which is not negative
  fecIs(1, {"10.0.0.1@Tunnel1", "10.0.0.2@Ethernet1"});
  routeIs("10.1.0.0/16", 1);
  TraceLines trace;
  start();
  runClock();
  EXPECT_EQ(rows(), Strings{"10.1.0.0 255.255.0.0 0 10.0.0.2 if0"});
  EXPECT_EQ(trace.count("IpSnmp/8 Tunnel1 has ifIndex -1, skipping"), 1);
  EXPECT_EQ(waitingFor("Tunnel1"), std::set<std::string>{"absent"});
  intfUp("Tunnel1", 4, "tunnel");
  EXPECT_TRUE(marked().empty());
}

TEST_F(RouteInterfaceWait, AnInterfaceThatNoPrefixWaitsForOnlyTraces) {
  start();
  runClock();
  TraceLines trace;
  intfUp("Ethernet9", 9);
  EXPECT_EQ(trace.count("IpSnmp/8 no prefixes for Ethernet9"), 1);
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(idle());
}

// ---- The pass: time slices, the bookmark and the wrap-around ----------------------------------------

class RouteBacklogPass : public RouteTableFixture {
 protected:
  // The order in which the next pass takes the backlog: from the bookmark's place in the hash
  // order to the end, then from the beginning.
  std::vector<Pelt::IpAddr> passOrder() const {
    std::vector<Pelt::IpAddr> order;
    auto it = sm->backlog().startAtHash(sm->bookmark());
    const Pelt::Prefix* start = it ? &it.key() : nullptr;
    for (; it; ++it) order.push_back(it.key().addr());
    for (auto from = sm->backlog().begin(); from && (!start || !(from.key() == *start)); ++from)
      order.push_back(from.key().addr());
    return order;
  }
  void routesOn(int count) {
    fecIs(1, {"10.0.0.1@"});
    for (int i = 1; i <= count; ++i) routeIs(("10." + std::to_string(i) + ".0.0/16").c_str(), 1);
  }
  Quor::Ptr<RowsAdded> rowsAdded() {
    auto watch = Quor::makePtr<RowsAdded>();
    watch->notifierIs(ipForwardMib);
    return watch;
  }
};

TEST_F(RouteBacklogPass, APassPastItsDeadlineYieldsAfterOnePrefixAndTheNextStartsAtTheBookmark) {
  routesOn(3);
  start();
  const std::vector<Pelt::IpAddr> order = passOrder();
  auto watch = rowsAdded();
  watch->timePerRow = 1.0;  // every row takes far longer than a time slice
  TraceLines trace;

  runClock();
  EXPECT_EQ(watch->dests, std::vector<Pelt::IpAddr>{order[0]});
  EXPECT_EQ(sm->bookmark().addr(), order[1]);
  EXPECT_EQ(sm->backlog().members(), 2u);
  EXPECT_TRUE(scheduled());
  EXPECT_EQ(trace.count("IpSnmp/2 Backlog processing yielding"), 1);

  runClock();
  EXPECT_EQ(watch->dests, (std::vector<Pelt::IpAddr>{order[0], order[1]}));
  EXPECT_EQ(sm->bookmark().addr(), order[2]);
  runClock();
  EXPECT_EQ(watch->dests, order);
  EXPECT_TRUE(idle());
  EXPECT_EQ(trace.count("IpSnmp/2 Backlog processing done"), 1);
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), 3u);
}

TEST_F(RouteBacklogPass, APassWithinItsSliceTakesTheMembersAheadOfTheBookmarkAfterTheEnd) {
  routesOn(6);
  start();
  std::vector<Pelt::IpAddr> hashOrder;
  for (auto it = sm->backlog().begin(); it; ++it) hashOrder.push_back(it.key().addr());
  auto middle = sm->backlog().begin();
  ++middle;
  ++middle;
  sm->bookmarkIs(middle.key());
  auto watch = rowsAdded();
  TraceLines trace;

  runClock();
  std::vector<Pelt::IpAddr> expected(hashOrder.begin() + 2, hashOrder.end());
  expected.insert(expected.end(), hashOrder.begin(), hashOrder.begin() + 2);
  EXPECT_EQ(watch->dests, expected);
  EXPECT_EQ(trace.count("IpSnmp/2 Starting backlog processing"), 1);
  EXPECT_EQ(trace.count("IpSnmp/2 Backlog processing done"), 1);
  EXPECT_TRUE(idle());
  EXPECT_EQ(sm->bookmark(), middle.key());  // a pass that finishes leaves the bookmark alone
}

// ---- Damaged tables: reported, and read as absent -------------------------------------------------

using RouteReadFailure = RouteTableFixture;

TEST_F(RouteReadFailure, ADamagedRouteIsReportedAndItsRowsGo) {
  fecIs(1, {"10.0.0.1@"});
  routeIs("10.1.0.0/16", 1);
  routeIs("10.2.0.0/16", 1);
  start();
  runClock();
  ASSERT_EQ(ipForwardMib->ipCidrRouteTables(), 2u);

  routeIs("10.1.0.0/16", 1, Routing::Fib::routeTypeConnected, 5);
  routes->damageAfter(0);
  TraceLines trace;
  runClock();
  EXPECT_EQ(rows(), Strings{"10.2.0.0 255.255.0.0 0 10.0.0.1 if0"});
  EXPECT_EQ(trace.countStarting("Tarn/1 TarnMap::corruptionDetected() routing/vrf/status/default/route "), 1);
  EXPECT_EQ(trace.count("IpSnmp/6 10.1.0.0/16 has no route"), 1);
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(idle());
}

TEST_F(RouteReadFailure, ADamagedFecIsReportedAndItsRoutesLoseTheirRows) {
  fecIs(1, {"10.0.0.1@"});
  routeIs("10.1.0.0/16", 1);
  routeIs("10.2.0.0/16", 1);
  start();
  runClock();
  ASSERT_EQ(ipForwardMib->ipCidrRouteTables(), 2u);

  fecIs(1, {"10.0.0.2@"});
  fecs->damageAfter(0);
  TraceLines trace;
  runClock();
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(trace.countStarting("Tarn/1 TarnMap::corruptionDetected() forwarding/vrf/status/default/fec "), 1);
  EXPECT_EQ(trace.countStarting("IpSnmp/6 10.1.0.0/16 has a route but can't find fec 1"), 1);
  EXPECT_TRUE(marked().empty());
}

// ---- Lifecycle ----------------------------------------------------------------------------------------

using RouteMachineLifecycle = RouteTableFixture;

TEST_F(RouteMachineLifecycle, TeardownLeavesTheRowsAndHearsNothingMore) {
  fecIs(1, {"10.0.0.1@"});
  routeIs("10.1.0.0/16", 1);
  start();
  runClock();
  routeIs("10.2.0.0/16", 1);
  ASSERT_TRUE(scheduled());

  sm = nullptr;
  EXPECT_EQ(clock->nextDeadline(), Quor::never);
  EXPECT_FALSE(routes->hasNotifiees());
  EXPECT_FALSE(fecs->hasNotifiees());
  EXPECT_FALSE(intfStatusDir->hasNotifiees());
  routeIs("10.3.0.0/16", 1);
  runClock();
  EXPECT_EQ(rows(), Strings{"10.1.0.0 255.255.0.0 0 10.0.0.1 if0"});
}

TEST_F(RouteMachineLifecycle, AClockBoundAfterConstructionRunsAPassAtOnce) {
  fecIs(1, {"10.0.0.1@"});
  routeIs("10.1.0.0/16", 1);
  start();
  EXPECT_TRUE(rows().empty());
  sm->quorClock()->notifierIs(Quor::makePtr<Quor::Clock>(Quor::Name("another clock")));
  EXPECT_EQ(rows(), Strings{"10.1.0.0 255.255.0.0 0 10.0.0.1 if0"});
  EXPECT_TRUE(idle());
}

}  // namespace
}  // namespace IpSnmp
