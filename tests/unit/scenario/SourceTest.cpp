// The scenario source: a missing file named in its error, a file that is watched and
// applied again when it is saved in place, and saves applied in slices that leave the event loop
// free between them. (Saves by rename and refused saves are the integration tests', through snmpd.)
#include <gtest/gtest.h>

#include <fstream>

#include "StoreRecorder.h"
#include "platform/quor/Clock.h"
#include "sources/scenario/ScenarioSource.h"
#include "tests/support/TestSupport.h"

namespace {

using ScenarioTest::Lines;

Morvane::Store freshStore() { return Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("sys"))); }

class ScenarioFile : public ::testing::Test {
 protected:
  void write(const std::string& yaml, const std::string& name = "scenario.yaml") { std::ofstream(dir / name) << yaml; }
  void settle() {
    for (int i = 0; i < 5; ++i) Quor::activityManager()->runOnce(0.05);
  }
  // The source of the file, loaded and watched.
  std::unique_ptr<Sources::ScenarioSource> watched() {
    auto source = std::make_unique<Sources::ScenarioSource>(store, path);
    EXPECT_EQ(source->load(), "");
    EXPECT_EQ(source->watch(), "");
    return source;
  }

  TestSupport::TempDir dir;
  std::string path = dir / "scenario.yaml";
  Morvane::Store store = freshStore();
  ScenarioTest::StoreRecorder recorder{store};
};

TEST_F(ScenarioFile, AMissingFileIsAnErrorNamingIt) {
  Sources::ScenarioSource source(store, dir / "absent.yaml");
  EXPECT_EQ(source.load(), dir / "absent.yaml: cannot read: No such file or directory");
}

TEST_F(ScenarioFile, ASaveInPlaceIsAppliedLiveAndOtherFilesOfTheDirectoryAreNot) {
  write("vrfs:\n  red: { routing: { ipv4: true } }\n");
  auto source = watched();
  recorder.take();
  write("vrfs: {}\n", "other.yaml");
  settle();
  EXPECT_EQ(recorder.take(), Lines{});
  write("vrfs:\n  red: { routing: { ipv4: true } }\n  blue: { routing: { ipv4: true } }\n");
  settle();
  EXPECT_EQ(recorder.take(), Lines{"vrfConfig blue"});
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
  // Turns the loop until the store has all of the save; how many turns that took.
  int turnsToApply(const Sources::ScenarioSource& source) {
    int turns = 0;
    for (; source.storePending() && turns < 1000; ++turns) Quor::activityManager()->runOnce(0.05);
    return turns;
  }
};

TEST_F(SlicedSave, TheLoadAtStartIsWholeAndASaveIsAppliedInSlicesWithTheLoopFreeBetween) {
  write(interfaces(50));
  auto source = watched();
  EXPECT_EQ(interfacesIn(store), 50u) << "the load at start changes the store before it returns";
  EXPECT_FALSE(source->storePending());
  write(interfaces(200));
  Quor::activityManager()->runOnce(0.05);
  EXPECT_GT(interfacesIn(store), 50u);
  EXPECT_LT(interfacesIn(store), 70u) << "one slice makes a few changes";
  EXPECT_GT(turnsToApply(*source), 10) << "the loop turned between the slices";
  EXPECT_EQ(interfacesIn(store), 200u);
}

}  // namespace
