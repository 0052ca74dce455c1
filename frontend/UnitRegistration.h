#pragma once
// What the registration units share when they register their objects in a context.
#include <span>
#include <string>

#include "platform/quor/String.h"
#include "platform/snmp/NetSnmp.h"
#include "platform/snmp/Owners.h"

// Below net-snmp's default of 127: a lower number takes precedence, so every object of the plug-in
// answers instead of the agent's own objects of the same names (snmpd's IP group, where it is loaded).
inline constexpr int registrationPriority = 64;

// The debug messages of init_<Unit>: the function under the token "trace", the context under the
// unit's name.
void debugUnitInit(const char* unit, const char* function, const char* file, int line, const Quor::String8& context);

// An OID as snprint_objid prints it.
std::string oidText(std::span<const oid> name);

// A scalar's registration "<namePrefix><context>" with the scalars' priority, in `context`.
Snmp::HandlerRegistrationPtr newScalarRegistration(const char* namePrefix, Netsnmp_Node_Handler* handler,
                                                   std::span<const oid> name, int modes,
                                                   const Quor::String8& context);
