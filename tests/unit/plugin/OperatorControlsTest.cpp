// What an operator turns while the agent runs: configuration lines switch trace facilities on by name
// and level and name the file of the Flitlog ring; reading the configuration again starts from what
// is on in any case; SIGUSR2 writes the ring, on the event loop, oldest record first.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/quor/Clock.h"
#include "platform/quor/Flitlog.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"
#include "plugin/OperatorControls.h"

namespace {

// Has the agent library read a configuration file of this one line, for the test program's own
// configuration type (the test environment's init_agent names it).
void configurationLine(const std::string& line) {
  const auto file = std::filesystem::temp_directory_path() / ("ipsnmp-controls-" + std::to_string(::getpid()) + ".conf");
  std::ofstream(file) << line << '\n';
  read_config_with_type(file.c_str(), "ipsnmp-tests");
  std::filesystem::remove(file);
}

bool on(const char* facility, int level) { return Quor::TraceHandle::named(facility).enabled(level); }

void handlerEntered(int which) {
  if (which == 0) {
    FLITLOG_BLOCK("OperatorControlsTest", "void firstHandler()");
  } else {
    FLITLOG_BLOCK("OperatorControlsTest", "void secondHandler()");
  }
}

std::vector<std::string> lines(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::vector<std::string> all;
  for (std::string line; std::getline(in, line);) all.push_back(line);
  return all;
}

class OperatorControlsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = std::filesystem::temp_directory_path() / ("ipsnmp-controls-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
  }
  void TearDown() override { std::filesystem::remove_all(dir); }
  std::filesystem::path dir;
};

TEST_F(OperatorControlsTest, TraceLinesSwitchTheNamedFacilitiesAndLevelsOn) {
  OperatorControls controls;
  EXPECT_FALSE(on("CtlFacilityA", 3));
  configurationLine("ipsnmpTrace CtlFacilityA:2-4,CtlFacilityB");
  configurationLine("ipsnmpTrace CtlFacilityC:7");
  EXPECT_FALSE(on("CtlFacilityA", 1));
  EXPECT_TRUE(on("CtlFacilityA", 2));
  EXPECT_TRUE(on("CtlFacilityA", 4));
  EXPECT_FALSE(on("CtlFacilityA", 5));
  for (int level = 0; level <= 9; ++level) EXPECT_TRUE(on("CtlFacilityB", level)) << level;
  EXPECT_TRUE(on("CtlFacilityC", 7));
  EXPECT_FALSE(on("CtlFacilityC", 6));
}

TEST_F(OperatorControlsTest, MalformedTraceLineSwitchesNothingOn) {
  OperatorControls controls;
  for (const char* line : {"ipsnmpTrace CtlFacilityD:1,CtlFacilityH:12", "ipsnmpTrace CtlFacilityD:1,CtlFacilityH:3-",
                           "ipsnmpTrace CtlFacilityD:1,:4", "ipsnmpTrace CtlFacilityD:1,CtlFacilityH:x"}) {
    configurationLine(line);
    for (int level = 0; level <= 9; ++level) EXPECT_FALSE(on("CtlFacilityD", level)) << line << " " << level;
  }
}

TEST_F(OperatorControlsTest, ReadingAgainStartsFromWhatIsAlwaysOn) {
  ::setenv("IPSNMP_TRACE", "CtlFromEnvironment:1", 1);
  {
    OperatorControls controls;
    configurationLine("ipsnmpTrace CtlFacilityE:0-9,Scenario:5");
    ASSERT_TRUE(on("CtlFacilityE", 9));
    controls.configurationReset();
    for (int level = 0; level <= 9; ++level) EXPECT_FALSE(on("CtlFacilityE", level)) << level;
    EXPECT_FALSE(on("Scenario", 5));
    EXPECT_TRUE(on("Scenario", 1)) << "the scenario's messages stay on";
    EXPECT_TRUE(on("CtlFromEnvironment", 1)) << "IPSNMP_TRACE stays on";
    configurationLine("ipsnmpTrace CtlFacilityF:3");
  }
  ::unsetenv("IPSNMP_TRACE");
  EXPECT_FALSE(on("CtlFacilityF", 3)) << "the controls switch their facilities off when they go";
}

TEST_F(OperatorControlsTest, SignalWritesTheRingOldestFirstToTheConfiguredFile) {
  OperatorControls controls;
  const auto file = dir / "ring.txt";
  configurationLine("ipsnmpFlitlogFile " + file.string());
  ASSERT_EQ(controls.flitlogFile(), file.string());
  handlerEntered(0);
  handlerEntered(1);
  handlerEntered(0);
  ::raise(SIGUSR2);
  EXPECT_FALSE(std::filesystem::exists(file)) << "written by the loop, not in the signal handler";
  Quor::activityManager()->runOnce(1.0);
  const std::vector<std::string> dump = lines(file);
  ASSERT_EQ(dump.size(), 4u);
  EXPECT_NE(dump[0].find("3 records"), std::string::npos) << dump[0];
  EXPECT_NE(dump[1].find("firstHandler"), std::string::npos) << dump[1];
  EXPECT_NE(dump[2].find("secondHandler"), std::string::npos) << dump[2];
  EXPECT_NE(dump[3].find("firstHandler"), std::string::npos) << dump[3];
  std::istringstream first(dump[1]), last(dump[3]);
  unsigned long long firstStart = 0, lastStart = 0;
  first >> firstStart;
  last >> lastStart;
  EXPECT_LT(firstStart, lastStart);
}

TEST_F(OperatorControlsTest, RingKeepsTheMostRecentRecords) {
  OperatorControls controls;
  configurationLine("ipsnmpFlitlogFile " + (dir / "ring.txt").string());
  for (std::size_t i = 0; i < OperatorControls::ringRecords + 10; ++i) handlerEntered(static_cast<int>(i % 2));
  handlerEntered(1);
  ASSERT_EQ(controls.flitlogDumped(), "");
  const std::vector<std::string> dump = lines(dir / "ring.txt");
  ASSERT_EQ(dump.size(), OperatorControls::ringRecords + 1);
  EXPECT_NE(dump.back().find("secondHandler"), std::string::npos) << dump.back();
}

TEST_F(OperatorControlsTest, UnwritableFileIsReportedAndLeavesNothing) {
  OperatorControls controls;
  const auto file = dir / "missing" / "ring.txt";
  configurationLine("ipsnmpFlitlogFile " + file.string());
  EXPECT_NE(controls.flitlogDumped().find("cannot write"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(dir / "missing"));
}

TEST_F(OperatorControlsTest, RingIsRecordedOnlyWhileTheControlsExist) {
  {
    OperatorControls controls;
    EXPECT_NE(Flitlog::theTraceFile, nullptr);
  }
  EXPECT_EQ(Flitlog::theTraceFile, nullptr);
  configurationLine("ipsnmpTrace CtlFacilityG:1");
  EXPECT_FALSE(on("CtlFacilityG", 1)) << "the token is gone with the controls";
}

}  // namespace
