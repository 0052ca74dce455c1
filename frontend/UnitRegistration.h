#pragma once
// What the registration units share when they register their objects in a context.
#include <span>
#include <string>

#include "platform/quor/String.h"
#include "platform/snmp/NetSnmp.h"
#include "platform/snmp/Owners.h"

// The debug messages of init_<Unit>: the function under the token "trace", the context under the
// unit's name.
void debugUnitInit(const char* unit, const char* function, const char* file, int line, const Quor::String8& context);

// An OID as snprint_objid prints it.
std::string oidText(std::span<const oid> name);

// A scalar's registration "<namePrefix><context>" with the scalars' priority, in `context`.
Snmp::HandlerRegistrationPtr newScalarRegistration(const char* namePrefix, Netsnmp_Node_Handler* handler,
                                                   std::span<const oid> name, int modes,
                                                   const Quor::String8& context);
