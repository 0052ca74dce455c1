// ipNetToMediaTable: one row per IPv4 neighbour of the context, by interface index and address. A row
// holds only its key and the way into the shared-memory ARP table, so the MAC address (column 2) and
// the entry type (column 4) are looked up there at each GET, each column anew: two columns of one row
// may show two states of the neighbour. A neighbour that has left the shared-memory table reads as
// six zero bytes and dynamic until the ARP machine takes the row away; that is not an error. The MIB
// makes every column read-create, so the table is registered writable and its handler refuses a SET
// naming the column: an entry cannot be deleted through this table.
#include "frontend/Conversions.h"
#include "frontend/ElementaryConversions.h"
#include "frontend/IpBase.h"
#include "frontend/IpBaseTables.h"
#include "frontend/TableRegistration.h"
#include "model/IpMib.h"

namespace {

const oid ipNetToMediaTable_oid[] = {1, 3, 6, 1, 2, 1, 4, 22};

// Room for the longest physical address the column could carry; the limit names the default path in
// every context.
constexpr int physAddressLimit = 65535;

struct IpNetToMediaTableTraits {
  using Container = IpSnmp::IpMib;
  using Row = IpSnmp::ArpTableEntry;
  static constexpr const char* name = "ipNetToMediaTable";
  static constexpr const char* keyName = "IpSnmp::ArpTableIndex";
  static constexpr bool hinted = true;
  static constexpr int bufferSize = physAddressLimit;
  using Components = std::tuple<IntegerComponent, IpAddressComponent>;
  static constexpr const char* componentNames[] = {"ipNetToMediaIfIndex", "ipNetToMediaNetAddress"};

  static const Container::ArpTable& collection(const Container& mib) { return mib.arpTable(); }
  static IpSnmp::ArpTableIndex keyOf(int ifIndex, Pelt::IpAddr netAddress) {
    return {static_cast<U32>(ifIndex), netAddress};
  }
  static void writeIndex(const IpSnmp::ArpTableIndex& key, IndexWriter& index) {
    index.integer("ifIndex", static_cast<int>(key.ifIndex));
    index.ipAddress("netAddress", key.ipAddr);
  }
  static bool isColumn(int colnum) { return colnum >= 1 && colnum <= 4; }
  static ColumnValue column(int colnum, const Row& row, unsigned char* buffer) {
    switch (colnum) {
      case 1: return integerValue(static_cast<int>(row.ifIndex()), buffer, "S32ToAsnInteger failed for: ifIndex");
      case 2:
        return {ASN_OCTET_STR,
                SnmpConvert<const Pelt::EthAddr&, PeltEthAddrToAsnOctetStringF>(row.physAddress(), buffer,
                                                                                physAddressLimit),
                "PeltEthAddrToAsnOctetString failed for: physAddress",
                physAddressLimit,
                "physAddress",
                ipMibDefaultPath};
      case 3: return ipAddressValue(row.netAddress(), buffer, "PeltIpAddrToAsnOctetString failed for: netAddress");
      default:
        return {ASN_INTEGER, ArpEntryStaticToAsnInteger(row.arpEntry(), buffer, 1024),
                "ArpEntryStaticToAsnInteger failed for: arpEntry"};
    }
  }
  // Every column: the MIB lets a manager write them all.
  static const char* refusedByName(int colnum) {
    static constexpr const char* names[] = {"ipNetToMediaIfIndex", "ipNetToMediaPhysAddress",
                                            "ipNetToMediaNetAddress", "ipNetToMediaType"};
    return isColumn(colnum) ? names[colnum - 1] : nullptr;
  }
};

const IteratedTableRegistration::Index ipNetToMediaTableIndexes[] = {{ASN_INTEGER, "ipNetToMediaIfIndex"},
                                                                     {ASN_IPADDRESS, "ipNetToMediaNetAddress"}};
const unsigned int ipNetToMediaTableColumns[] = {1, 2, 3, 4};

}  // namespace

IPSNMP_DEFINE_ITERATED_TABLE(ipNetToMediaTable, IpNetToMediaTableTraits, "IpBase")

void initialize_table_ipNetToMediaTable(Quor::String8 context) {
  static const IteratedTableRegistration table{
      "ipNetToMediaTable", ipNetToMediaTable_oid, HANDLER_CAN_RWRITE, ipNetToMediaTable_handler,
      ipNetToMediaTableIndexes, ipNetToMediaTableColumns, ipMibDefaultPath, ipMibContextPathFormat,
      entityAs<IpSnmp::IpMib>, IPSNMP_ITERATOR_FUNCTIONS(ipNetToMediaTable)};
  initializeIteratedTable(table, context, ipBaseRegistrations());
}
