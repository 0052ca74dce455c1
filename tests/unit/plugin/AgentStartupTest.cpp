// The whole agent in one process, from the store to the registrations: a VRF's SNMP context exists
// only while the VRF is up, comes after the agent is initialized, goes first at the teardown, and
// comes back with fresh containers.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "frontend/IpBase.h"
#include "frontend/IpForward.h"
#include "frontend/IpSwForwarding.h"
#include "model/VrfMibs.h"
#include "platform/snmp/NetSnmp.h"
#include "platform/snmp/SnmpUtil.h"
#include "plugin/AgentContexts.h"
#include "plugin/AgentStartup.h"

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
    tables = std::filesystem::temp_directory_path() / ("ipsnmp-startup-" + std::to_string(::getpid()));
    ::setenv("TARN_ROOT", tables.c_str(), 1);
    SnmpUtil::rootIs(root);
  }
  void TearDown() override {
    agent.reset();
    SnmpUtil::rootIs(nullptr);
    std::filesystem::remove_all(tables);
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

  std::filesystem::path tables;
  Quor::Ptr<Quor::Dir> root = Quor::makePtr<Quor::Dir>(Quor::Name("switch"));
  Morvane::Store store = Morvane::buildStore(root);
  AgentContexts contexts{nullptr};
  std::unique_ptr<AgentStartup> agent;
};

TEST_F(AgentStartupTest, AVrfContextOpensOnlyOnceTheAgentIsInitialized) {
  vrf("red", Ip::vrfStateActive);
  start();
  EXPECT_EQ(netsnmp_subtree_find_first("red"), nullptr);
  EXPECT_EQ(ipMibOf("red"), nullptr);
  store.snmpStatus->initializedIs(true);
  EXPECT_EQ(servedConfig("red"), store.routingVrfConfigDir->vrfConfig(Quor::Name("red")).ptr());
  ASSERT_NE(ipMibOf("red"), nullptr);
  EXPECT_NE(ipMibOf("red")->ipSwFwdStats(Ip::ipVersion4), nullptr);
  EXPECT_EQ(ipMibOf("red")->ipSwFwdStats(Ip::ipVersion6), nullptr) << "a VRF serves its IPv4 counters only";
  EXPECT_EQ(agent->ipVrfMib->vrfTable().members(), 1u) << "the initialization pass adds the rows";
}

TEST_F(AgentStartupTest, StateTwoTearsTheVrfDownAndStateZeroBringsItBackFresh) {
  store.snmpStatus->initializedIs(true);
  auto status = vrf("red", Ip::vrfStateInitializing);
  start();
  auto first = ipMibOf("red");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(agent->ipVrfMib->vrfTable().members(), 1u) << "state 0 adds the row once its sources exist";
  status->stateIs(Ip::vrfStateDeleting);
  EXPECT_EQ(netsnmp_subtree_find_first("red"), nullptr) << "the agent keeps nothing of the context";
  EXPECT_TRUE(ipBaseRegistrations().handlerRegistrations("red").empty());
  EXPECT_EQ(ipMibOf("red"), nullptr);
  EXPECT_EQ(agent->ipVrfMib->vrfTable().members(), 0u);
  status->stateIs(Ip::vrfStateInitializing);
  auto second = ipMibOf("red");
  ASSERT_NE(second, nullptr);
  EXPECT_NE(second, first) << "fresh containers";
  EXPECT_NE(servedConfig("red"), nullptr);
}

TEST_F(AgentStartupTest, ManyCyclesLeaveNoRegistrationOrColumnListBehind) {
  store.snmpStatus->initializedIs(true);
  auto status = vrf("red", Ip::vrfStateInitializing);
  start();
  const Quor::String8 red("red");
  for (int cycle = 0; cycle < 1000; ++cycle) {
    ASSERT_FALSE(ipBaseRegistrations().columnInfos(red).empty()) << "cycle " << cycle;
    status->stateIs(Ip::vrfStateDeleting);
    ASSERT_EQ(netsnmp_subtree_find_first("red"), nullptr) << "cycle " << cycle;
    for (const ContextRegistrations* unit : std::initializer_list<const ContextRegistrations*>{
             &ipBaseRegistrations(), &ipForwardRegistrations(), &ipSwForwardingRegistrations()}) {
      ASSERT_EQ(unit->contexts(), 0u) << "cycle " << cycle;
      ASSERT_TRUE(unit->columnInfos(red).empty()) << "cycle " << cycle;
    }
    status->stateIs(Ip::vrfStateInitializing);
    ASSERT_NE(servedConfig("red"), nullptr) << "cycle " << cycle;
  }
}

TEST_F(AgentStartupTest, OtherStatesChangeNothing) {
  store.snmpStatus->initializedIs(true);
  auto status = vrf("red", Ip::vrfStateActive);
  start();
  auto up = ipMibOf("red");
  status->stateIs(Ip::VrfState(3));
  EXPECT_EQ(ipMibOf("red"), up);
  EXPECT_NE(servedConfig("red"), nullptr);
}

TEST_F(AgentStartupTest, RemovingTheStatusMemberTearsDownAndStoppingClosesEveryContext) {
  store.snmpStatus->initializedIs(true);
  vrf("red", Ip::vrfStateActive);
  vrf("blue", Ip::vrfStateActive);
  start();
  store.allVrfStatusLocal->vrfDel(L3::VrfName("red"));
  EXPECT_EQ(netsnmp_subtree_find_first("red"), nullptr);
  EXPECT_NE(netsnmp_subtree_find_first("blue"), nullptr);
  agent.reset();
  EXPECT_EQ(netsnmp_subtree_find_first("blue"), nullptr);
  EXPECT_EQ(ipBaseRegistrations().contexts(), 0u);
}

TEST_F(AgentStartupTest, AnInterfaceInAVrfServesItsAddressInThatVrfOnly) {
  store.snmpStatus->initializedIs(true);
  vrf("red", Ip::vrfStateActive);
  store.intfStatusDir->intfStatusIs(
      Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId("Ethernet2"), Quor::Name("ethernet"), 2));
  auto l3 = Quor::makePtr<L3::Intf::Status>(Quor::Name("Ethernet2"));
  l3->vrfIs("red");
  auto intf = Quor::makePtr<Ip::IpIntfStatus>(Pelt::IntfId("Ethernet2"), l3);
  intf->activeAddrWithMaskIs(Pelt::IpAddrWithMask(std::string_view("10.0.2.1/24")));
  store.ipStatus->ipIntfStatusIs(intf);
  start();
  ASSERT_NE(ipMibOf("red"), nullptr);
  EXPECT_EQ(ipMibOf("red")->ipAddrTable().members(), 1u);
  EXPECT_EQ(agent->ipMib->ipAddrTable().members(), 0u);
}

}  // namespace
