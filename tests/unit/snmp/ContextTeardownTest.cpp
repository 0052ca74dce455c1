// A VRF's context is taken away for good: after its objects are unregistered and its tree shut down,
// the agent holds nothing of it, other contexts keep theirs, and the context can come back; at unload
// the plug-in's handlers leave every context, slices of split registrations included.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

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

// The registration that answers for `name` in `context`, or null.
netsnmp_handler_registration* registrationAt(const char* context, oid* name, std::size_t length) {
  netsnmp_subtree* subtree = netsnmp_subtree_find(name, length, nullptr, context);
  return subtree ? subtree->reginfo : nullptr;
}

bool handledHere(const char* context, oid* name, std::size_t length) {
  netsnmp_handler_registration* reg = registrationAt(context, name, length);
  for (netsnmp_mib_handler* h = reg ? reg->handler : nullptr; h; h = h->next)
    if (h->access_method == answerNothing) return true;
  return false;
}

void unregisterAndShutDown(const char* context, netsnmp_handler_registration* reg) {
  Snmp::unregisterHandler(reg);
  shutdown_tree_in_context(context);
  clear_cache_in_context(context);
}

TEST(ContextTeardown, LeavesNothingOfTheContextAndEverythingOfTheOthers) {
  netsnmp_handler_registration* red = registerIn("red", scalarOid, OID_LENGTH(scalarOid));
  netsnmp_handler_registration* blue = registerIn("blue", scalarOid, OID_LENGTH(scalarOid));
  netsnmp_handler_registration* shared = registerIn("", scalarOid, OID_LENGTH(scalarOid));
  unregisterAndShutDown("red", red);
  EXPECT_EQ(netsnmp_subtree_find_first("red"), nullptr);
  EXPECT_EQ(registrationAt("blue", scalarOid, OID_LENGTH(scalarOid)), blue);
  EXPECT_EQ(registrationAt("", scalarOid, OID_LENGTH(scalarOid)), shared);
  shutdown_tree_in_context("");
  EXPECT_EQ(registrationAt("", scalarOid, OID_LENGTH(scalarOid)), shared) << "the default context is refused";
  netsnmp_handler_registration* again = registerIn("red", scalarOid, OID_LENGTH(scalarOid));
  EXPECT_EQ(registrationAt("red", scalarOid, OID_LENGTH(scalarOid)), again) << "the context comes back";
  unregisterAndShutDown("red", again);
  unregisterAndShutDown("blue", blue);
  Snmp::unregisterHandler(shared);
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
  EXPECT_NE(netsnmp_subtree_find_first(""), nullptr) << "the agent's own tree went too";
  shutdown_tree_in_context("green");
}

}  // namespace
