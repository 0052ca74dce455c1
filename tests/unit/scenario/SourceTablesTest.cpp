// The tables of a loaded scenario are written by a child process: the load returns at once, the
// loop hears when the write has ended, a refused file or a failed write leaves the tables as they
// were, and a writer cut short leaves every record whole.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "TableFiles.h"
#include "platform/quor/Clock.h"
#include "platform/tarn/TableReader.h"
#include "sources/scenario/ScenarioSource.h"

namespace {

using namespace ScenarioTest;

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class SourceTables : public ::testing::Test {
 protected:
  void write(const std::string& yaml) { std::ofstream(path) << yaml; }
  // Runs the loop until the tables are written, at most `seconds`.
  bool settle(Sources::ScenarioSource& source, double seconds = 20) {
    auto start = std::chrono::steady_clock::now();
    while (source.tablesPending() && secondsSince(start) < seconds) Quor::activityManager()->runOnce(0.05);
    return !source.tablesPending();
  }
  std::unique_ptr<VrfIdTableHolder> holdVrfIds() { return std::make_unique<VrfIdTableHolder>(root); }

  TempDir dir;
  TempDir tables;
  std::string path = dir.path() + "/scenario.yaml";
  std::string root = tables.path();
  Morvane::Store store = Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("sys")));
};

const char* redAndRoutes =
    "routing: { ipv4: true }\n"
    "vrfIds: { red: 1 }\n"
    "fib: { default: { fecs: { 1: [10.0.0.2@Ethernet1] }, routes: { 10.1.0.0/16: { fec: 1 } } } }\n";

TEST_F(SourceTables, TheLoadReturnsAtOnceAndTheLoopHearsWhenTheTablesAreWritten) {
  write(redAndRoutes);
  Sources::ScenarioSource source(store, path, root);
  auto other = holdVrfIds();
  auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(source.load(), "");
  EXPECT_LT(secondsSince(start), 0.5) << "the agent's thread does not wait for a table held by another writer";
  EXPECT_TRUE(store.routingConfig->routing()) << "the store is applied within the load";
  EXPECT_TRUE(source.tablesPending());
  for (int i = 0; i < 4; ++i) Quor::activityManager()->runOnce(0.05);
  EXPECT_TRUE(source.tablesPending()) << "the writer waits for the other one";
  other.reset();
  ASSERT_TRUE(settle(source));
  EXPECT_EQ(source.lastError(), "");
  EXPECT_EQ(vrfIdsIn(root), (std::map<U32, std::string>{{1, "red"}}));
  EXPECT_EQ(routesIn(root, "default").size(), 1u);
}

TEST_F(SourceTables, ARefusedFileLeavesTheTablesAsTheyWere) {
  write(redAndRoutes);
  Sources::ScenarioSource source(store, path, root);
  ASSERT_EQ(source.load(), "");
  ASSERT_TRUE(settle(source));
  write("vrfIds: {}\nfib:\n  default:\n    routes: { 10.1.0.0/16: { fec: one } }\n");
  EXPECT_EQ(source.load().rfind(path + ":4: 'fec' in route 10.1.0.0/16", 0), 0u) << source.lastError();
  EXPECT_FALSE(source.tablesPending()) << "nothing of the file is written, not even its good part";
  EXPECT_EQ(vrfIdsIn(root).size(), 1u);
  EXPECT_EQ(routesIn(root, "default").size(), 1u);
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

TEST_F(SourceTables, ALoadDuringAWriteIsWrittenAfterIt) {
  write(redAndRoutes);
  Sources::ScenarioSource source(store, path, root);
  auto other = holdVrfIds();
  ASSERT_EQ(source.load(), "");
  write("vrfIds: { blue: 2 }\nfib: { default: { routes: { 10.9.0.0/16: { fec: 1 } } } }\n");
  ASSERT_EQ(source.load(), "");
  other.reset();
  ASSERT_TRUE(settle(source));
  EXPECT_EQ(vrfIdsIn(root), (std::map<U32, std::string>{{2, "blue"}}));
  auto routes = routesIn(root, "default");
  ASSERT_EQ(routes.size(), 1u);
  EXPECT_EQ(routes.begin()->first, Pelt::Prefix("10.9.0.0/16"));
}

TEST_F(SourceTables, AWriterCutShortLeavesEveryRecordWhole) {
  write("fib: { default: { routes: { 0.0.0.0/32: { count: 1000000, fec: 1 } } } }\n");
  {
    Sources::ScenarioSource source(store, path, root);
    ASSERT_EQ(source.load(), "");
    for (auto start = std::chrono::steady_clock::now();
         !std::filesystem::exists(routeFile(root, "default")) && secondsSince(start) < 10;)
      Quor::activityManager()->runOnce(0.01);
    Quor::activityManager()->runOnce(0.05);
    // The source goes: its writer is killed wherever it is.
  }
  auto reader = Tarn::TableReader::open(routeFile(root, "default"), Tarn::Fib::RouteCodec::type,
                                        Tarn::Fib::RouteCodec::keySize, sizeof(Tarn::Fib::RouteRecord));
  ASSERT_TRUE(reader);
  Tarn::Fib::RouteRecord record;
  U32 read = 0;
  EXPECT_NO_THROW({
    for (U32 slot = reader->nextOccupied(0, &record); slot < reader->capacity();
         slot = reader->nextOccupied(slot + 1, &record))
      ++read;
  }) << "no record is torn";
  EXPECT_EQ(read, reader->members());
  EXPECT_LT(read, 1000000u) << "the writer was cut short";
}

}  // namespace
