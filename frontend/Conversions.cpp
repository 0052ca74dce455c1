#include "frontend/Conversions.h"

#include <cstring>
#include <vector>

#include "frontend/ElementaryConversions.h"
#include "model/ProtocolMap.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"

namespace {

constexpr int forwarding = 1;
constexpr int notForwarding = 2;
constexpr int arpDynamic = 3;
constexpr int arpStatic = 4;
constexpr int vrfActive = 1;
constexpr int vrfNotActive = 2;
constexpr unsigned char ipv4RoutingBit = 0x80;

// ipAddressPrefixTable.ipAddressPrefixEntry.ipAddressPrefixOrigin
constexpr oid prefixOriginColumn[] = {1, 3, 6, 1, 2, 1, 4, 32, 1, 5};

const Quor::Tracer backEndTracer{"IpSnmp", "IpSnmpAgent"};

}  // namespace

int IpRoutingToAsnInteger(bool routing, unsigned char* buffer, int size) {
  return SnmpConvert<int, S32ToAsnIntegerF>(routing ? forwarding : notForwarding, buffer, size);
}

int ArpEntryStaticToAsnInteger(const Arp::ArpEntryStatus& entry, unsigned char* buffer, int size) {
  return SnmpConvert<int, S32ToAsnIntegerF>(entry.isStatic ? arpStatic : arpDynamic, buffer, size);
}

int VrfStateToAsnInteger(const Ip::VrfState& state, unsigned char* buffer, int size) {
  return SnmpConvert<int, S32ToAsnIntegerF>(state == Ip::vrfStateActive ? vrfActive : vrfNotActive, buffer, size);
}

int RouteMetricToAsnInteger(const Routing::RouteMetric& metric, unsigned char* buffer, int size) {
  return SnmpConvert<int, S32ToAsnIntegerF>(static_cast<int>(metric.value()), buffer, size);
}

int RouteTypeToAsnInteger(const Routing::Fib::RouteType& routeType, unsigned char* buffer, int size) {
  const IpSnmp::IpRouteProtocol protocol = IpSnmp::protoMap.protocol(routeType);
  QTRACE(backEndTracer, 6, "protoMap converted " << routeType << " to " << protocol);
  return SnmpConvert<int, S32ToAsnIntegerF>(protocol, buffer, size);
}

int RouteDistinguisherToAsnOctetString(const Pelt::RouteDistinguisher& rd, unsigned char* buffer, int size) {
  return SnmpConvert<const Quor::String8&, StringToAsnOctetStringF>(rd.stringValue(), buffer, size);
}

int RoutingStatusToAsnBits(Quor::Ptr<const IpSnmp::VrfRoutingStatus> status, unsigned char* buffer, int) {
  const auto& config = status->vrfConfig();
  buffer[0] = config && config->routing() ? ipv4RoutingBit : 0;
  return 1;
}

int IpAddressPrefixEntryToAsnOid(Quor::Ptr<const IpSnmp::IpAddressPrefixEntry> prefixEntry, unsigned char* buffer,
                                 int size) {
  std::vector<oid> name(std::begin(prefixOriginColumn), std::end(prefixOriginColumn));
  name.push_back(prefixEntry->ifIndex());
  name.push_back(static_cast<oid>(prefixEntry->version()));
  const Snmp::String& bytes = prefixEntry->bytes();
  name.push_back(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) name.push_back(bytes.bytes()[i]);
  name.push_back(prefixEntry->length());
  const std::size_t length = name.size() * sizeof(oid);
  if (size < 0 || length > static_cast<std::size_t>(size)) return 0;
  std::memcpy(buffer, name.data(), length);
  return static_cast<int>(length);
}

Ip::IpVersion AsnIntegerToIpVersion(void* value) { return static_cast<Ip::IpVersion>(AsnIntegerToS32(value)); }
