#pragma once
// The registration unit IpForward: ipCidrRouteNumber and ipCidrRouteTable, the IPv4 forwarding
// table of a context, from the context's IpSnmp::IpForwardMib.
#include "frontend/ContextRegistrations.h"
#include "frontend/IteratedTable.h"

void init_IpForward(Quor::String8 context);
void unregister_IpForward(Quor::String8 context);
void initialize_table_ipCidrRouteTable(Quor::String8 context);

int handle_ipCidrRouteNumber(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                             netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests);
IPSNMP_DECLARE_ITERATED_TABLE(ipCidrRouteTable);

// The unit's record of what it registered in each VRF's context.
const ContextRegistrations& ipForwardRegistrations();
