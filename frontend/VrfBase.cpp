// VrfBase serves the VRF tables of the process-wide IpSnmp::IpVrfMib. oskelVrfTable is indexed by
// the VRF's name as a plain octet string (length first, not implied), which is also the order of its
// collection: shorter names first. The routing status is a BITS octet, the route distinguisher its
// text form, the state active(1) or 2. oskelVrfIfTable names the VRF of each interface that sits in
// a non-default one.
#include "frontend/VrfBase.h"

#include "frontend/Conversions.h"
#include "frontend/ElementaryConversions.h"
#include "frontend/TableRegistration.h"
#include "frontend/UnitRegistration.h"
#include "model/IpVrfMib.h"

namespace {

const Quor::Tracer tracer{"Snmp", "VrfBase"};

const oid oskelVrfTable_oid[] = {1, 3, 6, 1, 4, 1, 48213, 3, 18, 1, 1};
const oid oskelVrfIfTable_oid[] = {1, 3, 6, 1, 4, 1, 48213, 3, 18, 1, 2};

constexpr const char* vrfMibPath = "snmp/ip/ipvrfmib";
constexpr int routeDistinguisherLimit = 256;
constexpr int vrfNameLimit = 100;

struct OskelVrfTableTraits {
  using Container = IpSnmp::IpVrfMib;
  using Row = IpSnmp::VrfTableEntry;
  static constexpr const char* name = "oskelVrfTable";
  static constexpr const char* keyName = "Snmp::String";
  static constexpr bool hinted = true;
  static constexpr int bufferSize = 1024;
  using Components = std::tuple<OctetStringComponent>;
  static constexpr const char* componentNames[] = {"oskelVrfName"};

  static const Container::VrfTable& collection(const Container& mib) { return mib.vrfTable(); }
  static Snmp::String keyOf(const Snmp::String& vrfName) { return vrfName; }
  static void writeIndex(const Snmp::String& vrfName, IndexWriter& index) {
    index.octets("vrfName", vrfName, vrfNameLimit);
  }
  static bool isColumn(int colnum) { return colnum >= 2 && colnum <= 4; }
  static ColumnValue column(int colnum, const Row& row, unsigned char* buffer) {
    switch (colnum) {
      case 2:
        return {ASN_OCTET_STR, RoutingStatusToAsnBits(row.vrfRoutingStatus(), buffer, 1024),
                "RoutingStatusToAsnBits failed for: vrfRoutingStatus"};
      case 3:
        return {ASN_OCTET_STR,
                RouteDistinguisherToAsnOctetString(row.routeDistinguisher(), buffer, routeDistinguisherLimit),
                "RouteDistinguisherToAsnOctetString failed for: routeDistinguisher",
                routeDistinguisherLimit,
                "routeDistinguisher",
                vrfMibPath};
      default:
        return {ASN_INTEGER, VrfStateToAsnInteger(row.vrfState(), buffer, 1024),
                "VrfStateToAsnInteger failed for: vrfState"};
    }
  }
  static const char* refusedByName(int) { return nullptr; }
};

struct OskelVrfIfTableTraits {
  using Container = IpSnmp::IpVrfMib;
  using Row = IpSnmp::VrfIfTableEntry;
  static constexpr const char* name = "oskelVrfIfTable";
  static constexpr const char* keyName = "U32";
  static constexpr bool hinted = true;
  static constexpr int bufferSize = 1024;
  using Components = std::tuple<IntegerComponent>;
  static constexpr const char* componentNames[] = {"ifIndex"};

  static const Container::VrfIfTable& collection(const Container& mib) { return mib.vrfIfTable(); }
  static U32 keyOf(int ifIndex) { return static_cast<U32>(ifIndex); }
  static void writeIndex(U32 ifIndex, IndexWriter& index) { index.integer("ifIndex", static_cast<int>(ifIndex)); }
  static bool isColumn(int colnum) { return colnum == 1; }
  static ColumnValue column(int, const Row& row, unsigned char* buffer) {
    return {ASN_OCTET_STR,
            SnmpConvert<const Quor::String8&, StringToAsnOctetStringF>(row.vrfName(), buffer, vrfNameLimit),
            "StringToAsnOctetString failed for: vrfName",
            vrfNameLimit,
            "vrfName",
            vrfMibPath};
  }
  static const char* refusedByName(int) { return nullptr; }
};

const IteratedTableRegistration::Index oskelVrfTableIndexes[] = {{ASN_OCTET_STR, "oskelVrfName"}};
const unsigned int oskelVrfTableColumns[] = {2, 3, 4};
const IteratedTableRegistration::Index oskelVrfIfTableIndexes[] = {{ASN_INTEGER, "ifIndex"}};
const unsigned int oskelVrfIfTableColumns[] = {1};

ContextRegistrations registrations{"VrfBase", tracer};

}  // namespace

IPSNMP_DEFINE_ITERATED_TABLE(oskelVrfTable, OskelVrfTableTraits, "VrfBase")
IPSNMP_DEFINE_ITERATED_TABLE(oskelVrfIfTable, OskelVrfIfTableTraits, "VrfBase")

void init_VrfBase(Quor::String8 context) {
  debugUnitInit("VrfBase", __func__, __FILE__, __LINE__, context);
  initialize_table_oskelVrfTable(context);
  initialize_table_oskelVrfIfTable(context);
}

void unregister_VrfBase(Quor::String8 context) { registrations.unregisterContext(context); }

// No context path: registered in the default context only.
void initialize_table_oskelVrfTable(Quor::String8 context) {
  static const IteratedTableRegistration table{
      "oskelVrfTable", oskelVrfTable_oid, HANDLER_CAN_RONLY, oskelVrfTable_handler, oskelVrfTableIndexes,
      oskelVrfTableColumns, vrfMibPath, nullptr, entityAs<IpSnmp::IpVrfMib>, IPSNMP_ITERATOR_FUNCTIONS(oskelVrfTable)};
  initializeIteratedTable(table, context, registrations);
}

void initialize_table_oskelVrfIfTable(Quor::String8 context) {
  static const IteratedTableRegistration table{
      "oskelVrfIfTable", oskelVrfIfTable_oid, HANDLER_CAN_RONLY, oskelVrfIfTable_handler, oskelVrfIfTableIndexes,
      oskelVrfIfTableColumns, vrfMibPath, nullptr, entityAs<IpSnmp::IpVrfMib>,
      IPSNMP_ITERATOR_FUNCTIONS(oskelVrfIfTable)};
  initializeIteratedTable(table, context, registrations);
}

const ContextRegistrations& vrfBaseRegistrations() { return registrations; }
