// What an operator turns while the agent runs: configuration lines switch trace facilities on by name
// and level, exactly, and name the file of the Flitlog ring; reading the configuration again starts
// from what is on in any case; the ring keeps the latest records, oldest first. (That SIGUSR2 writes
// the ring of the handlers that ran is the integration tests'.)
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/quor/Flitlog.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"
#include "plugin/OperatorControls.h"
#include "tests/support/TestSupport.h"

namespace {

// Has the agent library read a configuration file of this one line, for the test program's own
// configuration type (the test environment's init_agent names it).
void configurationLine(const std::string& line) {
  const TestSupport::TempDir dir;
  std::ofstream(dir / "agent.conf") << line << '\n';
  read_config_with_type((dir / "agent.conf").c_str(), "ipsnmp-tests");
}

bool isOn(const char* facility, int level) { return Quor::TraceHandle::named(facility).enabled(level); }

void handlerEntered(int which) {
  if (which == 0) {
    FLITLOG_BLOCK("OperatorControlsTest", "void firstHandler()");
  } else {
    FLITLOG_BLOCK("OperatorControlsTest", "void secondHandler()");
  }
}

std::vector<std::string> lines(const std::string& file) {
  std::ifstream in(file);
  std::vector<std::string> all;
  for (std::string line; std::getline(in, line);) all.push_back(line);
  return all;
}

TEST(OperatorControls, TraceLinesSwitchOnExactlyTheLevelsTheyNameAndMalformedOnesNothing) {
  OperatorControls controls;
  configurationLine("ipsnmpTrace CtlFacilityA:2-4,CtlFacilityB");
  configurationLine("ipsnmpTrace CtlFacilityC:7");
  const std::pair<const char*, const char*> levels[] = {
      {"CtlFacilityA", "..234....."}, {"CtlFacilityB", "0123456789"}, {"CtlFacilityC", ".......7.."}};
  for (const auto& [facility, on] : levels)
    for (int level = 0; level <= 9; ++level) EXPECT_EQ(isOn(facility, level), on[level] != '.') << facility << level;
  for (const char* line : {"ipsnmpTrace CtlFacilityD:1,CtlFacilityH:12", "ipsnmpTrace CtlFacilityD:1,CtlFacilityH:3-",
                           "ipsnmpTrace CtlFacilityD:1,:4", "ipsnmpTrace CtlFacilityD:1,CtlFacilityH:x"}) {
    configurationLine(line);
    for (int level = 0; level <= 9; ++level) EXPECT_FALSE(isOn("CtlFacilityD", level)) << line << " " << level;
  }
}

TEST(OperatorControls, ReadingAgainStartsFromWhatIsAlwaysOn) {
  ::setenv("IPSNMP_TRACE", "CtlFromEnvironment:1", 1);
  {
    OperatorControls controls;
    configurationLine("ipsnmpTrace CtlFacilityE:0-9,Scenario:5");
    ASSERT_TRUE(isOn("CtlFacilityE", 9));
    controls.configurationReset();
    for (int level = 0; level <= 9; ++level) EXPECT_FALSE(isOn("CtlFacilityE", level)) << level;
    EXPECT_FALSE(isOn("Scenario", 5));
    EXPECT_TRUE(isOn("Scenario", 1)) << "the scenario's messages stay on";
    EXPECT_TRUE(isOn("CtlFromEnvironment", 1)) << "IPSNMP_TRACE stays on";
    configurationLine("ipsnmpTrace CtlFacilityF:3");
  }
  ::unsetenv("IPSNMP_TRACE");
  EXPECT_FALSE(isOn("CtlFacilityF", 3)) << "the controls switch their facilities off when they go";
}

TEST(OperatorControls, TheRingKeepsTheMostRecentRecordsOldestFirst) {
  const TestSupport::TempDir dir;
  OperatorControls controls;
  configurationLine("ipsnmpFlitlogFile " + (dir / "ring.txt"));
  for (std::size_t i = 0; i < OperatorControls::ringRecords + 10; ++i) handlerEntered(static_cast<int>(i % 2));
  handlerEntered(1);
  ASSERT_EQ(controls.flitlogDumped(), "");
  const std::vector<std::string> dump = lines(dir / "ring.txt");
  ASSERT_EQ(dump.size(), OperatorControls::ringRecords + 1) << "a header line and the records";
  EXPECT_NE(dump.back().find("secondHandler"), std::string::npos) << dump.back();
  for (std::size_t i = 2; i < dump.size(); ++i) EXPECT_LE(std::stoull(dump[i - 1]), std::stoull(dump[i])) << dump[i];
  configurationLine("ipsnmpFlitlogFile " + (dir / "missing/ring.txt"));
  EXPECT_NE(controls.flitlogDumped().find("cannot write"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(dir / "missing"));
}

}  // namespace
