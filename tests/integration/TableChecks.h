#pragma once
// Checks of a served table against what the test expects of it, as gtest expectations.
#include "AgentUnderTest.h"
#include "ExpectedTable.h"

namespace IntegrationTest {

// Whether a walk in the context of `who` is `expected`, cell for cell.
bool walksAs(const AgentUnderTest& agent, const ExpectedTable& expected,
             const Credentials& who = Credentials::v2c("public"));

// The walk in the context of `who` is `expected`, with snmpwalk and with snmpbulkwalk.
void expectWalk(const AgentUnderTest& agent, const ExpectedTable& expected,
                const Credentials& who = Credentials::v2c("public"));

}  // namespace IntegrationTest
