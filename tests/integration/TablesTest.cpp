// The iterated tables in the real snmpd, as far as the plug-in fills them today: registered in the
// default context and in each VRF's, walked without error while their containers hold no rows, and
// refusing SET with notWritable. Rows and their values are covered through the agent library in
// tests/unit/tables until the state machines fill the containers from the scenario.
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>

#include "AgentUnderTest.h"

namespace IntegrationTest {
namespace {

const Credentials publicCommunity = Credentials::v2c("public");

const char* const scenario =
    "routing:\n  ipv4: true\n  ipv6: false\n"
    "vrfs:\n  red:\n    routing: { ipv4: true }\n    published: true\n    status: { state: active }\n"
    "snmp:\n  initialized: true\n";

bool toolsInstalled() { return ::access("/usr/sbin/snmpd", X_OK) == 0 && ::access("/usr/bin/snmpget", X_OK) == 0; }

class TablesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
    agent = std::make_unique<AgentUnderTest>(scenario);
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }
  void TearDown() override {
    if (agent && HasFailure()) std::cerr << agent->diagnostics();
  }
  std::unique_ptr<AgentUnderTest> agent;
};

TEST_F(TablesTest, EmptyTablesWalkToNothingInEveryContext) {
  for (const Credentials& who : {publicCommunity, Credentials::v3("red")}) {
    for (const char* table : {".1.3.6.1.2.1.4.20", ".1.3.6.1.2.1.4.32", ".1.3.6.1.2.1.4.34"}) {
      ToolOutput walk = agent->tools().bulkWalk(who, table);
      EXPECT_TRUE(walk.error.empty()) << table << ": " << walk.run.output;
      // Finding nothing below the table, the tool asks for the table's own OID: noSuchObject.
      for (const Varbind& vb : walk.varbinds)
        EXPECT_FALSE(vb.oid.rfind(std::string(table) + ".", 0) == 0) << table << ": " << walk.run.output;
    }
  }
  EXPECT_TRUE(agent->running());
}

TEST_F(TablesTest, SetOfATableColumnIsNotWritable) {
  ToolOutput rowStatus = agent->tools().set(publicCommunity, ".1.3.6.1.2.1.4.34.1.10.1.4.10.0.1.1", "i", "6");
  EXPECT_EQ(rowStatus.error, "notWritable") << rowStatus.run.output;
  ToolOutput metric = agent->tools().set(publicCommunity, ".1.3.6.1.2.1.4.24.4.1.11.10.0.0.0.255.0.0.0.0.192.0.2.1",
                                         "i", "5");
  EXPECT_EQ(metric.error, "notWritable") << metric.run.output;
  EXPECT_TRUE(agent->running());
}

TEST_F(TablesTest, VrfTablesExistInTheDefaultContextOnly) {
  ToolOutput inRed = agent->tools().get(Credentials::v3("red"), {".1.3.6.1.4.1.48213.3.18.1.1.1.4.3.114.101.100"});
  ASSERT_EQ(inRed.varbinds.size(), 1u) << inRed.run.output;
  EXPECT_EQ(inRed.varbinds[0].type, "noSuchObject");
  ToolOutput inDefault = agent->tools().get(publicCommunity, {".1.3.6.1.4.1.48213.3.18.1.1.1.4.3.114.101.100"});
  ASSERT_EQ(inDefault.varbinds.size(), 1u) << inDefault.run.output;
  EXPECT_EQ(inDefault.varbinds[0].type, "noSuchInstance");
}

}  // namespace
}  // namespace IntegrationTest
