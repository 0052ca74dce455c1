// inetCidrRouteTable: the routes of a context of both IP versions, one row per next hop, the IPv4 rows
// first. Its columns are derived as those of ipCidrRouteTable (RouteColumns.h); the age is 0 and the
// next-hop AS 0, as the MIB's unsigned types cannot carry the -1 of ipCidrRouteAge. The policy is
// 0.0 in every index. A connected route has no next hop (type unknown, zero octets), and a link-local
// IPv6 next hop carries its zone, the interface index (ipv6z, 20 octets). Registered writable, so that
// a SET reaches the handler, which refuses it.
#include "frontend/IpForward.h"
#include "frontend/RouteColumns.h"
#include "frontend/TableRegistration.h"
#include "model/IpForwardMib.h"

namespace {

const oid inetCidrRouteTable_oid[] = {1, 3, 6, 1, 2, 1, 4, 24, 7};
const oid noPolicy[] = {0, 0};

struct InetCidrRouteTableTraits {
  using Container = IpSnmp::IpForwardMib;
  using Row = IpSnmp::InetCidrRouteRow;
  using Key = IpSnmp::InetCidrRouteIndex;
  static constexpr const char* name = "inetCidrRouteTable";
  static constexpr const char* keyName = "IpSnmp::InetCidrRouteIndex";
  static constexpr bool hinted = true;
  static constexpr int bufferSize = 1024;
  using Components = std::tuple<IntegerComponent, OctetStringComponent, UnsignedComponent, ObjectIdComponent,
                                IntegerComponent, OctetStringComponent>;
  static constexpr const char* componentNames[] = {"inetCidrRouteDestType",    "inetCidrRouteDest",
                                                   "inetCidrRoutePfxLen",      "inetCidrRoutePolicy",
                                                   "inetCidrRouteNextHopType", "inetCidrRouteNextHop"};

  static IpSnmp::InetCidrRouteView collection(const Container& mib) { return mib.inetCidrRouteTable(); }
  static Key keyOf(int destType, const Snmp::String& dest, unsigned pfxLen, const std::string& policy,
                   int nextHopType, const Snmp::String& nextHop) {
    if (policy != "0.0") Quor::throwRangeException("no inetCidrRouteTable row has the policy " + policy);
    return Key::of(destType, dest, pfxLen, nextHopType, nextHop);
  }
  static void writeIndex(const Key& key, IndexWriter& index) {
    index.integer("destType", static_cast<int>(key.destType));
    index.octets("dest", key.dest.data(), Key::octetsOf(key.destType));
    index.unsignedInteger("pfxLen", key.pfxLen);
    index.objectId("policy", noPolicy);
    index.integer("nextHopType", static_cast<int>(key.nextHopType));
    index.octets("nextHop", key.nextHop.data(), Key::octetsOf(key.nextHopType));
  }
  static bool isColumn(int colnum) { return colnum >= 7 && colnum <= 17; }
  static ColumnValue column(int colnum, const Row& row, unsigned char* buffer);
  // The columns that the MIB lets a manager write.
  static const char* refusedByName(int colnum) {
    switch (colnum) {
      case 7: return "inetCidrRouteIfIndex";
      case 8: return "inetCidrRouteType";
      case 11: return "inetCidrRouteNextHopAS";
      case 12: return "inetCidrRouteMetric1";
      case 13: return "inetCidrRouteMetric2";
      case 14: return "inetCidrRouteMetric3";
      case 15: return "inetCidrRouteMetric4";
      case 16: return "inetCidrRouteMetric5";
      case 17: return "inetCidrRouteStatus";
      default: return nullptr;
    }
  }
};

ColumnValue InetCidrRouteTableTraits::column(int colnum, const Row& row, unsigned char* buffer) {
  switch (colnum) {
    case 10: {
      ColumnValue age = unsignedValue(0, buffer, "U32ToAsnUnsigned failed for: ");
      age.type = ASN_GAUGE;
      return age;
    }
    case 11: return unsignedValue(0, buffer, "U32ToAsnUnsigned failed for: ");
    default: break;
  }
  // 7 to 9 and 12 to 17, in the order of RouteColumn.
  static constexpr RouteColumn shared[] = {RouteColumn::ifIndex, RouteColumn::type,    RouteColumn::proto,
                                           RouteColumn::metric1, RouteColumn::metric2, RouteColumn::metric3,
                                           RouteColumn::metric4, RouteColumn::metric5, RouteColumn::status};
  return routeColumnValue(shared[colnum <= 9 ? colnum - 7 : colnum - 9], row, buffer);
}

const IteratedTableRegistration::Index inetCidrRouteTableIndexes[] = {
    {ASN_INTEGER, "inetCidrRouteDestType"},    {ASN_OCTET_STR, "inetCidrRouteDest"},
    {ASN_UNSIGNED, "inetCidrRoutePfxLen"},     {ASN_OBJECT_ID, "inetCidrRoutePolicy"},
    {ASN_INTEGER, "inetCidrRouteNextHopType"}, {ASN_OCTET_STR, "inetCidrRouteNextHop"}};
const unsigned int inetCidrRouteTableColumns[] = {7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};

}  // namespace

IPSNMP_DEFINE_ITERATED_TABLE(inetCidrRouteTable, InetCidrRouteTableTraits, "IpForward")

void initialize_table_inetCidrRouteTable(Quor::String8 context) {
  static const IteratedTableRegistration table{
      "inetCidrRouteTable", inetCidrRouteTable_oid, HANDLER_CAN_RWRITE, inetCidrRouteTable_handler,
      inetCidrRouteTableIndexes, inetCidrRouteTableColumns, ipForwardMibDefaultPath, ipForwardMibContextPathFormat,
      entityAs<IpSnmp::IpForwardMib>, IPSNMP_ITERATOR_FUNCTIONS(inetCidrRouteTable)};
  initializeIteratedTable(table, context, ipForwardRegistrations());
}
