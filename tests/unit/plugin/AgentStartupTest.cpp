// The whole agent in one process, from the store to the registrations, where a thousand cycles of a
// VRF are cheap: what a VRF's teardown must leave behind, nothing. (When contexts come and go, and
// what they serve, is the integration tests', VrfLifecycleTest and VrfCyclesTest.)
#include <gtest/gtest.h>

#include <cstdlib>

#include "frontend/IpBase.h"
#include "frontend/IpForward.h"
#include "frontend/IpSwForwarding.h"
#include "model/VrfMibs.h"
#include "platform/snmp/NetSnmp.h"
#include "platform/snmp/SnmpUtil.h"
#include "plugin/AgentContexts.h"
#include "plugin/AgentStartup.h"
#include "tests/support/TestSupport.h"

namespace {

oid ipForwardingInstance[] = {1, 3, 6, 1, 2, 1, 4, 1, 0};

// The configuration that ipForwarding reads in the context of `vrf`, or null when it is not served.
const void* servedConfig(const char* vrf) {
  netsnmp_subtree* subtree = netsnmp_subtree_find(ipForwardingInstance, OID_LENGTH(ipForwardingInstance), nullptr, vrf);
  if (!subtree || !subtree->reginfo) return nullptr;
  for (netsnmp_mib_handler* h = subtree->reginfo->handler; h; h = h->next)
    if (h->access_method == handle_ipForwarding) return subtree->reginfo->my_reg_void;
  return nullptr;
}

class AgentStartupTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ::setenv("TARN_ROOT", tables.path().c_str(), 1);
    SnmpUtil::rootIs(root);
  }
  void TearDown() override {
    agent.reset();
    SnmpUtil::rootIs(nullptr);
  }
  void start() { agent = std::make_unique<AgentStartup>(root, store, &contexts); }

  // A VRF the routing side has published, with its configuration and local status in `state`.
  Quor::Ptr<Ip::VrfStatusLocal> vrf(const char* name, Ip::VrfState state) {
    auto routing = Quor::makePtr<Routing::Config>(Quor::Name(name));
    routing->routingIs(true);
    store.routingVrfConfigDir->vrfConfigIs(routing);
    store.routingVrfInfoDir->entityPtrIs(Quor::makePtr<Quor::Dir>(Quor::Name(name)));
    store.allVrfConfig->vrfIs(Quor::makePtr<Ip::VrfConfig>(L3::VrfName(name)));
    auto status = Quor::makePtr<Ip::VrfStatusLocal>(L3::VrfName(name));
    status->stateIs(state);
    store.allVrfStatusLocal->vrfIs(status);
    return status;
  }
  Quor::Ptr<IpSnmp::IpMib> ipMibOf(const char* name) {
    return Quor::dynamicPtrCast<IpSnmp::IpMib>(
        SnmpUtil::getEntityRelative(Quor::format("snmp/ip/vrf.mibs/%s.ipmib", name).str().c_str()));
  }

  TestSupport::TempDir tables;
  Quor::Ptr<Quor::Dir> root = Quor::makePtr<Quor::Dir>(Quor::Name("switch"));
  Morvane::Store store = Morvane::buildStore(root);
  AgentContexts contexts{nullptr};
  std::unique_ptr<AgentStartup> agent;
};

// A VRF that comes and goes a thousand times while another stays: each teardown leaves nothing of
// the VRF's context with the agent or the units, each return has fresh containers, the other VRF's
// context is untouched, and stopping closes every context.
TEST_F(AgentStartupTest, ManyCyclesLeaveNoRegistrationOrColumnListBehind) {
  store.snmpStatus->initializedIs(true);
  auto status = vrf("red", Ip::vrfStateInitializing);
  vrf("blue", Ip::vrfStateActive);
  start();
  const Quor::String8 red("red");
  Quor::Ptr<IpSnmp::IpMib> before = ipMibOf("red");
  for (int cycle = 0; cycle < 1000; ++cycle) {
    ASSERT_FALSE(ipBaseRegistrations().columnInfos(red).empty()) << "cycle " << cycle;
    status->stateIs(Ip::vrfStateDeleting);
    ASSERT_EQ(netsnmp_subtree_find_first("red"), nullptr) << "cycle " << cycle;
    ASSERT_EQ(ipMibOf("red"), nullptr) << "cycle " << cycle;
    for (const ContextRegistrations* unit : std::initializer_list<const ContextRegistrations*>{
             &ipBaseRegistrations(), &ipForwardRegistrations(), &ipSwForwardingRegistrations()}) {
      ASSERT_EQ(unit->contexts(), 1u) << "cycle " << cycle;
      ASSERT_TRUE(unit->columnInfos(red).empty()) << "cycle " << cycle;
    }
    status->stateIs(Ip::vrfStateInitializing);
    ASSERT_NE(servedConfig("red"), nullptr) << "cycle " << cycle;
    ASSERT_NE(ipMibOf("red"), before) << "cycle " << cycle << ": fresh containers";
    before = ipMibOf("red");
  }
  EXPECT_EQ(servedConfig("blue"), store.routingVrfConfigDir->vrfConfig(Quor::Name("blue")).ptr());
  agent.reset();
  EXPECT_EQ(netsnmp_subtree_find_first("blue"), nullptr);
  EXPECT_EQ(ipBaseRegistrations().contexts(), 0u);
}

}  // namespace
