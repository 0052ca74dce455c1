// IpBase in the default context and in a VRF's: which objects it registers where, what it remembers
// for the VRF's teardown, and what the forwarding scalars answer from the store.
#include <gtest/gtest.h>

#include <sstream>

#include "frontend/IpBase.h"
#include "platform/morvane/Store.h"
#include "platform/snmp/ContextTeardown.h"
#include "platform/snmp/SnmpUtil.h"

namespace {

oid ipForwardingInstance[] = {1, 3, 6, 1, 2, 1, 4, 1, 0};
oid ipv6IpForwardingInstance[] = {1, 3, 6, 1, 2, 1, 4, 25, 0};

// The registration that answers for `instance` in `context`, when it is one of IpBase's scalars.
netsnmp_handler_registration* scalarAt(const char* context, oid* instance, std::size_t length) {
  netsnmp_subtree* subtree = netsnmp_subtree_find(instance, length, nullptr, context);
  if (!subtree || !subtree->reginfo) return nullptr;
  for (netsnmp_mib_handler* h = subtree->reginfo->handler; h; h = h->next)
    if (h->access_method == handle_ipForwarding || h->access_method == handle_ipv6IpForwarding)
      return subtree->reginfo;
  return nullptr;
}

// A request as the scalar helper hands it to the handler, and what the handler made of it.
struct Answer {
  int result;
  int status;
  int type;
  long value;
};

Answer ask(Netsnmp_Node_Handler* handler, netsnmp_handler_registration* reg, int mode) {
  netsnmp_agent_request_info reqinfo{};
  reqinfo.mode = mode;
  netsnmp_variable_list varbind{};
  varbind.type = ASN_NULL;
  netsnmp_request_info request{};
  request.agent_req_info = &reqinfo;
  request.requestvb = &varbind;
  Answer answer{handler(nullptr, reg, &reqinfo, &request), request.status, varbind.type, 0};
  if (varbind.type == ASN_INTEGER) answer.value = *varbind.val.integer;
  snmp_free_var_internals(&varbind);
  return answer;
}

class IpBaseTest : public ::testing::Test {
 protected:
  void SetUp() override {
    store.routingVrfConfigDir->vrfConfigIs(red);
    SnmpUtil::rootIs(root);
  }
  // As the plug-in stops: the VRFs' contexts first, then what stays in the default context.
  void TearDown() override {
    for (const char* context : {"red", "ghost"}) {
      unregister_IpBase(context);
      shutdown_tree_in_context(context);
      clear_cache_in_context(context);
    }
    Snmp::unregisterHandlersOfThisLibrary();
    SnmpUtil::rootIs(nullptr);
  }

  Quor::Ptr<Quor::Dir> root = Quor::makePtr<Quor::Dir>(Quor::Name("switch"));
  Morvane::Store store = Morvane::buildStore(root);
  Quor::Ptr<Routing::Config> red = Quor::makePtr<Routing::Config>(Quor::Name("red"));
};

TEST_F(IpBaseTest, DefaultContextRegistersBothScalarsAndRemembersNothing) {
  init_IpBase("");
  netsnmp_handler_registration* forwarding = scalarAt("", ipForwardingInstance, OID_LENGTH(ipForwardingInstance));
  netsnmp_handler_registration* forwarding6 =
      scalarAt("", ipv6IpForwardingInstance, OID_LENGTH(ipv6IpForwardingInstance));
  ASSERT_NE(forwarding, nullptr);
  ASSERT_NE(forwarding6, nullptr);
  EXPECT_EQ(forwarding->contextName, nullptr);
  EXPECT_EQ(forwarding6->contextName, nullptr);
  EXPECT_STREQ(forwarding->handlerName, "ipForwarding_");
  EXPECT_EQ(forwarding->priority, 64);
  EXPECT_EQ(forwarding->my_reg_void, store.routingConfig.ptr());
  EXPECT_EQ(forwarding6->my_reg_void, store.routing6Config.ptr());
  EXPECT_EQ(ipBaseRegistrations().contexts(), 0u);
}

TEST_F(IpBaseTest, VrfContextRegistersIpForwardingOnly) {
  init_IpBase("red");
  const ContextRegistrations::Registrations& kept = ipBaseRegistrations().handlerRegistrations("red");
  // ipForwarding, then the four tables in their order.
  ASSERT_EQ(kept.size(), 5u);
  EXPECT_STREQ(kept[0]->handlerName, "ipForwarding_red");
  EXPECT_STREQ(kept[1]->handlerName, "ipAddrTable_red");
  EXPECT_STREQ(kept[2]->handlerName, "ipNetToMediaTable_red");
  EXPECT_STREQ(kept[3]->handlerName, "ipAddressPrefixTable_red");
  EXPECT_STREQ(kept[4]->handlerName, "ipAddressTable_red");
  EXPECT_STREQ(kept[2]->contextName, "red");
  EXPECT_STREQ(kept[0]->contextName, "red");
  EXPECT_EQ(kept[0]->my_reg_void, red.ptr());
  EXPECT_EQ(scalarAt("red", ipForwardingInstance, OID_LENGTH(ipForwardingInstance)), kept[0]);
  EXPECT_EQ(scalarAt("red", ipv6IpForwardingInstance, OID_LENGTH(ipv6IpForwardingInstance)), nullptr);
}

TEST_F(IpBaseTest, SkippedIpv6ScalarIsTracedWithItsContext) {
  std::ostringstream traces;
  Quor::coverageStream_ = &traces;
  init_IpBase("red");
  Quor::coverageStream_ = nullptr;
  EXPECT_NE(traces.str().find("init_IpBase in context \"red\": morvanePathWithContext not specified for "
                              "ipv6IpForwarding; skipping registration"),
            std::string::npos)
      << traces.str();
}

TEST_F(IpBaseTest, UnregisterRemovesTheVrfContextsObjects) {
  init_IpBase("red");
  unregister_IpBase("red");
  EXPECT_TRUE(ipBaseRegistrations().handlerRegistrations("red").empty());
  EXPECT_EQ(ipBaseRegistrations().contexts(), 0u);
  EXPECT_EQ(scalarAt("red", ipForwardingInstance, OID_LENGTH(ipForwardingInstance)), nullptr);
}

TEST_F(IpBaseTest, UnregisterOfAContextNeverRegisteredChangesNothing) {
  init_IpBase("");
  init_IpBase("red");
  unregister_IpBase("blue");
  unregister_IpBase("");
  EXPECT_EQ(ipBaseRegistrations().handlerRegistrations("red").size(), 5u);
  EXPECT_NE(scalarAt("", ipForwardingInstance, OID_LENGTH(ipForwardingInstance)), nullptr);
  EXPECT_NE(scalarAt("red", ipForwardingInstance, OID_LENGTH(ipForwardingInstance)), nullptr);
}

TEST_F(IpBaseTest, SecondInitOfAContextIsUndoneByOneUnregister) {
  init_IpBase("red");
  init_IpBase("red");
  unregister_IpBase("red");
  EXPECT_EQ(ipBaseRegistrations().contexts(), 0u);
  EXPECT_EQ(scalarAt("red", ipForwardingInstance, OID_LENGTH(ipForwardingInstance)), nullptr);
}

TEST_F(IpBaseTest, ForwardingAnswersFromTheStoreAtEveryGet) {
  init_IpBase("");
  netsnmp_handler_registration* reg = scalarAt("", ipForwardingInstance, OID_LENGTH(ipForwardingInstance));
  Answer off = ask(handle_ipForwarding, reg, MODE_GET);
  EXPECT_EQ(off.result, SNMP_ERR_NOERROR);
  EXPECT_EQ(off.type, ASN_INTEGER);
  EXPECT_EQ(off.value, 2);
  store.routingConfig->routingIs(true);
  EXPECT_EQ(ask(handle_ipForwarding, reg, MODE_GET).value, 1);
}

TEST_F(IpBaseTest, Ipv6ForwardingAnswersFromTheIpv6Configuration) {
  init_IpBase("");
  store.routingConfig->routingIs(true);
  netsnmp_handler_registration* reg =
      scalarAt("", ipv6IpForwardingInstance, OID_LENGTH(ipv6IpForwardingInstance));
  EXPECT_EQ(ask(handle_ipv6IpForwarding, reg, MODE_GET).value, 2);
  store.routing6Config->routingIs(true);
  EXPECT_EQ(ask(handle_ipv6IpForwarding, reg, MODE_GET).value, 1);
}

TEST_F(IpBaseTest, VrfForwardingAnswersFromTheVrfsConfiguration) {
  store.routingConfig->routingIs(true);
  init_IpBase("red");
  netsnmp_handler_registration* reg = ipBaseRegistrations().handlerRegistrations("red").front();
  EXPECT_EQ(ask(handle_ipForwarding, reg, MODE_GET).value, 2);
  red->routingIs(true);
  EXPECT_EQ(ask(handle_ipForwarding, reg, MODE_GET).value, 1);
}

TEST_F(IpBaseTest, SetIsRefusedAndTheStoreKeepsItsValue) {
  init_IpBase("");
  netsnmp_handler_registration* reg = scalarAt("", ipForwardingInstance, OID_LENGTH(ipForwardingInstance));
  Answer refused = ask(handle_ipForwarding, reg, MODE_SET_RESERVE1);
  EXPECT_EQ(refused.result, SNMP_ERR_NOERROR);
  EXPECT_EQ(refused.status, SNMP_ERR_NOTWRITABLE);
  EXPECT_FALSE(store.routingConfig->routing());
}

TEST_F(IpBaseTest, ConfigurationAbsentAtRegistrationStaysAGeneralError) {
  init_IpBase("ghost");
  netsnmp_handler_registration* reg = ipBaseRegistrations().handlerRegistrations("ghost").front();
  EXPECT_EQ(reg->my_reg_void, nullptr);
  EXPECT_EQ(ask(handle_ipForwarding, reg, MODE_GET).status, SNMP_ERR_GENERR);
  auto ghost = Quor::makePtr<Routing::Config>(Quor::Name("ghost"));
  ghost->routingIs(true);
  store.routingVrfConfigDir->vrfConfigIs(ghost);
  EXPECT_EQ(ask(handle_ipForwarding, reg, MODE_GET).status, SNMP_ERR_GENERR);
}

TEST_F(IpBaseTest, UnknownModeIsAGeneralError) {
  init_IpBase("");
  netsnmp_handler_registration* reg = scalarAt("", ipForwardingInstance, OID_LENGTH(ipForwardingInstance));
  Answer answer = ask(handle_ipForwarding, reg, MODE_GETNEXT);
  EXPECT_EQ(answer.result, SNMP_ERR_GENERR);
  EXPECT_EQ(answer.status, SNMP_ERR_GENERR);
}

}  // namespace
