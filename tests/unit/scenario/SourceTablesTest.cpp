// The tables of a loaded scenario are written by a child process: the load returns at once, even
// while another writer holds a table, the loop hears when the write has ended, a load during a write
// is written after it, and a failed write is reported and written again by the next load. (A writer
// killed mid-write and a refused file are the integration tests', through snmpd.)
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "TableFiles.h"
#include "platform/quor/Clock.h"
#include "sources/scenario/ScenarioSource.h"

namespace {

using namespace ScenarioTest;

class SourceTables : public ::testing::Test {
 protected:
  void write(const std::string& yaml) { std::ofstream(path) << yaml; }
  bool settle(const Sources::ScenarioSource& source) {
    return TestSupport::turnUntil([&] { return !source.tablesPending(); }, 20);
  }

  TestSupport::TempDir dir;
  TestSupport::TempDir tables;
  std::string path = dir / "scenario.yaml";
  std::string root = tables.path();
  Morvane::Store store = Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("sys")));
};

const char* redAndRoutes =
    "routing: { ipv4: true }\n"
    "vrfIds: { red: 1 }\n"
    "fib: { default: { fecs: { 1: [10.0.0.2@Ethernet1] }, routes: { 10.1.0.0/16: { fec: 1 } } } }\n";

TEST_F(SourceTables, TheLoadReturnsAtOnceAndALoadDuringAWriteIsWrittenAfterIt) {
  write(redAndRoutes);
  Sources::ScenarioSource source(store, path, root);
  auto other = std::make_unique<VrfIdTableHolder>(root);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(source.load(), "");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500))
      << "the agent's thread does not wait for a table held by another writer";
  EXPECT_TRUE(store.routingConfig->routing()) << "the store is applied within the load";
  for (int i = 0; i < 4; ++i) Quor::activityManager()->runOnce(0.05);
  EXPECT_TRUE(source.tablesPending()) << "the writer waits for the other one";
  write("vrfIds: { blue: 2 }\nfib: { default: { routes: { 10.9.0.0/16: { fec: 1 } } } }\n");
  ASSERT_EQ(source.load(), "");
  other.reset();
  ASSERT_TRUE(settle(source));
  EXPECT_EQ(source.lastError(), "");
  EXPECT_EQ(vrfIdsIn(root), (std::map<U32, std::string>{{2, "blue"}}));
  auto routes = routesIn(root, "default");
  ASSERT_EQ(routes.size(), 1u);
  EXPECT_EQ(routes.begin()->first, Pelt::Prefix("10.9.0.0/16"));
}

TEST_F(SourceTables, AFailedWriteIsReportedAndTheNextLoadWritesAgain) {
  const std::string blocked = root + "/blocked";
  std::ofstream(blocked) << "a file where the tables' directory should be";
  write(redAndRoutes);
  Sources::ScenarioSource source(store, path, blocked);
  ASSERT_EQ(source.load(), "") << "the file itself is fine";
  ASSERT_TRUE(settle(source));
  EXPECT_EQ(source.lastError().rfind(path + ": the tables were not written: ", 0), 0u) << source.lastError();
  EXPECT_TRUE(store.routingConfig->routing()) << "the store follows the file all the same";
  std::filesystem::remove(blocked);
  ASSERT_EQ(source.load(), "");
  ASSERT_TRUE(settle(source));
  EXPECT_EQ(source.lastError(), "");
  EXPECT_EQ(vrfIdsIn(blocked).size(), 1u);
}

}  // namespace
