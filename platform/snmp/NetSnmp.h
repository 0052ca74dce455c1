#pragma once
// The net-snmp headers, in the order the library requires, for the few places that talk to the agent
// (platform/snmp, frontend/, plugin/). Nothing of net-snmp reaches the model or the state machines.
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <net-snmp/agent/agent_callbacks.h>

// Exported by libnetsnmpagent 5.9 but missing from its headers; the context teardown needs them.
extern "C" {
void netsnmp_remove_subtree(netsnmp_subtree* tree);
void netsnmp_subtree_free(netsnmp_subtree* tree);
void clear_lookup_cache(void);
}
