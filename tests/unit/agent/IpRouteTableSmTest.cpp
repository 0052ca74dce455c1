// The route machine, driven through its route and forwarding tables, the interface directory and the
// clock: marks, FEC walks and the scan come in, and only the passes of the clock turn them into rows
// of ipCidrRouteTable.
#include <random>

#include "tests/unit/agent/RouteTableFixture.h"

namespace IpSnmp {
namespace {

using Strings = std::vector<std::string>;
using Prefixes = std::set<Pelt::Prefix>;

Pelt::Prefix P(const char* text) { return Pelt::Prefix(text); }

// ---- Intake: what marks prefixes, and that nothing but the pass writes rows ----------------------

using RouteIntake = RouteTableFixture;

TEST_F(RouteIntake, TheRoutesPresentAtConstructionAreBuiltByThePassesThatFollow) {
  intfUp("Ethernet1", 7);
  fecIs(1, {"@Ethernet1"});
  routeIs("10.1.0.0/16", 1);
  routeIs("10.2.0.0/16", 1);
  // Route types 0 to 3 (invalid, receive, broadcast receive, dropped) make no rows.
  using namespace Routing::Fib;
  for (RouteType type : {routeTypeInvalid, routeTypeReceive, routeTypeReceiveBcast, routeTypeDropped})
    routeIs(("10.9." + std::to_string(type) + ".0/24").c_str(), 1, type);
  start();
  EXPECT_TRUE(sm->scanning());
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(scheduled());
  EXPECT_TRUE(rows().empty());

  settle();
  EXPECT_EQ(rows(), (Strings{"10.1.0.0 255.255.0.0 0 0.0.0.0 if7", "10.2.0.0 255.255.0.0 0 0.0.0.0 if7"}));
  EXPECT_FALSE(sm->scanning());
  EXPECT_EQ(sm->fecRouteList()->routes(), 6u);
}

// ---- Rebuilding a prefix: one row per usable via ---------------------------------------------------

using RouteRebuild = RouteTableFixture;

// Each case: the vias of one FEC under 10.5.0.0/16 with interfaces Ethernet5 (index 5) and Ethernet6
// (index 6), and the rows they make.
struct ViaCase {
  const char* name;
  std::vector<const char*> vias;
  Strings rows;
};

class ViaRows : public RouteTableFixture, public ::testing::WithParamInterface<ViaCase> {};

TEST_P(ViaRows, TheViasOfTheFecMakeTheseRows) {
  intfUp("Ethernet5", 5);
  intfUp("Ethernet6", 6);
  fecIs(1, GetParam().vias);
  routeIs("10.5.0.0/16", 1);
  start();
  settle();
  EXPECT_EQ(rows(), GetParam().rows);
}

INSTANTIATE_TEST_SUITE_P(
    RouteRebuild, ViaRows,
    ::testing::Values(
        // Connected on two interfaces: the key collides and the first via in FEC order keeps the row.
        ViaCase{"ConnectedOnTwoInterfaces", {"@Ethernet6", "@Ethernet5"}, {"10.5.0.0 255.255.0.0 0 0.0.0.0 if6"}},
        ViaCase{"TwoEqualVias", {"10.0.0.1@Ethernet5", "10.0.0.1@Ethernet5"}, {"10.5.0.0 255.255.0.0 0 10.0.0.1 if5"}},
        ViaCase{"NoInterfaceAndAnEmptyVia", {"10.0.0.1@", "@"}, {"10.5.0.0 255.255.0.0 0 10.0.0.1 if0"}},
        ViaCase{"NoVias", {}, {}}),
    [](const ::testing::TestParamInfo<ViaCase>& param) { return std::string(param.param.name); });

TEST_F(RouteRebuild, AFecOfMoreThan128ViasLeavesThePassWithItsPrefixStillMarked) {
  Tarn::Fib::Fec fec;
  fec.fecId = Tarn::Fib::FecId(1);
  for (U32 i = 0; i < Tarn::Fib::Fec::maxVias; ++i) fec.viaAdd({Pelt::IpAddr(10, 0, 0, U8(i + 1)), Pelt::IntfId()});
  fec.viaCount = Tarn::Fib::Fec::maxVias + 1;
  fecs->table().put(fec.fecId, fec);
  start();
  settle();
  routeIs("10.1.0.0/16", 1);
  runClock();
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), Tarn::Fib::Fec::maxVias);
  EXPECT_EQ(marked(), Prefixes{P("10.1.0.0/16")});
  EXPECT_TRUE(idle());
}

// ---- Interfaces: vias that wait for their interface's status ---------------------------------------

using RouteInterfaceWait = RouteTableFixture;

// A via waits for an interface without a status; one whose interface has a negative index (a kind
// without details provider) is skipped and waits for nothing; an index of 0 (none yet) is not negative.
TEST_F(RouteInterfaceWait, AWaitingPrefixIsMarkedWhenItsInterfaceArrivesAndNotWithoutAStatus) {
  intfUp("Ethernet2", 2);
  intfUp("Tunnel1", 4, "tunnel");
  fecIs(1, {"10.0.0.1@Ethernet1", "10.0.0.2@Ethernet2", "10.0.0.3@Ethernet3", "10.0.0.4@Tunnel1"});
  routeIs("10.1.0.0/16", 1);
  start();
  settle();
  EXPECT_EQ(rows(), Strings{"10.1.0.0 255.255.0.0 0 10.0.0.2 if2"});
  EXPECT_EQ(waitingFor("Ethernet1"), std::set<std::string>{"10.1.0.0/16"});
  EXPECT_EQ(waitingFor("Tunnel1"), std::set<std::string>{"absent"});

  intfUp("Ethernet1", 0);
  EXPECT_EQ(marked(), Prefixes{P("10.1.0.0/16")});
  EXPECT_EQ(waitingFor("Ethernet1"), std::set<std::string>{});  // emptied, and kept
  runClock();
  EXPECT_EQ(rows(), (Strings{"10.1.0.0 255.255.0.0 0 10.0.0.1 if0", "10.1.0.0 255.255.0.0 0 10.0.0.2 if2"}));

  // Told of Ethernet3 while it has no status: its list empties without marking, and by design the
  // prefix is revisited only when something else marks it.
  ASSERT_EQ(waitingFor("Ethernet3"), std::set<std::string>{"10.1.0.0/16"});
  sm->handleIntfStatus(Pelt::IntfId("Ethernet3"));
  EXPECT_EQ(waitingFor("Ethernet3"), std::set<std::string>{});
  EXPECT_TRUE(marked().empty());
  EXPECT_TRUE(idle());
  intfUp("Ethernet3", 3);
  intfUp("Tunnel1", 5, "tunnel");
  EXPECT_TRUE(marked().empty());
}

// ---- The pass: time slices, the bookmark, the wrap-around, and the order of the work -------------

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
  // A settled machine with `count` routes marked since.
  void marksOf(int count) {
    fecIs(1, {"10.0.0.1@"});
    start();
    settle();
    for (int i = 1; i <= count; ++i) routeIs(("10." + std::to_string(i) + ".0.0/16").c_str(), 1);
  }
  Quor::Ptr<RowsAdded> rowsAdded() {
    auto watch = Quor::makePtr<RowsAdded>();
    watch->notifierIs(ipForwardMib);
    return watch;
  }
};

TEST_F(RouteBacklogPass, APassPastItsDeadlineYieldsAfterOnePrefixAndTheNextStartsAtTheBookmark) {
  marksOf(3);
  const std::vector<Pelt::IpAddr> order = passOrder();
  auto watch = rowsAdded();
  watch->timePerRow = 1.0;  // every row takes far longer than a time slice

  runClock();
  EXPECT_EQ(watch->dests, std::vector<Pelt::IpAddr>{order[0]});
  EXPECT_EQ(sm->bookmark().addr(), order[1]);
  EXPECT_EQ(sm->backlog().members(), 2u);
  EXPECT_TRUE(scheduled());

  runClock();
  EXPECT_EQ(watch->dests, (std::vector<Pelt::IpAddr>{order[0], order[1]}));
  EXPECT_EQ(sm->bookmark().addr(), order[2]);
  runClock();
  EXPECT_EQ(watch->dests, order);
  EXPECT_TRUE(idle());
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), 3u);
}

// Marks first, then the FEC walks, then the scan; the scan waits for the FEC-to-routes list.
TEST_F(RouteBacklogPass, MarksComeBeforeFecWalksWhichComeBeforeTheScan) {
  fecIs(1, {"10.0.0.1@"});
  fecIs(2, {"10.0.0.2@"});
  routeIs("10.1.0.0/16", 1);
  routeIs("10.2.0.0/16", 2);
  start();
  auto watch = rowsAdded();
  runClock();  // the list fills, the scan waits for it
  EXPECT_TRUE(watch->dests.empty());
  fecIs(2, {"10.0.0.3@"});
  routeIs("10.3.0.0/16", 1);
  settle();
  // The mark, the walk of FEC 2, then the scan of the whole table in its order.
  EXPECT_EQ(watch->dests, (std::vector<Pelt::IpAddr>{Pelt::IpAddr(10, 3, 0, 0), Pelt::IpAddr(10, 2, 0, 0),
                                                     Pelt::IpAddr(10, 1, 0, 0), Pelt::IpAddr(10, 2, 0, 0),
                                                     Pelt::IpAddr(10, 3, 0, 0)}));
}

// ---- Sliced work against a machine made afresh --------------------------------------------------

// Random tables, changed at random while the scan, the FEC walks, the backlog and the filling of the
// FEC-to-routes list are spread over passes of a few steps each: once the passes end, the rows are those that a machine made afresh
// on the final tables builds, over seeds that cover many interleavings. Interfaces only arrive here,
// so that no deliberate lag of the design (an index that changes, a status that goes) is in the way.
class RouteSlicing : public RouteTableFixture, public ::testing::WithParamInterface<unsigned> {
 protected:
  std::string prefixOf(unsigned i) const {
    return "10." + std::to_string(i % 7) + "." + std::to_string(i / 7 % 256) + ".0/" + std::to_string(16 + i % 9);
  }
  void randomFec(std::mt19937& random, U64 id) {
    static const char* vias[] = {"10.0.0.1@Ethernet1", "10.0.0.2@Ethernet2", "@Ethernet3", "10.0.0.1@Ethernet4",
                                 "10.0.0.5@",          "@",                  "@Ethernet1", "10.0.0.6@Ethernet5"};
    std::vector<const char*> chosen;
    for (unsigned n = random() % 4; n > 0; --n) chosen.push_back(vias[random() % std::size(vias)]);
    fecIs(id, chosen);
  }
  void randomChange(std::mt19937& random) {
    switch (random() % 8) {
      case 0:
        fecGone(random() % 12 + 1);
        break;
      case 1:
      case 2:
        randomFec(random, random() % 12 + 1);
        break;
      case 3:
        routeGone(prefixOf(random() % 300).c_str());
        break;
      case 4: {
        static const char* late[] = {"Ethernet4", "Ethernet5"};
        const char* name = late[random() % 2];
        if (!intfStatusDir->intfStatus(Pelt::IntfId(name))) intfUp(name, name[8] - '0');
        break;
      }
      default:
        routeIs(prefixOf(random() % 300).c_str(), random() % 12 + 1,
                random() % 5 ? Routing::Fib::routeTypeOspfIntraArea : Routing::Fib::routeTypeDropped, random() % 3);
    }
  }
};

TEST_P(RouteSlicing, RowsAfterSlicedPassesAreThoseOfAMachineMadeAfresh) {
  std::mt19937 random(GetParam());
  for (const char* name : {"Ethernet1", "Ethernet2", "Ethernet3"}) intfUp(name, name[8] - '0');
  for (U64 id = 1; id <= 12; ++id) randomFec(random, id);
  for (int i = 0; i < 200; ++i) routeIs(prefixOf(random() % 300).c_str(), random() % 12 + 1);
  // Every look at the time moves it on, so that the passes of the machine and of its FEC-to-routes
  // list take a few steps each and interleave with the changes.
  Quor::nowSourceIs([] { return fakeNow += 0.0007; });
  const double budget = std::exchange(Quor::Clock::turnBudget, 1.0);  // both passes run in every turn
  start();
  for (int step = 0; step < 120; ++step) {  // the changes end while the first passes still run
    if (random() % 2 == 0) runClock();
    randomChange(random);
  }
  settle();
  Quor::Clock::turnBudget = budget;
  const Strings sliced = rows();

  ipForwardMib = Quor::makePtr<IpForwardMib>(Quor::Name("afresh"));
  start();
  settle();
  EXPECT_EQ(sliced, rows());
  EXPECT_FALSE(sliced.empty());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RouteSlicing, ::testing::Range(1u, 41u));

// ---- Damaged tables: reported, and read as absent -------------------------------------------------

using RouteReadFailure = RouteTableFixture;

// A damaged route drops its own rows; a damaged FEC table drops the rows of every route on it. Either
// table is reported and let go.
TEST_F(RouteReadFailure, ADamagedRouteOrFecIsReportedAndItsRowsGo) {
  for (const bool fecDamaged : {false, true}) {
    SCOPED_TRACE(fecDamaged ? "FEC" : "route");
    ipForwardMib = Quor::makePtr<IpForwardMib>(Quor::Name("ipforwardmib"));
    routes = Quor::makePtr<RouteTable>(Quor::Name("routing/vrf/status/default"));
    fecs = Quor::makePtr<ForwardingTable>(Quor::Name("forwarding/vrf/status/default"));
    fecIs(1, {"10.0.0.1@"});
    routeIs("10.1.0.0/16", 1);
    routeIs("10.2.0.0/16", 1);
    start();
    settle();
    ASSERT_EQ(ipForwardMib->ipCidrRouteTables(), 2u);

    if (fecDamaged) {
      fecIs(1, {"10.0.0.2@"});
      fecs->damageAfter(0);
    } else {
      routeIs("10.1.0.0/16", 1, Routing::Fib::routeTypeConnected, 5);
      routes->damageAfter(0);
    }
    settle();
    EXPECT_EQ(rows(), fecDamaged ? Strings{} : Strings{"10.2.0.0 255.255.0.0 0 10.0.0.1 if0"});
    EXPECT_NE(fecDamaged ? fecs->fec().mountStatus() : routes->route().mountStatus(), Tarn::MountStatus::mapped);
    EXPECT_TRUE(marked().empty());
  }
}

TEST_F(RouteReadFailure, ADamagedTableEndsTheScanWithWhatItBuilt) {
  fecIs(1, {"10.0.0.1@"});
  for (int i = 1; i <= 5; ++i) routeIs(("10." + std::to_string(i) + ".0.0/16").c_str(), 1);
  start();
  runClock();  // the list fills
  routes->damageAfter(2);  // the reads of two prefixes
  settle();
  EXPECT_EQ(rows().size(), 2u);
  EXPECT_FALSE(sm->scanning());
}

// ---- Lifecycle ----------------------------------------------------------------------------------------

using RouteMachineLifecycle = RouteTableFixture;

TEST_F(RouteMachineLifecycle, TeardownLeavesTheRowsAndHearsNothingMore) {
  fecIs(1, {"10.0.0.1@"});
  routeIs("10.1.0.0/16", 1);
  start();
  settle();
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

}  // namespace
}  // namespace IpSnmp
