// IpForward serves the routes of a context: ipCidrRouteNumber, the count of the IPv4 rows, and
// ipCidrRouteTable, one row per next hop of an IPv4 route; inetCidrRouteNumber, the count of the rows of
// both versions, and inetCidrRouteTable (InetCidrRouteTable.cpp). The store has no value for several columns of the MIB;
// those are fixed numbers on every row (type 1, status 1, age and metrics 3 to 5 of -1, no next-hop
// AS, info 0.0), and the type of service is 0 in the index and in its column whatever the key holds.
// The route's administrative preference is served as ipCidrRouteMetric2. The table is registered
// writable so that a SET reaches the handler, which refuses it.
#include "frontend/IpForward.h"

#include <limits>

#include "frontend/Conversions.h"
#include "frontend/ElementaryConversions.h"
#include "frontend/RouteColumns.h"
#include "frontend/ScalarHandler.h"
#include "frontend/TableRegistration.h"
#include "frontend/UnitRegistration.h"
#include "model/IpForwardMib.h"
#include "platform/quor/Flitlog.h"
#include "platform/snmp/SnmpUtil.h"

namespace {

const Quor::Tracer tracer{"Snmp", "IpForward"};

const oid ipCidrRouteNumber_oid[] = {1, 3, 6, 1, 2, 1, 4, 24, 3};
const oid ipCidrRouteTable_oid[] = {1, 3, 6, 1, 2, 1, 4, 24, 4};
const oid inetCidrRouteNumber_oid[] = {1, 3, 6, 1, 2, 1, 4, 24, 6};

constexpr const char* defaultPath = ipForwardMibDefaultPath;
constexpr const char* contextPathFormat = ipForwardMibContextPathFormat;
constexpr int unknownAge = -1;

const ScalarText ipCidrRouteNumberText{"handle_ipCidrRouteNumber", "ipCidrRouteNumber", defaultPath,
                                       "IpSnmp::IpForwardMib",     "ipCidrRouteTables", "S32ToAsnInteger",
                                       ASN_GAUGE};

const ScalarText inetCidrRouteNumberText{"handle_inetCidrRouteNumber", "inetCidrRouteNumber", defaultPath,
                                         "IpSnmp::IpForwardMib",       "inetCidrRouteTable",  "U32ToAsnUnsigned",
                                         ASN_GAUGE};

int readRouteCount(const void* mib, unsigned char* buffer, int size) {
  const auto routes = static_cast<const IpSnmp::IpForwardMib*>(mib)->ipCidrRouteTables();
  return SnmpConvert<int, S32ToAsnIntegerF>(static_cast<int>(routes), buffer, size);
}

int readInetRouteCount(const void* mib, unsigned char* buffer, int size) {
  const auto routes = static_cast<const IpSnmp::IpForwardMib*>(mib)->inetCidrRouteTable().members();
  return SnmpConvert<unsigned int, U32ToAsnUnsignedF>(static_cast<unsigned int>(routes), buffer, size);
}

// The scalar `name` of the unit in `context`, reading its context's container.
void registerRouteNumber(const char* name, Netsnmp_Node_Handler* handler, std::span<const oid> root,
                         const Quor::String8& context);

struct IpCidrRouteTableTraits {
  using Container = IpSnmp::IpForwardMib;
  using Row = IpSnmp::IpCidrRouteTableEntry;
  static constexpr const char* name = "ipCidrRouteTable";
  static constexpr const char* keyName = "IpSnmp::IpCidrRouteTableIndex";
  static constexpr bool hinted = true;
  static constexpr int bufferSize = 1024;
  using Components = std::tuple<IpAddressComponent, IpAddressComponent, IntegerComponent, IpAddressComponent>;
  static constexpr const char* componentNames[] = {"ipCidrRouteDest", "ipCidrRouteMask", "ipCidrRouteTos",
                                                   "ipCidrRouteNextHop"};

  static const Container::IpCidrRouteTable& collection(const Container& mib) { return mib.ipCidrRouteTable(); }
  // Only a hint with the row's real type of service matches it.
  static IpSnmp::IpCidrRouteTableIndex keyOf(Pelt::IpAddr dest, Pelt::IpAddr mask, int tos, Pelt::IpAddr nextHop) {
    return {dest, mask, static_cast<U32>(tos), nextHop};
  }
  static void writeIndex(const IpSnmp::IpCidrRouteTableIndex& key, IndexWriter& index) {
    index.ipAddress("dest", key.dest);
    index.ipAddress("mask", key.mask);
    index.integer("tos", 0);
    index.ipAddress("nextHop", key.nextHop);
  }
  // The index shows no type of service: the keys of every type of service write the same index.
  static IpSnmp::IpCidrRouteTableIndex lastKeyOfIndex(const IpSnmp::IpCidrRouteTableIndex& key) {
    return {key.dest, key.mask, std::numeric_limits<U32>::max(), key.nextHop};
  }
  static bool isColumn(int colnum) { return colnum >= 1 && colnum <= 16; }
  static ColumnValue column(int colnum, const Row& row, unsigned char* buffer);
  static const char* refusedByName(int colnum);
};

ColumnValue IpCidrRouteTableTraits::column(int colnum, const Row& row, unsigned char* buffer) {
  switch (colnum) {
    case 1: return ipAddressValue(row.dest(), buffer, "PeltIpAddrToAsnOctetString failed for: dest");
    case 2: return ipAddressValue(row.mask(), buffer, "PeltIpAddrToAsnOctetString failed for: mask");
    case 3: return integerValue(0, buffer, "S32ToAsnInteger failed for: tos");
    case 4: return ipAddressValue(row.nextHop(), buffer, "PeltIpAddrToAsnOctetString failed for: nextHop");
    case 8: return integerValue(unknownAge, buffer, "S32ToAsnInteger failed for: ");
    case 9:
      return {ASN_OBJECT_ID, SnmpConvert<const Quor::String8&, StringToAsnOidF>("0.0", buffer, 1024),
              "StringToAsnOid failed for: "};
    case 10: return integerValue(0, buffer, "S32ToAsnInteger failed for: ");
    default: break;
  }
  // 5 to 7 and 11 to 16, in the order of RouteColumn.
  static constexpr RouteColumn shared[] = {RouteColumn::ifIndex, RouteColumn::type,    RouteColumn::proto,
                                           RouteColumn::metric1, RouteColumn::metric2, RouteColumn::metric3,
                                           RouteColumn::metric4, RouteColumn::metric5, RouteColumn::status};
  return routeColumnValue(shared[colnum <= 7 ? colnum - 5 : colnum - 8], row, buffer);
}

// The columns that the MIB lets a manager write.
const char* IpCidrRouteTableTraits::refusedByName(int colnum) {
  static constexpr const char* names[] = {
      "ipCidrRouteIfIndex",   "ipCidrRouteType",    "ipCidrRouteProto",   "ipCidrRouteAge",
      "ipCidrRouteInfo",      "ipCidrRouteNextHopAS", "ipCidrRouteMetric1", "ipCidrRouteMetric2",
      "ipCidrRouteMetric3",   "ipCidrRouteMetric4", "ipCidrRouteMetric5", "ipCidrRouteStatus"};
  const bool writable = colnum == 5 || colnum == 6 || (colnum >= 9 && colnum <= 16);
  return writable ? names[colnum - 5] : nullptr;
}

const IteratedTableRegistration::Index ipCidrRouteTableIndexes[] = {{ASN_IPADDRESS, "ipCidrRouteDest"},
                                                                    {ASN_IPADDRESS, "ipCidrRouteMask"},
                                                                    {ASN_INTEGER, "ipCidrRouteTos"},
                                                                    {ASN_IPADDRESS, "ipCidrRouteNextHop"}};
const unsigned int ipCidrRouteTableColumns[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

ContextRegistrations registrations{"IpForward", tracer};

}  // namespace

IPSNMP_DEFINE_ITERATED_TABLE(ipCidrRouteTable, IpCidrRouteTableTraits, "IpForward")

void init_IpForward(Quor::String8 context) {
  debugUnitInit("IpForward", __func__, __FILE__, __LINE__, context);
  QTRACE(tracer, 1, "init_IpForward initializing oid " << oidText(ipCidrRouteNumber_oid) << " in context \""
                                                       << context << "\"");
  registerRouteNumber("ipCidrRouteNumber_", handle_ipCidrRouteNumber, ipCidrRouteNumber_oid, context);
  initialize_table_ipCidrRouteTable(context);
  registerRouteNumber("inetCidrRouteNumber_", handle_inetCidrRouteNumber, inetCidrRouteNumber_oid, context);
  initialize_table_inetCidrRouteTable(context);
}

void unregister_IpForward(Quor::String8 context) { registrations.unregisterContext(context); }

void initialize_table_ipCidrRouteTable(Quor::String8 context) {
  static const IteratedTableRegistration table{
      "ipCidrRouteTable", ipCidrRouteTable_oid,   HANDLER_CAN_RWRITE, ipCidrRouteTable_handler,
      ipCidrRouteTableIndexes, ipCidrRouteTableColumns, defaultPath,  contextPathFormat,
      entityAs<IpSnmp::IpForwardMib>, IPSNMP_ITERATOR_FUNCTIONS(ipCidrRouteTable)};
  initializeIteratedTable(table, context, registrations);
}

int handle_ipCidrRouteNumber(netsnmp_mib_handler*, netsnmp_handler_registration* reginfo,
                             netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  FLITLOG_BLOCK("IpForward", "int handle_ipCidrRouteNumber(netsnmp_mib_handler*, netsnmp_handler_registration*, "
                             "netsnmp_agent_request_info*, netsnmp_request_info*)");
  return handleScalar(tracer, ipCidrRouteNumberText, readRouteCount, reginfo, reqinfo, requests);
}

int handle_inetCidrRouteNumber(netsnmp_mib_handler*, netsnmp_handler_registration* reginfo,
                               netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  FLITLOG_BLOCK("IpForward", "int handle_inetCidrRouteNumber(netsnmp_mib_handler*, netsnmp_handler_registration*, "
                             "netsnmp_agent_request_info*, netsnmp_request_info*)");
  return handleScalar(tracer, inetCidrRouteNumberText, readInetRouteCount, reginfo, reqinfo, requests);
}

ContextRegistrations& ipForwardRegistrations() { return registrations; }

namespace {

void registerRouteNumber(const char* name, Netsnmp_Node_Handler* handler, std::span<const oid> root,
                         const Quor::String8& context) {
  Snmp::HandlerRegistrationPtr number = newScalarRegistration(name, handler, root, HANDLER_CAN_RONLY, context);
  const Quor::String8 path =
      context.empty() ? Quor::String8(defaultPath) : Quor::format(contextPathFormat, context.str().c_str());
  number->my_reg_void = entityAs<IpSnmp::IpForwardMib>(SnmpUtil::getEntityRelative(path.str().c_str()).ptr());
  registrations.scalarIs(context, number.release());
}

}  // namespace
