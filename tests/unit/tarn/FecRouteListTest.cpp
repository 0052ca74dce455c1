// The FEC-to-routes list: a route that moves between FECs leaves its old list, deletions leave every
// list, and whoever reacts to a FEC change finds the route changes made before it listed, also when
// the two tables are files that notify separately.
#include <algorithm>
#include <filesystem>

#include "platform/tarn/FecRouteListSm.h"
#include "platform/tarn/FecWriter.h"
#include "platform/tarn/RecordWriter.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using Tarn::Fib::FecId;
using Tarn::Fib::Route;

Route route(const char* prefix, U64 fec) {
  Route r;
  r.prefix = Pelt::Prefix(prefix);
  r.routeType = Routing::Fib::routeTypeConnected;
  r.fecId = FecId(fec);
  return r;
}

Tarn::Fib::Fec fec(U64 id, U8 hop) {
  Tarn::Fib::Fec f;
  f.fecId = FecId(id);
  f.viaAdd({Pelt::IpAddr(10, 0, 0, hop), Pelt::IntfId("Ethernet1")});
  return f;
}

// Stands for the route machine's handleFec: notes, at each onFec, whether a prefix is listed there.
class FecReader : public Tarn::Fib::ForwardingStatus::NotifieeConst {
 public:
  FecReader(Quor::Ptr<Tarn::Fib::FecRouteList> list, Pelt::Prefix watched) : list_(std::move(list)), watched_(watched) {}
  void onFec(const FecId& id) override { listedAtOnFec[id.value()] = list_->fecOf(watched_) == id; }
  std::map<U64, bool> listedAtOnFec;

 private:
  Quor::Ptr<Tarn::Fib::FecRouteList> list_;
  Pelt::Prefix watched_;
};

class FecRouteLists : public TarnTest::TableDir {
 protected:
  void mountAll(Tarn::TableType type) {
    routes_->mount(dir_.string(), type);
    fecs_->mount(dir_.string(), type);
  }
  // The machine, its first pass run to its end.
  void makeSm() {
    sm_ = Quor::makePtr<FibUtils::FecRouteListSm>(routes_, fecs_, list_);
    while (!sm_->filled()) Quor::activityManager()->clock()->runDue();
  }
  std::set<Pelt::Prefix> listed(U64 id) const {
    std::set<Pelt::Prefix> out;
    list_->forEachRouteOf(FecId(id), [&](const Pelt::Prefix& prefix) { out.insert(prefix); });
    EXPECT_EQ(out.size(), list_->routeCount(FecId(id)));
    return out;
  }
  void put(const Route& r) { Tarn::inProcessTable(routes_->route()).put(r.prefix, r); }

  Quor::Ptr<Tarn::Fib::RouteStatus> routes_ = Quor::makePtr<Tarn::Fib::RouteStatus>(Quor::Name("routing/status"));
  Quor::Ptr<Tarn::Fib::ForwardingStatus> fecs_ =
      Quor::makePtr<Tarn::Fib::ForwardingStatus>(Quor::Name("forwarding/status"));
  Quor::Ptr<Tarn::Fib::FecRouteList> list_ = Quor::makePtr<Tarn::Fib::FecRouteList>();
  Quor::Ptr<FibUtils::FecRouteListSm> sm_;
};

TEST_F(FecRouteLists, TheFirstPassListsEveryRouteUnderItsFec) {
  mountAll(Tarn::TableType::inProcess);
  put(route("10.0.0.0/8", 1));
  put(route("10.1.0.0/16", 1));
  put(route("10.2.0.0/16", 2));
  makeSm();
  EXPECT_EQ(listed(1), (std::set<Pelt::Prefix>{Pelt::Prefix("10.0.0.0/8"), Pelt::Prefix("10.1.0.0/16")}));
  EXPECT_EQ(listed(2), std::set<Pelt::Prefix>{Pelt::Prefix("10.2.0.0/16")});
  EXPECT_EQ(list_->members(), 2u);
}

TEST_F(FecRouteLists, ARouteThatMovesToAnotherFecLeavesTheOldList) {
  mountAll(Tarn::TableType::inProcess);
  put(route("10.0.0.0/8", 1));
  put(route("10.1.0.0/16", 1));
  makeSm();
  put(route("10.0.0.0/8", 2));
  EXPECT_EQ(listed(1), std::set<Pelt::Prefix>{Pelt::Prefix("10.1.0.0/16")});
  EXPECT_EQ(listed(2), std::set<Pelt::Prefix>{Pelt::Prefix("10.0.0.0/8")});
  put(route("10.1.0.0/16", 2));
  EXPECT_EQ(list_->routeCount(FecId(1)), 0u);
  EXPECT_EQ(list_->members(), 1u);  // an emptied FEC has no member
}

TEST_F(FecRouteLists, ADeletedRouteLeavesEveryListAndAnUnmountEmptiesThem) {
  mountAll(Tarn::TableType::inProcess);
  put(route("10.0.0.0/8", 1));
  put(route("10.1.0.0/16", 2));
  makeSm();
  Tarn::inProcessTable(routes_->route()).erase(Pelt::Prefix("10.0.0.0/8"));
  EXPECT_EQ(list_->routeCount(FecId(1)), 0u);
  EXPECT_FALSE(list_->fecOf(Pelt::Prefix("10.0.0.0/8")));
  routes_->unmount();
  EXPECT_EQ(list_->members(), 0u);
}

// A walk of one FEC while routes come and go: the prefixes listed throughout are visited once each,
// those that leave before it reaches them and those that join meanwhile are not.
TEST_F(FecRouteLists, AWalkVisitsEveryPrefixListedThroughoutItOnce) {
  auto prefix = [](U32 i) { return Pelt::Prefix(Pelt::IpAddr::fromHostOrder(0x0b000000u + (i << 8)), 24); };
  for (U32 i = 0; i < 100; ++i) list_->routeIs(prefix(i), FecId(1));
  ASSERT_TRUE(list_->walkFrom(FecId(1)));
  std::vector<Pelt::Prefix> visited;
  std::set<Pelt::Prefix> expected, left;
  for (U32 i = 0; i < 100; ++i) expected.insert(prefix(i));
  for (U32 step = 0; auto next = list_->walkNext(FecId(1)); ++step) {
    visited.push_back(*next);
    const Pelt::Prefix leaving = prefix((step * 7 + 3) % 100);
    if (std::find(visited.begin(), visited.end(), leaving) == visited.end() && left.insert(leaving).second) {
      expected.erase(leaving);
      if (step % 2) list_->routeDel(leaving); else list_->routeIs(leaving, FecId(2));
    }
    list_->routeIs(prefix(1000 + step), FecId(1));  // joins behind the walk
  }
  EXPECT_EQ(std::set<Pelt::Prefix>(visited.begin(), visited.end()), expected);
  EXPECT_EQ(visited.size(), expected.size());
  EXPECT_FALSE(left.empty());
}

TEST_F(FecRouteLists, AFecReactorMadeBeforeTheListMachineFindsInProcessRouteChangesListed) {
  mountAll(Tarn::TableType::inProcess);
  put(route("10.0.0.0/8", 1));
  auto reader = Quor::makePtr<FecReader>(list_, Pelt::Prefix("10.0.0.0/8"));
  reader->notifierIs(fecs_);  // as the route machine's reactor, made before its list machine
  makeSm();
  put(route("10.0.0.0/8", 2));
  Tarn::inProcessTable(fecs_->fec()).put(FecId(2), fec(2, 1));
  Tarn::inProcessTable(fecs_->fec()).put(FecId(1), fec(1, 1));
  EXPECT_EQ(reader->listedAtOnFec, (std::map<U64, bool>{{1, false}, {2, true}}));
}

TEST_F(FecRouteLists, FecNotificationsOfAFileWaitForTheRouteChangesLoggedBeforeThem) {
  Tarn::RecordWriter<Tarn::Fib::RouteCodec> routeWriter((dir_ / "route").string(), 100000);
  Tarn::Fib::FecWriter fecWriter((dir_ / "fec").string());
  routeWriter.put(route("10.0.0.0/8", 1));
  fecWriter.put(fec(1, 1));
  fecWriter.put(fec(2, 1));
  routeWriter.commit();
  fecWriter.commit();
  mountAll(Tarn::TableType::sharedMemory);
  auto reader = Quor::makePtr<FecReader>(list_, Pelt::Prefix("10.0.0.0/8"));
  reader->notifierIs(fecs_);
  makeSm();
  // Many route changes ahead of the one that matters, so that their delivery takes many loop turns,
  // while the FEC change behind them is a single key.
  double quantum = Tarn::TableFollower::deliveryQuantum;
  Tarn::TableFollower::deliveryQuantum = 0.0002;
  for (U32 i = 0; i < 30000; ++i) routeWriter.put(route(("11." + std::to_string(i / 256) + "." + std::to_string(i % 256) + ".0/24").c_str(), 3));
  routeWriter.put(route("10.0.0.0/8", 2));
  routeWriter.commit();
  fecWriter.put(fec(2, 9));
  fecWriter.commit();
  bool heard = TarnTest::turnUntil([&] { return reader->listedAtOnFec.count(2) > 0; });
  Tarn::TableFollower::deliveryQuantum = quantum;
  ASSERT_TRUE(heard);
  EXPECT_TRUE(reader->listedAtOnFec[2]) << "onFec(2) came before the route that names FEC 2 was listed";
  EXPECT_EQ(list_->fecOf(Pelt::Prefix("10.0.0.0/8"))->value(), 2u);
}

}  // namespace
