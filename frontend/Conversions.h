#pragma once
// Conversions that hold the mappings of the MIBs, in the convention of ElementaryConversions.h.

// ipForwarding and ipv6IpForwarding: forwarding(1) when routing is on, notForwarding(2) when it is
// off. The order is the MIB's, not that of a truth value.
int IpRoutingToAsnInteger(bool routing, unsigned char* buffer, int size);
