#pragma once
// The registration unit IpSwForwarding: oskelSwFwdIpStatsTable, the kernel's IP counters of the
// packets forwarded in software, one row per IP version of the context.
#include "frontend/ContextRegistrations.h"
#include "frontend/IteratedTable.h"

void init_IpSwForwarding(Quor::String8 context);
void unregister_IpSwForwarding(Quor::String8 context);
void initialize_table_oskelSwFwdIpStatsTable(Quor::String8 context);

IPSNMP_DECLARE_ITERATED_TABLE(oskelSwFwdIpStatsTable);

// The unit's record of what it registered in each VRF's context.
const ContextRegistrations& ipSwForwardingRegistrations();
