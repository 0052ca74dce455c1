// A unit remembers exactly what it registered in each VRF's context, and unregistering a context takes
// all of it away and nothing of any other context.
#include <gtest/gtest.h>

#include <cstdlib>
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

netsnmp_handler_registration* newScalar(const Quor::String8& context, oid* name, std::size_t length) {
  netsnmp_handler_registration* reg =
      netsnmp_create_handler_registration("unitTest", answerNothing, name, length, HANDLER_CAN_RWRITE);
  if (!context.empty()) reg->contextName = strdup(context.str().c_str());
  return reg;
}

bool servedIn(const char* context, oid* name, std::size_t length) {
  netsnmp_subtree* subtree = netsnmp_subtree_find(name, length, nullptr, context);
  for (netsnmp_mib_handler* h = subtree && subtree->reginfo ? subtree->reginfo->handler : nullptr; h; h = h->next)
    if (h->access_method == answerNothing) return true;
  return false;
}

netsnmp_column_info* newColumnInfo(netsnmp_column_info* next) {
  auto* info = static_cast<netsnmp_column_info*>(std::calloc(1, sizeof(netsnmp_column_info)));
  info->next = next;
  return info;
}

class ContextRegistrationsTest : public ::testing::Test {
 protected:
  ContextRegistrations unit{"TestUnit", tracer};
};

TEST_F(ContextRegistrationsTest, DefaultContextIsNeverKept) {
  netsnmp_handler_registration* reg = newScalar("", firstOid, OID_LENGTH(firstOid));
  netsnmp_column_info* columns = newColumnInfo(nullptr);
  unit.scalarIs("", reg);
  unit.columnInfoIs("", columns);
  EXPECT_EQ(reg->contextName, nullptr);
  EXPECT_EQ(unit.contexts(), 0u);
  EXPECT_TRUE(unit.columnInfos("").empty());

  unit.unregisterContext("");
  EXPECT_TRUE(servedIn("", firstOid, OID_LENGTH(firstOid))) << "the default context lost an object";
  Snmp::unregisterHandler(reg);
  std::free(columns);
}

TEST_F(ContextRegistrationsTest, KeepsAContextsRegistrationsInOrder) {
  netsnmp_handler_registration* first = newScalar("red", firstOid, OID_LENGTH(firstOid));
  netsnmp_handler_registration* second = newScalar("red", secondOid, OID_LENGTH(secondOid));
  unit.scalarIs("red", first);
  unit.scalarIs("red", second);
  EXPECT_EQ(unit.handlerRegistrations("red"), (ContextRegistrations::Registrations{first, second}));
  unit.unregisterContext("red");
}

TEST_F(ContextRegistrationsTest, UnregisteringAContextRemovesAllOfItAndOnlyIt) {
  unit.scalarIs("red", newScalar("red", firstOid, OID_LENGTH(firstOid)));
  unit.scalarIs("red", newScalar("red", secondOid, OID_LENGTH(secondOid)));
  unit.scalarIs("blue", newScalar("blue", firstOid, OID_LENGTH(firstOid)));
  unit.columnInfoIs("red", newColumnInfo(newColumnInfo(nullptr)));

  unit.unregisterContext("red");
  EXPECT_FALSE(servedIn("red", firstOid, OID_LENGTH(firstOid)));
  EXPECT_FALSE(servedIn("red", secondOid, OID_LENGTH(secondOid)));
  EXPECT_TRUE(unit.handlerRegistrations("red").empty());
  EXPECT_TRUE(unit.columnInfos("red").empty());
  EXPECT_TRUE(servedIn("blue", firstOid, OID_LENGTH(firstOid)));
  EXPECT_EQ(unit.handlerRegistrations("blue").size(), 1u);
  unit.unregisterContext("blue");
  EXPECT_EQ(unit.contexts(), 0u);
}

TEST_F(ContextRegistrationsTest, UnregisteringAnUnknownContextChangesNothing) {
  unit.scalarIs("red", newScalar("red", firstOid, OID_LENGTH(firstOid)));
  unit.unregisterContext("green");
  EXPECT_EQ(unit.contexts(), 1u);
  EXPECT_TRUE(servedIn("red", firstOid, OID_LENGTH(firstOid)));
  unit.unregisterContext("red");
}

TEST_F(ContextRegistrationsTest, ARegistrationTheAgentRefusesIsNotKept) {
  unit.scalarIs("red", newScalar("red", firstOid, OID_LENGTH(firstOid)));
  // The same object again in the same context: the agent refuses and frees it.
  unit.scalarIs("red", newScalar("red", firstOid, OID_LENGTH(firstOid)));
  EXPECT_EQ(unit.handlerRegistrations("red").size(), 1u);
  unit.unregisterContext("red");
  EXPECT_FALSE(servedIn("red", firstOid, OID_LENGTH(firstOid)));
}

TEST_F(ContextRegistrationsTest, AContextCanBeRegisteredAgainAfterItsUnregistration) {
  unit.scalarIs("red", newScalar("red", firstOid, OID_LENGTH(firstOid)));
  unit.unregisterContext("red");
  netsnmp_handler_registration* again = newScalar("red", firstOid, OID_LENGTH(firstOid));
  unit.scalarIs("red", again);
  EXPECT_EQ(unit.handlerRegistrations("red"), (ContextRegistrations::Registrations{again}));
  EXPECT_TRUE(servedIn("red", firstOid, OID_LENGTH(firstOid)));
  unit.unregisterContext("red");
}

}  // namespace
