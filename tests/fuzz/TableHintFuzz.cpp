// The hint of every iterated table: the index varbinds of a request, of any number, types, lengths
// and values, handed to <table>_get_first_data_point as the table-iterator helper hands them.
//
// Input: a byte that picks the table, a byte that gives number_indexes (the varbinds' count unless
// its high bit is set), then varbinds of a type byte, a length byte and that many value bytes. A type
// byte below 0x80 picks one of the types that index components have, any other is taken as it is.
// The values are stored as the agent library stores received ones, and an integer is read from the
// first bytes of the value. The request's index sub-identifiers are those that the varbinds build, as
// the helper builds a row's, so that a key absent from the table can write back exactly that index.
//
// Property: a hint can only shorten a search, never change its answer, so the rows walked from the
// hinted start (a row it names, the first row not below its key, or the first row) are the last rows
// of the walk from the first row. The statistics table reads no hint;
// whatever the helper left in its loop context must not change its walk either.
#include <string>
#include <vector>

#include "FuzzTargets.h"
#include "MibTree.h"
#include "frontend/IpBaseTables.h"
#include "frontend/IpForward.h"
#include "frontend/IpSwForwarding.h"
#include "frontend/VrfBase.h"
#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/TableEntity.h"

namespace {

struct Table {
  Netsnmp_First_Data_Point* first;
  Netsnmp_Next_Data_Point* next;
  Netsnmp_Free_Loop_Context* freeLoop;
  void* container;
};

// Containers at their paths with a few rows in every hinted table.
class Tables {
 public:
  Tables() {
    TableTest::addRoute(*tree_.ipForwardMib, "0.0.0.0", 0, "192.0.2.254");
    TableTest::addRoute(*tree_.ipForwardMib, "10.0.1.0", 24, "192.0.2.1");
    TableTest::addRoute(*tree_.ipForwardMib, "10.0.1.0", 24, "192.0.2.2", 2);
    TableTest::addIpv4Address(*tree_.ipMib, "10.0.0.1", 24, 1);
    TableTest::addIpv4Address(*tree_.ipMib, "192.0.2.7", 32, 3);
    TableTest::addIpv6Address(*tree_.ipMib, "2001:db8::1", 64, 2);
    arp_->mount("", Tarn::TableType::inProcess);
    const Vrf::VrfIdMap::VrfId defaultVrf(0);
    tree_.ipMib->arpTableIs({1, Pelt::IpAddr("10.0.0.9")}, Pelt::IntfId("Ethernet1"), arp_, defaultVrf);
    tree_.ipMib->arpTableIs({2, Pelt::IpAddr("10.0.0.5")}, Pelt::IntfId("Ethernet2"), arp_, defaultVrf);
    tree_.ipVrfMib->vrfTableIs(Snmp::String("red"), nullptr, nullptr);
    tree_.ipVrfMib->vrfTableIs(Snmp::String("blue"), nullptr, nullptr);
    tree_.ipVrfMib->vrfIfTableIs(7)->vrfNameIs(Snmp::String("red"));
    tree_.ipVrfMib->vrfIfTableIs(3);
    tree_.ipMib->ipSwFwdStatsIs(Ip::ipVersion4, Quor::Name("default"));
    tree_.ipMib->ipSwFwdStatsIs(Ip::ipVersion6, Quor::Name("default"));
  }

  std::vector<Table> all() const {
    void* ipMib = tree_.ipMib.ptr();
    void* vrfMib = tree_.ipVrfMib.ptr();
    return {
        {ipCidrRouteTable_get_first_data_point, ipCidrRouteTable_get_next_data_point,
         ipCidrRouteTable_free_loop_context_at_end, tree_.ipForwardMib.ptr()},
        {ipAddrTable_get_first_data_point, ipAddrTable_get_next_data_point,
         ipAddrTable_free_loop_context_at_end, ipMib},
        {ipAddressPrefixTable_get_first_data_point, ipAddressPrefixTable_get_next_data_point,
         ipAddressPrefixTable_free_loop_context_at_end, ipMib},
        {ipAddressTable_get_first_data_point, ipAddressTable_get_next_data_point,
         ipAddressTable_free_loop_context_at_end, ipMib},
        {ipNetToMediaTable_get_first_data_point, ipNetToMediaTable_get_next_data_point,
         ipNetToMediaTable_free_loop_context_at_end, ipMib},
        {oskelVrfTable_get_first_data_point, oskelVrfTable_get_next_data_point,
         oskelVrfTable_free_loop_context_at_end, vrfMib},
        {oskelVrfIfTable_get_first_data_point, oskelVrfIfTable_get_next_data_point,
         oskelVrfIfTable_free_loop_context_at_end, vrfMib},
        {oskelSwFwdIpStatsTable_get_first_data_point, oskelSwFwdIpStatsTable_get_next_data_point,
         oskelSwFwdIpStatsTable_free_loop_context_at_end, ipMib},
    };
  }

 private:
  TableTest::MibTree tree_;
  Quor::Ptr<Arp::Table::Status> arp_ = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
};

// A list of varbinds freed with its owner.
struct Varbinds {
  Varbinds() = default;
  Varbinds(const Varbinds&) = delete;
  Varbinds& operator=(const Varbinds&) = delete;
  ~Varbinds() { snmp_free_varbind(list); }
  netsnmp_variable_list* add(u_char type, const std::uint8_t* value, std::size_t length) {
    netsnmp_variable_list* var = snmp_varlist_add_variable(&list, nullptr, 0, ASN_OCTET_STR, value, length);
    if (var) var->type = type;
    return var;
  }
  std::size_t count() const {
    std::size_t n = 0;
    for (const netsnmp_variable_list* var = list; var; var = var->next_variable) ++n;
    return n;
  }
  netsnmp_variable_list* list = nullptr;
};

u_char typeOf(std::uint8_t byte) {
  constexpr u_char componentTypes[] = {ASN_INTEGER,   ASN_UNSIGNED,  ASN_OCTET_STR, ASN_IPADDRESS,
                                       ASN_OBJECT_ID, ASN_COUNTER64, ASN_NULL};
  return byte < 0x80 ? componentTypes[byte % std::size(componentTypes)] : byte;
}

// The index that the table wrote for its current row, as bytes.
std::string indexText(const netsnmp_variable_list* var) {
  std::string text;
  for (; var; var = var->next_variable) {
    text += char(var->type);
    text.append(reinterpret_cast<const char*>(var->val.string), var->val_len);
    text += '|';
  }
  return text;
}

// The indexes of the rows from the start that `hint` gives (none: the first row) to the end.
std::vector<std::string> walk(const Table& table, netsnmp_table_request_info* hint) {
  Varbinds index;
  for (int i = 0; i < 8; ++i) index.add(ASN_NULL, nullptr, 0);
  netsnmp_iterator_info iinfo{};
  iinfo.myvoid = table.container;
  void* loop = hint;
  void* data = nullptr;
  std::vector<std::string> rows;
  for (auto* at = table.first(&loop, &data, index.list, &iinfo); at; at = table.next(&loop, &data, index.list, &iinfo))
    rows.push_back(indexText(index.list));
  table.freeLoop(loop, &iinfo);
  return rows;
}

}  // namespace

namespace Fuzz {

int tableHint(const std::uint8_t* data, std::size_t size) {
  static const Tables tables;
  static const std::vector<Table> all = tables.all();
  Input input(data, size);
  const Table& table = all[input.byte() % all.size()];
  const std::uint8_t claimed = input.byte();
  Varbinds components;
  while (input.left()) {
    const u_char type = typeOf(input.byte());
    std::size_t length;
    const std::uint8_t* value = input.take(input.byte(), &length);
    components.add(type, value, length);
  }
  netsnmp_table_request_info hint{};
  hint.indexes = components.list;
  hint.number_indexes = claimed & 0x80 ? claimed & 0x7f : static_cast<unsigned int>(components.count());
  if (build_oid_noalloc(hint.index_oid, MAX_OID_LEN, &hint.index_oid_len, nullptr, 0, components.list) !=
      SNMPERR_SUCCESS)
    hint.index_oid_len = 0;
  const std::vector<std::string> fromFirst = walk(table, nullptr);
  const std::vector<std::string> hinted = walk(table, &hint);
  require(hinted.size() <= fromFirst.size() &&
              std::equal(hinted.begin(), hinted.end(), fromFirst.end() - static_cast<std::ptrdiff_t>(hinted.size())),
          "a hint changed the rows of a search");
  return 0;
}

}  // namespace Fuzz
