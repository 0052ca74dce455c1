// The address tables of IpBase. ipAddressTable lists every address of either version, IPv4 first;
// ipAddrTable is its IPv4 view, indexed by the address written as four bare sub-identifiers;
// ipAddressPrefixTable has one row per prefix and interface, whose columns are all constants, so
// that its rows differ by index alone. The system keeps no times per address: created and last
// changed are the same fixed value on every row, and origin, row status and storage type are
// constants. ipAddressTable is registered writable so that a SET reaches its handler, which refuses
// it naming the MIB's writable columns.
#include "frontend/IpBaseTables.h"

#include "frontend/Conversions.h"
#include "frontend/ElementaryConversions.h"
#include "frontend/IpBase.h"
#include "frontend/TableRegistration.h"
#include "model/IpMib.h"

namespace {

// An octet-string index holds an address of at most 16 bytes.
constexpr int addressIndexBufferSize = 255;

const oid ipAddrTable_oid[] = {1, 3, 6, 1, 2, 1, 4, 20};
const oid ipAddressPrefixTable_oid[] = {1, 3, 6, 1, 2, 1, 4, 32};
const oid ipAddressTable_oid[] = {1, 3, 6, 1, 2, 1, 4, 34};

struct IpAddrTableTraits {
  using Container = IpSnmp::IpMib;
  using Row = IpSnmp::IpAddrEntry;
  static constexpr const char* name = "ipAddrTable";
  static constexpr const char* keyName = "Pelt::IpAddr";
  static constexpr bool hinted = true;
  static constexpr int bufferSize = 1024;
  using Components = std::tuple<IpAddressComponent>;
  static constexpr const char* componentNames[] = {"ipAdEntAddr"};

  static const Container::IpAddrTable& collection(const Container& mib) { return mib.ipAddrTable(); }
  static Pelt::IpAddr keyOf(Pelt::IpAddr addr) { return addr; }
  static void writeIndex(Pelt::IpAddr addr, IndexWriter& index) { index.ipAddress("ipAdEntAddr", addr); }
  static bool isColumn(int colnum) { return colnum >= 1 && colnum <= 5; }
  static ColumnValue column(int colnum, const Row& row, unsigned char* buffer) {
    switch (colnum) {
      case 1: return ipAddressValue(row.ipAdEntAddr(), buffer, "PeltIpAddrToAsnOctetString failed for: ipAdEntAddr");
      case 2:
        return integerValue(static_cast<int>(row.ipAdEntIfIndex()), buffer, "S32ToAsnInteger failed for: ipAdEntIfIndex");
      case 3:
        return ipAddressValue(row.ipAdEntNetMask(), buffer, "PeltIpAddrToAsnOctetString failed for: ipAdEntNetMask");
      case 4: return integerValue(0, buffer, "S32ToAsnInteger failed for: ");  // ipAdEntBcastAddr
      default: return integerValue(65535, buffer, "S32ToAsnInteger failed for: ");  // ipAdEntReasmMaxSize
    }
  }
  static const char* refusedByName(int) { return nullptr; }
};

struct IpAddressPrefixTableTraits {
  using Container = IpSnmp::IpMib;
  using Row = IpSnmp::QuorIpAddressPrefixTable;
  static constexpr const char* name = "ipAddressPrefixTable";
  static constexpr const char* keyName = "IpSnmp::IpAddressPrefixKey";
  static constexpr bool hinted = true;
  static constexpr int bufferSize = 1024;
  using Components = std::tuple<IntegerComponent, IpVersionComponent, OctetStringComponent, UnsignedComponent>;
  static constexpr const char* componentNames[] = {"ipAddressPrefixIfIndex", "ipAddressPrefixType",
                                                   "ipAddressPrefixPrefix", "ipAddressPrefixLength"};

  static const Container::IpAddressPrefixTable& collection(const Container& mib) { return mib.ipAddressPrefixTable(); }
  static IpSnmp::IpAddressPrefixKey keyOf(int ifIndex, Ip::IpVersion version, const Snmp::String& bytes,
                                          unsigned int length) {
    return {static_cast<U32>(ifIndex), version, bytes, length};
  }
  static void writeIndex(const IpSnmp::IpAddressPrefixKey& key, IndexWriter& index) {
    index.integer("ifIndex", static_cast<int>(key.ifIndex));
    index.integer("version", key.version);
    index.octets("bytes", key.bytes, addressIndexBufferSize);
    index.unsignedInteger("length", key.length);
  }
  static bool isColumn(int colnum) { return colnum >= 5 && colnum <= 9; }
  static ColumnValue column(int colnum, const Row&, unsigned char* buffer) {
    constexpr unsigned int infiniteLifetime = 4294967295u;
    switch (colnum) {
      case 5: return integerValue(1, buffer, "S32ToAsnInteger failed for: ");  // origin: other
      case 6: return integerValue(1, buffer, "S32ToAsnInteger failed for: ");  // on link: true
      case 7: return integerValue(2, buffer, "S32ToAsnInteger failed for: ");  // autonomous: false
      default: return unsignedValue(infiniteLifetime, buffer, "U32ToAsnUnsigned failed for: ");
    }
  }
  static const char* refusedByName(int) { return nullptr; }
};

struct IpAddressTableTraits {
  using Container = IpSnmp::IpMib;
  using Row = IpSnmp::IpAddressEntry;
  static constexpr const char* name = "ipAddressTable";
  static constexpr const char* keyName = "IpSnmp::InetAddress";
  static constexpr bool hinted = true;
  static constexpr int bufferSize = 1024;
  using Components = std::tuple<IpVersionComponent, OctetStringComponent>;
  static constexpr const char* componentNames[] = {"ipAddressAddrType", "ipAddressAddr"};

  static const Container::IpAddressTable& collection(const Container& mib) { return mib.ipAddressTable(); }
  static IpSnmp::InetAddress keyOf(Ip::IpVersion version, const Snmp::String& bytes) { return {version, bytes}; }
  static void writeIndex(const IpSnmp::InetAddress& key, IndexWriter& index) {
    index.integer("addrVersion", key.version);
    index.octets("addrBytes", key.bytes, addressIndexBufferSize);
  }
  static bool isColumn(int colnum) { return colnum >= 3 && colnum <= 11; }
  static ColumnValue column(int colnum, const Row& row, unsigned char* buffer) {
    switch (colnum) {
      case 3: return integerValue(static_cast<int>(row.ifIndex()), buffer, "S32ToAsnInteger failed for: ifIndex");
      case 4: return integerValue(row.addressType(), buffer, "S32ToAsnInteger failed for: addressType");
      case 5:
        return {ASN_OBJECT_ID, IpAddressPrefixEntryToAsnOid(row.prefixEntry(), buffer, 1024),
                "IpAddressPrefixEntryToAsnOid failed for: prefixEntry"};
      case 7: return integerValue(row.addressStatus(), buffer, "S32ToAsnInteger failed for: addressStatus");
      case 8:
      case 9:
        return {ASN_TIMETICKS, SnmpConvert<double, NowSecondsToUptimeTimeTicksF>(0.0, buffer, 1024),
                "NowSecondsToUptimeTimeTicks failed for: "};
      default: return integerValue(1, buffer, "S32ToAsnInteger failed for: ");  // 6, 10, 11
    }
  }
  // The columns that the MIB lets a manager write.
  static const char* refusedByName(int colnum) {
    switch (colnum) {
      case 3: return "ipAddressIfIndex";
      case 4: return "ipAddressType";
      case 7: return "ipAddressStatus";
      case 10: return "ipAddressRowStatus";
      case 11: return "ipAddressStorageType";
      default: return nullptr;
    }
  }
};

const IteratedTableRegistration::Index ipAddrTableIndexes[] = {{ASN_IPADDRESS, "ipAdEntAddr"}};
const unsigned int ipAddrTableColumns[] = {1, 2, 3, 4, 5};
const IteratedTableRegistration::Index ipAddressPrefixTableIndexes[] = {{ASN_INTEGER, "ipAddressPrefixIfIndex"},
                                                                        {ASN_INTEGER, "ipAddressPrefixType"},
                                                                        {ASN_OCTET_STR, "ipAddressPrefixPrefix"},
                                                                        {ASN_UNSIGNED, "ipAddressPrefixLength"}};
const unsigned int ipAddressPrefixTableColumns[] = {5, 6, 7, 8, 9};
const IteratedTableRegistration::Index ipAddressTableIndexes[] = {{ASN_INTEGER, "ipAddressAddrType"},
                                                                  {ASN_OCTET_STR, "ipAddressAddr"}};
const unsigned int ipAddressTableColumns[] = {3, 4, 5, 6, 7, 8, 9, 10, 11};

}  // namespace

IPSNMP_DEFINE_ITERATED_TABLE(ipAddrTable, IpAddrTableTraits, "IpBase")
IPSNMP_DEFINE_ITERATED_TABLE(ipAddressPrefixTable, IpAddressPrefixTableTraits, "IpBase")
IPSNMP_DEFINE_ITERATED_TABLE(ipAddressTable, IpAddressTableTraits, "IpBase")

void initialize_table_ipAddrTable(Quor::String8 context) {
  static const IteratedTableRegistration table{
      "ipAddrTable", ipAddrTable_oid, HANDLER_CAN_RONLY, ipAddrTable_handler, ipAddrTableIndexes,
      ipAddrTableColumns, ipMibDefaultPath, ipMibContextPathFormat, entityAs<IpSnmp::IpMib>,
      IPSNMP_ITERATOR_FUNCTIONS(ipAddrTable)};
  initializeIteratedTable(table, context, ipBaseRegistrations());
}

void initialize_table_ipAddressPrefixTable(Quor::String8 context) {
  static const IteratedTableRegistration table{
      "ipAddressPrefixTable", ipAddressPrefixTable_oid, HANDLER_CAN_RONLY, ipAddressPrefixTable_handler,
      ipAddressPrefixTableIndexes, ipAddressPrefixTableColumns, ipMibDefaultPath, ipMibContextPathFormat,
      entityAs<IpSnmp::IpMib>, IPSNMP_ITERATOR_FUNCTIONS(ipAddressPrefixTable)};
  initializeIteratedTable(table, context, ipBaseRegistrations());
}

void initialize_table_ipAddressTable(Quor::String8 context) {
  static const IteratedTableRegistration table{
      "ipAddressTable", ipAddressTable_oid, HANDLER_CAN_RWRITE, ipAddressTable_handler, ipAddressTableIndexes,
      ipAddressTableColumns, ipMibDefaultPath, ipMibContextPathFormat, entityAs<IpSnmp::IpMib>,
      IPSNMP_ITERATOR_FUNCTIONS(ipAddressTable)};
  initializeIteratedTable(table, context, ipBaseRegistrations());
}
