#pragma once
// The registration unit IpForward: the forwarding table of a context, from the context's
// IpSnmp::IpForwardMib, as ipCidrRouteNumber and ipCidrRouteTable (IPv4) and as inetCidrRouteNumber
// and inetCidrRouteTable (IPv4 and IPv6).
#include "frontend/ContextRegistrations.h"
#include "frontend/IteratedTable.h"

void init_IpForward(Quor::String8 context);
void unregister_IpForward(Quor::String8 context);
void initialize_table_ipCidrRouteTable(Quor::String8 context);
void initialize_table_inetCidrRouteTable(Quor::String8 context);

// Where the unit's objects find their container, "%s" standing for a VRF's name.
inline constexpr const char* ipForwardMibDefaultPath = "snmp/ip/ipforwardmib";
inline constexpr const char* ipForwardMibContextPathFormat = "snmp/ip/vrf.mibs/%s.ipforwardmib";

int handle_ipCidrRouteNumber(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                             netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests);
int handle_inetCidrRouteNumber(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                               netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests);
IPSNMP_DECLARE_ITERATED_TABLE(ipCidrRouteTable);
IPSNMP_DECLARE_ITERATED_TABLE(inetCidrRouteTable);

// The unit's record of what it registered in each VRF's context.
ContextRegistrations& ipForwardRegistrations();
