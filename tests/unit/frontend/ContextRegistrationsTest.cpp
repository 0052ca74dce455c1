// A unit remembers exactly what it registered in each VRF's context: what the agent refused (and
// freed) is not kept, the default context is never kept, and unregistering a context takes all of it
// away and nothing of any other context. (What the units serve is the integration tests' walks.)
#include <gtest/gtest.h>

#include <cstring>

#include "frontend/ContextRegistrations.h"
#include "platform/snmp/ContextTeardown.h"
#include "platform/snmp/NetSnmp.h"

namespace {

const Quor::Tracer tracer{"Snmp", "ContextRegistrationsTest"};
oid firstOid[] = {1, 3, 6, 1, 4, 1, 48213, 98, 1};
oid secondOid[] = {1, 3, 6, 1, 4, 1, 48213, 98, 2};

int answerNothing(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info*,
                  netsnmp_request_info*) {
  return SNMP_ERR_NOERROR;
}

netsnmp_handler_registration* newScalar(const char* context, oid* name) {
  netsnmp_handler_registration* reg =
      netsnmp_create_handler_registration("unitTest", answerNothing, name, OID_LENGTH(firstOid), HANDLER_CAN_RONLY);
  if (*context) reg->contextName = strdup(context);
  return reg;
}

bool servedIn(const char* context, oid* name) {
  netsnmp_subtree* subtree = netsnmp_subtree_find(name, OID_LENGTH(firstOid), nullptr, context);
  for (netsnmp_mib_handler* h = subtree && subtree->reginfo ? subtree->reginfo->handler : nullptr; h; h = h->next)
    if (h->access_method == answerNothing) return true;
  return false;
}

TEST(ContextRegistrations, AContextsRegistrationsGoWithItAndNothingElseDoes) {
  ContextRegistrations unit{"TestUnit", tracer};
  netsnmp_handler_registration* inDefault = newScalar("", firstOid);
  unit.scalarIs("", inDefault);
  netsnmp_handler_registration* first = newScalar("red", firstOid);
  netsnmp_handler_registration* second = newScalar("red", secondOid);
  unit.scalarIs("red", first);
  unit.scalarIs("red", second);
  unit.scalarIs("red", newScalar("red", firstOid));  // the same object again: the agent refuses and frees it
  unit.scalarIs("blue", newScalar("blue", firstOid));
  EXPECT_EQ(unit.handlerRegistrations("red"), (ContextRegistrations::Registrations{first, second}));
  EXPECT_EQ(unit.contexts(), 2u) << "the default context is never kept";

  unit.unregisterContext("red");
  unit.unregisterContext("");
  unit.unregisterContext("green");
  EXPECT_FALSE(servedIn("red", firstOid));
  EXPECT_FALSE(servedIn("red", secondOid));
  EXPECT_TRUE(unit.handlerRegistrations("red").empty());
  EXPECT_TRUE(servedIn("blue", firstOid));
  EXPECT_TRUE(servedIn("", firstOid)) << "the default context lost an object";

  unit.scalarIs("red", newScalar("red", firstOid));
  EXPECT_TRUE(servedIn("red", firstOid)) << "a context comes back after its unregistration";
  for (const char* context : {"red", "blue"}) {
    unit.unregisterContext(context);
    shutdown_tree_in_context(context);
  }
  EXPECT_EQ(unit.contexts(), 0u);
  Snmp::unregisterHandler(inDefault);
}

}  // namespace
