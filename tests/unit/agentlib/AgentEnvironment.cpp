// The agent library, set up in the test process as snmpd (a master agent, the default role) sets it
// up, without its sockets: the registry with its placeholder subtrees, and alarms run from the
// select loop, not by signal.
#include <gtest/gtest.h>

#include "platform/snmp/NetSnmp.h"

namespace {

class AgentEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    init_agent("ipsnmp-tests");
  }
  void TearDown() override { shutdown_agent(); }
};

[[maybe_unused]] const ::testing::Environment* const agent =
    ::testing::AddGlobalTestEnvironment(new AgentEnvironment);

}  // namespace
