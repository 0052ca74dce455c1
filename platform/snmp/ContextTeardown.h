#pragma once
// Taking a context away from the agent for good, and the plug-in's registrations at unload.
//
// Unregistering the last object of a context leaves the agent with the context's placeholder
// subtrees (net-snmp covers the whole OID space of every context it has seen) and with cached
// lookups of it: requests still find the context and answer noSuchObject. After
// shutdown_tree_in_context and clear_cache_in_context the agent holds no subtree and no cached
// lookup of the context; requests for it are dropped as for a context it never knew, and
// registering in it again builds it anew.
#include "platform/snmp/NetSnmp.h"

// Removes and frees every subtree that the agent holds for `context`. The default context ("")
// holds the agent's own objects and is refused.
void shutdown_tree_in_context(const char* context);

// Drops the agent's cached subtree lookups for `context`.
void clear_cache_in_context(const char* context);

namespace Snmp {

// netsnmp_unregister_handler, without its use-after-free: in net-snmp 5.9.3 unregister_mib_context
// frees the registration and then compares the context name that it still points into (fixed
// upstream after 5.9.3). This one hands the agent copies of the name and the OID.
int unregisterHandler(netsnmp_handler_registration* reg);

// Unregisters every registration, in every context, whose handler is code of this shared object,
// so that the agent keeps no pointer into it once it is unloaded. The units unregister their VRF
// contexts first: the registrations that they keep are freed here.
void unregisterHandlersOfThisLibrary();

}  // namespace Snmp
