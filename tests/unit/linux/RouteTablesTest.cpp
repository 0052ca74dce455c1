// The writers of the tables: a writer that takes over its predecessor's files, growth past the first
// size, and stable VRF ids. (FECs shared by next hops and let go with their last route are
// LinuxTables', against the kernel.)
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "sources/linux/RouteTables.h"
#include "sources/linux/SharedTables.h"
#include "tests/unit/linux/KernelFixture.h"

namespace {

namespace fs = std::filesystem;
using Sources::Linux::RouteTables;
using Sources::Linux::WantedRoute;

WantedRoute via(std::initializer_list<const char*> hops) {
  WantedRoute w;
  w.route.routeType = Routing::Fib::routeTypeStaticConfig;
  for (const char* hop : hops) w.vias.push_back(Tarn::Fib::Via{Pelt::IpAddr(hop), Pelt::IntfId("eth1")});
  return w;
}

class TableWriters : public testing::Test {
 protected:
  void SetUp() override {
    root = fs::temp_directory_path() / ("route-tables-" + std::to_string(::getpid()) + "-" +
                                        testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root);
  }
  void TearDown() override { fs::remove_all(root); }
  auto routes() const { return LinuxTest::readRoutes(root, "red"); }
  auto fecs() const { return LinuxTest::readFecs(root, "red"); }

  fs::path root;
  const L3::VrfName red{"red"};
};

TEST_F(TableWriters, WriterStartedAgainTakesThePredecessorsTablesOver) {
  U64 oldFec = 0;
  {
    RouteTables first(root, red);
    first.routeIs(Pelt::Prefix("10.1.0.0/16"), via({"10.0.0.1"}));
    first.routeIs(Pelt::Prefix("10.2.0.0/16"), via({"10.0.0.2"}));
    first.commit();
    oldFec = routes().at(Pelt::Prefix("10.2.0.0/16")).fecId.value();
  }
  RouteTables second(root, red);
  auto prefixes = second.prefixes();
  EXPECT_EQ(prefixes.size(), 2u) << "the routes in the file are known";
  // What a synchronisation does: every prefix rewritten or erased, then the old FECs swept.
  second.routeIs(Pelt::Prefix("10.1.0.0/16"), via({"10.0.0.1"}));
  second.routeIs(Pelt::Prefix("10.2.0.0/16"), std::nullopt);
  second.commit();
  EXPECT_EQ(fecs().size(), 3u) << "the predecessor's FECs stay until the sweep";
  second.sweepStaleFecs();
  second.commit();
  ASSERT_EQ(routes().size(), 1u);
  ASSERT_EQ(fecs().size(), 1u);
  EXPECT_GT(routes().begin()->second.fecId.value(), oldFec) << "ids are not reused across writers";
}

TEST_F(TableWriters, RouteTableGrowsPastItsFirstSize) {
  RouteTables tables(root, red);
  const U32 count = RouteTables::leastRoutes + 100;
  for (U32 i = 0; i < count; ++i)
    tables.routeIs(Pelt::Prefix(Pelt::IpAddr::fromHostOrder(0x0a000000u + (i << 8)), 24), via({"10.0.0.1"}));
  tables.commit();
  EXPECT_EQ(routes().size(), count);
}

TEST_F(TableWriters, VrfIdsAreStableAcrossWriters) {
  using Sources::Linux::VrfIdTableWriter;
  U32 blue = 0;
  {
    VrfIdTableWriter ids(root);
    EXPECT_EQ(ids.idOf(L3::VrfName("default")).value(), 0u);
    ids.presentIs(L3::VrfName("red"), true);
    ids.presentIs(L3::VrfName("blue"), true);
    blue = ids.idOf(L3::VrfName("blue")).value();
    ids.presentIs(L3::VrfName("red"), false);
    ids.presentIs(L3::VrfName("red"), true);
    ids.commit();
  }
  auto written = LinuxTest::readVrfIds(root);
  EXPECT_EQ(written.size(), 2u);
  EXPECT_NE(written.at("red"), written.at("blue"));
  VrfIdTableWriter again(root);
  EXPECT_EQ(again.idOf(L3::VrfName("blue")).value(), blue);
  EXPECT_GT(again.idOf(L3::VrfName("green")).value(), std::max(written.at("red"), written.at("blue")));
}

}  // namespace
