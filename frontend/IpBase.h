#pragma once
// The registration unit IpBase: ipForwarding and ipv6IpForwarding, and the four tables of the IP
// group's addresses and neighbours (ipAddrTable, ipNetToMediaTable, ipAddressPrefixTable,
// ipAddressTable).
#include "frontend/ContextRegistrations.h"
#include "platform/quor/String.h"
#include "platform/snmp/NetSnmp.h"

// Registers all objects of the unit in `context` ("" is the default context). In a VRF's context
// ipv6IpForwarding does not exist: there is no per-VRF IPv6 routing configuration to read.
void init_IpBase(Quor::String8 context);
// Removes what init_IpBase made in a VRF's context.
void unregister_IpBase(Quor::String8 context);

int handle_ipForwarding(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                        netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests);
int handle_ipv6IpForwarding(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                            netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests);

// The unit's record of what it registered in each VRF's context; its tables register through it.
ContextRegistrations& ipBaseRegistrations();
