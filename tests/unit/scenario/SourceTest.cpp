// The scenario source: the embedded default, a refused file that leaves the store as it was, and
// live reload of a watched file through the activity manager.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "StoreRecorder.h"
#include "platform/quor/Clock.h"
#include "platform/quor/Trace.h"
#include "sources/scenario/ScenarioSource.h"

namespace {

using ScenarioTest::Lines;

Morvane::Store freshStore() { return Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("sys"))); }

TEST(EmbeddedScenario, LoadsWhenNoPathIsGivenAndCannotBeWatched) {
  Morvane::Store store = freshStore();
  Sources::ScenarioSource source(store, "");
  EXPECT_EQ(source.load(), "");
  EXPECT_TRUE(store.routingConfig->routing());
  EXPECT_TRUE(store.routingVrfConfigDir->vrfConfig("red"));
  EXPECT_TRUE(store.routingVrfInfoDir->entityPtr(Quor::Name("blue")));
  EXPECT_TRUE(store.snmpStatus->initialized());
  EXPECT_NE(source.watch(), "");
}

class ScenarioFile : public ::testing::Test {
 protected:
  ScenarioFile() {
    char pattern[] = "/tmp/scenario-test-XXXXXX";
    dir = ::mkdtemp(pattern);
    path = dir + "/scenario.yaml";
  }
  ~ScenarioFile() override { std::filesystem::remove_all(dir); }

  void write(const std::string& yaml, const std::string& name = "scenario.yaml") {
    std::ofstream(dir + "/" + name) << yaml;
  }
  // Saves as editors do that write a new file and rename it over the old one.
  void saveByRename(const std::string& yaml) {
    write(yaml, ".scenario.yaml.swp");
    std::filesystem::rename(dir + "/.scenario.yaml.swp", path);
  }
  // Runs the event loop until it goes quiet.
  void settle() {
    for (int i = 0; i < 5; ++i) Quor::activityManager()->runOnce(0.05);
  }

  std::string dir;
  std::string path;
  Morvane::Store store = freshStore();
  ScenarioTest::StoreRecorder recorder{store};
};

const char* redOnly = "vrfs:\n  red: { routing: { ipv4: true } }\n";

TEST_F(ScenarioFile, ARefusedFileLeavesTheStoreAsItWasAndSaysWhyOnce) {
  write(redOnly);
  Sources::ScenarioSource source(store, path);
  ASSERT_EQ(source.load(), "");
  recorder.take();
  write("vrfs:\n  red: { routing: { ipv4: true } }\n  blue: { routng: { ipv4: true } }\n");
  std::string expected = path + ":3: unknown key 'routng' in vrf blue";
  EXPECT_EQ(source.load(), expected);
  EXPECT_EQ(source.lastError(), expected);
  EXPECT_EQ(recorder.take(), Lines{}) << "nothing applied, not even the valid part";
  EXPECT_TRUE(store.routingVrfConfigDir->vrfConfig("red"));
}

std::vector<std::string> traced;
void keepTrace(const Quor::TraceHandle& facility, int level, const char*, const char*, const std::string& text) {
  traced.push_back(facility.facility() + "/" + std::to_string(level) + " " + text);
}

TEST_F(ScenarioFile, TheErrorGoesToTheScenarioTraceAtLevelZero) {
  write("routing: { ipv4: yes please }\n");
  Sources::ScenarioSource source(store, path);
  Quor::traceConfigure("Scenario:0");
  Quor::traceSinkIs(keepTrace);
  traced.clear();
  std::string error = source.load();
  Quor::traceSinkIs(nullptr);
  Quor::TraceHandle::named("Scenario").masterIs(false);
  EXPECT_EQ(traced, (std::vector<std::string>{"Scenario/0 " + error}));
  EXPECT_EQ(error, path + ":1: 'ipv4' in routing must be true or false, not 'yes please'");
}

TEST_F(ScenarioFile, AMissingFileIsAnErrorToo) {
  Sources::ScenarioSource source(store, dir + "/absent.yaml");
  EXPECT_EQ(source.load(), dir + "/absent.yaml: cannot read: No such file or directory");
}

TEST_F(ScenarioFile, ASaveInPlaceIsAppliedLive) {
  write(redOnly);
  Sources::ScenarioSource source(store, path);
  ASSERT_EQ(source.load(), "");
  ASSERT_EQ(source.watch(), "");
  recorder.take();
  write("vrfs:\n  red: { routing: { ipv4: true } }\n  blue: { routing: { ipv4: true } }\n");
  settle();
  EXPECT_EQ(recorder.take(), Lines{"vrfConfig blue"});
}

TEST_F(ScenarioFile, ASaveByRenameIsAppliedLive) {
  write(redOnly);
  Sources::ScenarioSource source(store, path);
  ASSERT_EQ(source.load(), "");
  ASSERT_EQ(source.watch(), "");
  recorder.take();
  saveByRename("vrfs: {}\n");
  settle();
  EXPECT_EQ(recorder.take(), Lines{"vrfConfig red"});
  saveByRename(redOnly);
  settle();
  EXPECT_EQ(recorder.take(), Lines{"vrfConfig red"}) << "the watch survives the replaced file";
}

TEST_F(ScenarioFile, OtherFilesOfTheDirectoryAndBadSavesChangeNothing) {
  write(redOnly);
  Sources::ScenarioSource source(store, path);
  ASSERT_EQ(source.load(), "");
  ASSERT_EQ(source.watch(), "");
  recorder.take();
  write("vrfs: {}\n", "other.yaml");
  settle();
  write("vrfs: [\n");
  settle();
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_EQ(source.lastError().rfind(path + ":", 0), 0u) << source.lastError();
  write("vrfs: {}\n");
  settle();
  EXPECT_EQ(recorder.take(), Lines{"vrfConfig red"}) << "a good save after a bad one applies";
  EXPECT_EQ(source.lastError(), "");
}

// A scenario of `count` interfaces, each with its status and an address.
std::string interfaces(int count) {
  std::string yaml = "interfaces:\n";
  for (int i = 1; i <= count; ++i)
    yaml += "  Ethernet" + std::to_string(i) + ": { ifIndex: " + std::to_string(i) + ", config: { ipv4: 10.0." +
            std::to_string(i / 256) + "." + std::to_string(i % 256) + "/16 } }\n";
  return yaml;
}

std::size_t interfacesIn(const Morvane::Store& store) {
  std::size_t count = 0;
  for (const auto& member : store.intfStatusDir->intfStatuses()) count += bool(member.second);
  return count;
}

// Time that moves a millisecond each time it is read.
double steppingClock() {
  static double seconds = 1000;
  return seconds += 0.001;
}

class SlicedSave : public ScenarioFile {
 protected:
  SlicedSave() { Quor::nowSourceIs(steppingClock); }
  ~SlicedSave() override { Quor::nowSourceIs(nullptr); }
};

TEST_F(SlicedSave, ASaveIsAppliedInSlicesWithTheLoopFreeBetweenThem) {
  write("interfaces: {}\n");
  Sources::ScenarioSource source(store, path);
  ASSERT_EQ(source.load(), "");
  ASSERT_EQ(source.watch(), "");
  write(interfaces(200));
  Quor::activityManager()->runOnce(0.05);
  const std::size_t first = interfacesIn(store);
  EXPECT_GT(first, 0u);
  EXPECT_LT(first, 20u) << "one slice makes a few changes";
  EXPECT_TRUE(source.storePending());
  int turns = 1;
  for (; source.storePending() && turns < 1000; ++turns) Quor::activityManager()->runOnce(0.05);
  EXPECT_EQ(interfacesIn(store), 200u);
  EXPECT_GT(turns, 10) << "the loop turned between the slices";
}

TEST_F(SlicedSave, ALaterSaveReplacesWhatIsLeftOfAnEarlierOne) {
  write("interfaces: {}\n");
  Sources::ScenarioSource source(store, path);
  ASSERT_EQ(source.load(), "");
  ASSERT_EQ(source.watch(), "");
  write(interfaces(200));
  Quor::activityManager()->runOnce(0.05);
  ASSERT_TRUE(source.storePending());
  write(interfaces(3));
  for (int turns = 0; source.storePending() && turns < 1000; ++turns) Quor::activityManager()->runOnce(0.05);
  EXPECT_EQ(interfacesIn(store), 3u);
  EXPECT_TRUE(store.intfStatusDir->intfStatus(Pelt::IntfId("Ethernet3")));
  EXPECT_FALSE(store.intfStatusDir->intfStatus(Pelt::IntfId("Ethernet4")));
}

TEST_F(ScenarioFile, ADirectLoadChangesTheStoreBeforeItReturns) {
  write(interfaces(50));
  Sources::ScenarioSource source(store, path);
  ASSERT_EQ(source.load(), "");
  EXPECT_EQ(interfacesIn(store), 50u);
  EXPECT_FALSE(source.storePending());
}

TEST_F(ScenarioFile, TheWatchEndsWithTheSource) {
  write(redOnly);
  {
    Sources::ScenarioSource source(store, path);
    ASSERT_EQ(source.load(), "");
    ASSERT_EQ(source.watch(), "");
  }
  recorder.take();
  write("vrfs: {}\n");
  settle();
  EXPECT_EQ(recorder.take(), Lines{});
}

}  // namespace
