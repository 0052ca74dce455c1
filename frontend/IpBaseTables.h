#pragma once
// The tables of the unit IpBase: ipAddrTable, ipNetToMediaTable, ipAddressPrefixTable and
// ipAddressTable, from the context's IpSnmp::IpMib. init_IpBase registers them after its scalars, in
// this order.
#include "frontend/IteratedTable.h"
#include "platform/quor/String.h"

void initialize_table_ipAddrTable(Quor::String8 context);
void initialize_table_ipNetToMediaTable(Quor::String8 context);
void initialize_table_ipAddressPrefixTable(Quor::String8 context);
void initialize_table_ipAddressTable(Quor::String8 context);

IPSNMP_DECLARE_ITERATED_TABLE(ipAddrTable);
IPSNMP_DECLARE_ITERATED_TABLE(ipNetToMediaTable);
IPSNMP_DECLARE_ITERATED_TABLE(ipAddressPrefixTable);
IPSNMP_DECLARE_ITERATED_TABLE(ipAddressTable);
