// IpSwForwarding serves oskelSwFwdIpStatsTable from the statistics entities of the context's IpMib.
// The rows hold no data of their own: each counter column calls an accessor of Ip::SwFwdStats, which
// re-reads /proc/net when its record is stale, so a GET may read the kernel's files inside the
// request. The rows live in a hash map keyed by IP version, whose walk does not follow the index: the
// table is registered without the sorted flag, without a hint and without the serialize handler, and
// the helper of net-snmp picks the row among the one or two there are.
//
// Deliberate and to be kept: the OutForwDatagrams columns read forwDatagrams while the
// InForwDatagrams columns read the computed inForwDatagrams; the discontinuity time is always 0;
// the refresh rate, 500 ms, is the freshness rule of the statistics stated again.
#include "frontend/IpSwForwarding.h"

#include "frontend/ElementaryConversions.h"
#include "frontend/TableRegistration.h"
#include "frontend/UnitRegistration.h"
#include "model/IpMib.h"

namespace {

const Quor::Tracer tracer{"Snmp", "IpSwForwarding"};

const oid oskelSwFwdIpStatsTable_oid[] = {1, 3, 6, 1, 4, 1, 48213, 3, 1, 1, 1};

constexpr int firstCounterColumn = 3;
constexpr int discontinuityTimeColumn = 46;
constexpr int refreshRateColumn = 47;
constexpr double discontinuityTime = 0.0;
constexpr unsigned int refreshRateMilliseconds = 500;

// The counter columns 3 to 45: the accessor, and whether the column is the 64-bit twin.
struct CounterColumn {
  U64 (Ip::SwFwdStats::*accessor)() const;
  bool wide;
  const char* failure32;
  const char* failure64;
};

#define IPSNMP_COUNTER(attr, wide)                                                                      \
  { &Ip::SwFwdStats::attr, wide, "U64ToCounter32 failed for: " #attr, "U64ToCounter64 failed for: " #attr }
const CounterColumn counterColumns[] = {
    IPSNMP_COUNTER(inReceives, false),      IPSNMP_COUNTER(inReceives, true),       // 3, 4
    IPSNMP_COUNTER(inOctets, false),        IPSNMP_COUNTER(inOctets, true),         // 5, 6
    IPSNMP_COUNTER(inHdrErrors, false),     IPSNMP_COUNTER(inNoRoutes, false),      // 7, 8
    IPSNMP_COUNTER(inAddrErrors, false),    IPSNMP_COUNTER(inUnknownProtos, false), // 9, 10
    IPSNMP_COUNTER(inTruncatedPkts, false), IPSNMP_COUNTER(inForwDatagrams, false), // 11, 12
    IPSNMP_COUNTER(inForwDatagrams, true),  IPSNMP_COUNTER(reasmReqds, false),      // 13, 14
    IPSNMP_COUNTER(reasmOKs, false),        IPSNMP_COUNTER(reasmFails, false),      // 15, 16
    IPSNMP_COUNTER(inDiscards, false),      IPSNMP_COUNTER(inDelivers, false),      // 17, 18
    IPSNMP_COUNTER(inDelivers, true),       IPSNMP_COUNTER(outRequests, false),     // 19, 20
    IPSNMP_COUNTER(outRequests, true),      IPSNMP_COUNTER(outNoRoutes, false),     // 21, 22
    IPSNMP_COUNTER(forwDatagrams, false),   IPSNMP_COUNTER(forwDatagrams, true),    // 23, 24
    IPSNMP_COUNTER(outDiscards, false),     IPSNMP_COUNTER(fragReqds, false),       // 25, 26
    IPSNMP_COUNTER(fragOKs, false),         IPSNMP_COUNTER(fragFails, false),       // 27, 28
    IPSNMP_COUNTER(fragCreates, false),     IPSNMP_COUNTER(outTransmits, false),    // 29, 30
    IPSNMP_COUNTER(outTransmits, true),     IPSNMP_COUNTER(outOctets, false),       // 31, 32
    IPSNMP_COUNTER(outOctets, true),        IPSNMP_COUNTER(inMcastPkts, false),     // 33, 34
    IPSNMP_COUNTER(inMcastPkts, true),      IPSNMP_COUNTER(inMcastOctets, false),   // 35, 36
    IPSNMP_COUNTER(inMcastOctets, true),    IPSNMP_COUNTER(outMcastPkts, false),    // 37, 38
    IPSNMP_COUNTER(outMcastPkts, true),     IPSNMP_COUNTER(outMcastOctets, false),  // 39, 40
    IPSNMP_COUNTER(outMcastOctets, true),   IPSNMP_COUNTER(inBcastPkts, false),     // 41, 42
    IPSNMP_COUNTER(inBcastPkts, true),      IPSNMP_COUNTER(outBcastPkts, false),    // 43, 44
    IPSNMP_COUNTER(outBcastPkts, true),                                             // 45
};
#undef IPSNMP_COUNTER
static_assert(std::size(counterColumns) == discontinuityTimeColumn - firstCounterColumn);

// The counter conversions always have the frame's 1024 bytes.
int counter32(U64 value, unsigned char* buffer) {
  return SnmpConvert<unsigned long long, U64ToCounter32F>(value, buffer, 1024);
}
int counter64(U64 value, unsigned char* buffer) {
  return SnmpConvert<unsigned long long, U64ToCounter64F>(value, buffer, 1024);
}

struct OskelSwFwdIpStatsTableTraits {
  using Container = IpSnmp::IpMib;
  using Row = Ip::SwFwdStats;
  static constexpr const char* name = "oskelSwFwdIpStatsTable";
  static constexpr const char* keyName = "Ip::IpVersion";
  static constexpr bool hinted = false;
  static constexpr int bufferSize = 1024;

  static const Container::IpSwFwdStats& collection(const Container& mib) { return mib.ipSwFwdStats(); }
  static void writeIndex(Ip::IpVersion version, IndexWriter& index) { index.integer("ipVersion", version); }
  static bool isColumn(int colnum) { return colnum >= firstCounterColumn && colnum <= refreshRateColumn; }
  static ColumnValue column(int colnum, const Row& row, unsigned char* buffer) {
    if (colnum == discontinuityTimeColumn)
      return {ASN_TIMETICKS, SnmpConvert<double, SecondsToTimeTicksF>(discontinuityTime, buffer, 1024),
              "SecondsToTimeTicks failed for: "};
    if (colnum == refreshRateColumn) return unsignedValue(refreshRateMilliseconds, buffer, "U32ToAsnUnsigned failed for: ");
    const CounterColumn& counter = counterColumns[colnum - firstCounterColumn];
    const U64 value = (row.*counter.accessor)();
    if (counter.wide) return {ASN_COUNTER64, counter64(value, buffer), counter.failure64};
    return {ASN_COUNTER, counter32(value, buffer), counter.failure32};
  }
  static const char* refusedByName(int) { return nullptr; }
};

const IteratedTableRegistration::Index oskelSwFwdIpStatsTableIndexes[] = {{ASN_INTEGER, "oskelSwFwdIpStatsIPVersion"}};
const unsigned int oskelSwFwdIpStatsTableColumns[] = {3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17,
                                                      18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32,
                                                      33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47};

ContextRegistrations registrations{"IpSwForwarding", tracer};

}  // namespace

IPSNMP_DEFINE_ITERATED_TABLE(oskelSwFwdIpStatsTable, OskelSwFwdIpStatsTableTraits, "IpSwForwarding")

void init_IpSwForwarding(Quor::String8 context) {
  debugUnitInit("IpSwForwarding", __func__, __FILE__, __LINE__, context);
  initialize_table_oskelSwFwdIpStatsTable(context);
}

void unregister_IpSwForwarding(Quor::String8 context) { registrations.unregisterContext(context); }

void initialize_table_oskelSwFwdIpStatsTable(Quor::String8 context) {
  static const IteratedTableRegistration table{"oskelSwFwdIpStatsTable",
                                               oskelSwFwdIpStatsTable_oid,
                                               HANDLER_CAN_RONLY,
                                               oskelSwFwdIpStatsTable_handler,
                                               oskelSwFwdIpStatsTableIndexes,
                                               oskelSwFwdIpStatsTableColumns,
                                               ipMibDefaultPath,
                                               ipMibContextPathFormat,
                                               entityAs<IpSnmp::IpMib>,
                                               IPSNMP_ITERATOR_FUNCTIONS(oskelSwFwdIpStatsTable),
                                               false};
  initializeIteratedTable(table, context, registrations);
}

const ContextRegistrations& ipSwForwardingRegistrations() { return registrations; }
