// At unload the plug-in's handlers leave every context, slices of split registrations included. (A
// VRF's context torn down and back is the VRF lifecycle's integration story.)
#include <gtest/gtest.h>

#include <cstring>

#include "platform/snmp/ContextTeardown.h"
#include "platform/snmp/NetSnmp.h"

namespace {

oid scalarOid[] = {1, 3, 6, 1, 4, 1, 48213, 99, 1};
oid innerOid[] = {1, 3, 6, 1, 4, 1, 48213, 99, 1, 5};

int answerNothing(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info*,
                  netsnmp_request_info*) {
  return SNMP_ERR_NOERROR;
}

netsnmp_handler_registration* registerIn(const char* context, oid* name, std::size_t length) {
  netsnmp_handler_registration* reg =
      netsnmp_create_handler_registration("teardownTest", answerNothing, name, length, HANDLER_CAN_RONLY);
  if (*context) reg->contextName = strdup(context);
  EXPECT_EQ(netsnmp_register_handler(reg), MIB_REGISTERED_OK);
  return reg;
}

// Whether the registration that answers for `name` in `context` is this test's.
bool handledHere(const char* context, oid* name, std::size_t length) {
  netsnmp_subtree* subtree = netsnmp_subtree_find(name, length, nullptr, context);
  netsnmp_handler_registration* reg = subtree ? subtree->reginfo : nullptr;
  for (netsnmp_mib_handler* h = reg ? reg->handler : nullptr; h; h = h->next)
    if (h->access_method == answerNothing) return true;
  return false;
}

TEST(PluginUnload, RemovesThePluginsHandlersFromEveryContext) {
  // The inner registration splits the outer one into two slices.
  registerIn("", scalarOid, OID_LENGTH(scalarOid));
  registerIn("", innerOid, OID_LENGTH(innerOid));
  registerIn("green", scalarOid, OID_LENGTH(scalarOid));
  ASSERT_TRUE(handledHere("", innerOid, OID_LENGTH(innerOid)));

  Snmp::unregisterHandlersOfThisLibrary();
  EXPECT_FALSE(handledHere("", scalarOid, OID_LENGTH(scalarOid)));
  EXPECT_FALSE(handledHere("", innerOid, OID_LENGTH(innerOid)));
  EXPECT_FALSE(handledHere("green", scalarOid, OID_LENGTH(scalarOid)));
  shutdown_tree_in_context("");
  EXPECT_NE(netsnmp_subtree_find_first(""), nullptr) << "the agent's own tree went too, or was shut down";
  shutdown_tree_in_context("green");
}

}  // namespace
