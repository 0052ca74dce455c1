#pragma once
// The registration unit VrfBase: oskelVrfTable and oskelVrfIfTable, which describe the whole device
// (every VRF, every interface in a non-default VRF) and so exist in the default context only.
#include "frontend/ContextRegistrations.h"
#include "frontend/IteratedTable.h"

// Registers both tables in the default context; in any other context it registers nothing.
void init_VrfBase(Quor::String8 context);
void unregister_VrfBase(Quor::String8 context);
void initialize_table_oskelVrfTable(Quor::String8 context);
void initialize_table_oskelVrfIfTable(Quor::String8 context);

IPSNMP_DECLARE_ITERATED_TABLE(oskelVrfTable);
IPSNMP_DECLARE_ITERATED_TABLE(oskelVrfIfTable);

// The unit's record of what it registered in each VRF's context: always empty.
const ContextRegistrations& vrfBaseRegistrations();
