#pragma once
// Conversions that hold the mappings of the MIBs, in the convention of ElementaryConversions.h.
#include "model/IpAddressPrefixEntry.h"
#include "model/VrfRoutingStatus.h"
#include "platform/tarn/ArpEntry.h"
#include "platform/pelt/IpVersion.h"
#include "platform/pelt/RouteAttributes.h"
#include "platform/pelt/RouteDistinguisher.h"
#include "platform/pelt/VrfState.h"

// ipForwarding and ipv6IpForwarding: forwarding(1) when routing is on, notForwarding(2) when it is
// off. The order is the MIB's, not that of a truth value.
int IpRoutingToAsnInteger(bool routing, unsigned char* buffer, int size);

// ipNetToMediaType: static(4) when the entry's static flag is set, dynamic(3) when it is not. The
// MIB's other(1) and invalid(2) do not occur: an absent neighbour reads as a dynamic default entry.
int ArpEntryStaticToAsnInteger(const Arp::ArpEntryStatus& entry, unsigned char* buffer, int size);

// oskelVrfState: active(1) for the state numbered 1, 2 for every other state, the zero state too.
int VrfStateToAsnInteger(const Ip::VrfState& state, unsigned char* buffer, int size);

// ipCidrRouteMetric1: the metric's 32 bits as they are.
int RouteMetricToAsnInteger(const Routing::RouteMetric& metric, unsigned char* buffer, int size);

// ipCidrRouteProto: the protocol that IpSnmp::protoMap gives the route type; other(1) for a type
// that the route machine has not mapped.
int RouteTypeToAsnInteger(const Routing::Fib::RouteType& routeType, unsigned char* buffer, int size);

// oskelVrfRouteDistinguisher: the text form ("65000:100"), not the eight binary bytes.
int RouteDistinguisherToAsnOctetString(const Pelt::RouteDistinguisher& rd, unsigned char* buffer, int size);

// oskelVrfRoutingStatus: a BITS value of one octet whose bit 0, the octet's most significant bit,
// says that IPv4 routing is on. Always 1 byte; `size` is not looked at. `status` must not be null.
int RoutingStatusToAsnBits(Quor::Ptr<const IpSnmp::VrfRoutingStatus> status, unsigned char* buffer, int size);

// ipAddressPrefix: a RowPointer to column 5 (ipAddressPrefixOrigin) of the entry's row in
// ipAddressPrefixTable. The one conversion that reports a lack of room with 0, so that the caller
// sets an empty OID. `prefixEntry` must not be null.
int IpAddressPrefixEntryToAsnOid(Quor::Ptr<const IpSnmp::IpAddressPrefixEntry> prefixEntry, unsigned char* buffer,
                                 int size);

// The address type of an index: the INTEGER taken as the version of that number, unchecked, so that
// an unknown type simply matches no row.
Ip::IpVersion AsnIntegerToIpVersion(void* value);
