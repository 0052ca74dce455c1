// The iterated tables of a switch without interfaces in the real snmpd: registered in the default
// context and in each VRF's, they walk to nothing and without error while their containers hold no
// rows.
#include <gtest/gtest.h>

#include <memory>

#include "AgentTest.h"
#include "Eventually.h"

namespace IntegrationTest {
namespace {

const Credentials publicCommunity = Credentials::v2c("public");

const char* const scenario =
    "routing:\n  ipv4: true\n  ipv6: false\n"
    "vrfs:\n  red:\n    routing: { ipv4: true }\n    published: true\n    status: { state: active }\n"
    "snmp:\n  initialized: true\n";

class TablesTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (IsSkipped()) return;
    agent = std::make_unique<AgentUnderTest>(scenario);
    ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  }
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

}  // namespace
}  // namespace IntegrationTest
