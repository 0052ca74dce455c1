// The six functions of a table called as the table-iterator helper calls them, with hand-made hints:
// which hints start the search at their row, at the next row or at the first row, and how loop and
// data contexts keep their row while the table changes.
#include <gtest/gtest.h>

#include <sstream>

#include "MibTree.h"
#include "AgentRequests.h"
#include "Traces.h"
#include "frontend/IpForward.h"
#include "platform/quor/Trace.h"

namespace {

using TableTest::contains;

// A list of varbinds freed with its owner.
struct Varbinds {
  ~Varbinds() { snmp_free_varbind(list); }
  Varbinds& address(const char* text) {
    U8 octets[4];
    Pelt::IpAddr(text).copyToBuffer(octets);
    snmp_varlist_add_variable(&list, nullptr, 0, ASN_IPADDRESS, octets, sizeof octets);
    return *this;
  }
  Varbinds& integer(long value) {
    snmp_varlist_add_variable(&list, nullptr, 0, ASN_INTEGER, &value, sizeof value);
    return *this;
  }
  netsnmp_variable_list* list = nullptr;
};

// The helper's index list of the route table, which the frame fills.
struct IndexList : Varbinds {
  IndexList() { address("0.0.0.0").address("0.0.0.0").integer(0).address("0.0.0.0"); }
  static std::string text(const netsnmp_variable_list* var) {
    U32 networkOrder;
    std::memcpy(&networkOrder, var->val.string, 4);
    std::ostringstream out;
    out << Pelt::IpAddr::fromNetworkOrder(networkOrder);
    return out.str();
  }
};

class IteratedTableFrameTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TableTest::addRoute(*tree.ipForwardMib, "10.0.1.0", 24, "192.0.2.1");
    TableTest::addRoute(*tree.ipForwardMib, "10.0.2.0", 24, "192.0.2.1");
    TableTest::addRoute(*tree.ipForwardMib, "10.0.3.0", 24, "192.0.2.1");
    iinfo.myvoid = tree.ipForwardMib.ptr();
  }

  // get_first_data_point with `hint` (null for none); the loop context is freed at the end unless
  // the test takes it.
  netsnmp_variable_list* first(netsnmp_table_request_info* hint) {
    loop = hint;
    return ipCidrRouteTable_get_first_data_point(&loop, &data, index.list, &iinfo);
  }
  void TearDown() override { ipCidrRouteTable_free_loop_context_at_end(loop, &iinfo); }

  netsnmp_table_request_info hintOf(Varbinds& components, unsigned int count) {
    netsnmp_table_request_info info{};
    info.indexes = components.list;
    info.number_indexes = count;
    return info;
  }
  std::string answeredDest() const { return IndexList::text(index.list); }

  TableTest::MibTree tree;
  netsnmp_iterator_info iinfo{};
  IndexList index;
  void* loop = nullptr;
  void* data = nullptr;
};

// A hint as the table helper hands it over: the index components it parsed, of the types given, and
// the request's index sub-identifiers; and where the search starts (the first row's destination, or
// "none" past the last row).
struct HintCase {
  const char* what;
  std::vector<std::pair<u_char, std::string>> parsed;
  unsigned int count;
  const char* index;
  const char* start;
};

TEST_F(IteratedTableFrameTest, HintStartsTheSearchAtItsRowAtTheNextRowOrAtTheFirstRow) {
  const std::pair<u_char, std::string> dest{ASN_IPADDRESS, "10.0.2.0"}, mask{ASN_IPADDRESS, "255.255.255.0"},
      tos{ASN_INTEGER, "0"}, hop{ASN_IPADDRESS, "192.0.2.1"}, lowerHop{ASN_IPADDRESS, "192.0.2.0"};
  const HintCase cases[] = {
      {"a row's index", {dest, mask, tos, hop}, 4, "10.0.2.0.255.255.255.0.0.192.0.2.1", "10.0.2.0"},
      {"an index between two rows", {dest, mask, tos, lowerHop}, 4, "10.0.2.0.255.255.255.0.0.192.0.2.0", "10.0.2.0"},
      {"an index past the last row", {{ASN_IPADDRESS, "10.0.9.0"}, mask, tos, hop}, 4,
       "10.0.9.0.255.255.255.0.0.192.0.2.1", "none"},
      {"a type of service, which the index does not show", {dest, mask, {ASN_INTEGER, "3"}, lowerHop}, 4,
       "10.0.2.0.255.255.255.0.3.192.0.2.0", "10.0.1.0"},
      {"an index longer than its key's", {dest, mask, tos, lowerHop}, 4, "10.0.2.0.255.255.255.0.0.192.0.2.0.9",
       "10.0.1.0"},
      {"a sub-identifier that the parse cut to 8 bits", {dest, mask, tos, lowerHop}, 4,
       "10.0.2.0.255.255.255.0.0.192.0.2.256", "10.0.1.0"},
      // Read as an INTEGER, the address's four zero octets would be the row's type of service.
      {"a component of the wrong type", {dest, mask, {ASN_IPADDRESS, "0.0.0.0"}, hop}, 4,
       "10.0.2.0.255.255.255.0.0.192.0.2.1", "10.0.1.0"},
      {"a component out of range", {dest, mask, {ASN_INTEGER, "4294967295"}, hop}, 4,
       "10.0.2.0.255.255.255.0.4294967295.192.0.2.1", "10.0.1.0"},
      {"three components", {dest, mask, tos}, 3, "10.0.2.0.255.255.255.0.0", "10.0.1.0"},
  };
  for (const HintCase& c : cases) {
    SCOPED_TRACE(c.what);
    Varbinds components;
    for (const auto& [type, value] : c.parsed) {
      if (type == ASN_IPADDRESS) components.address(value.c_str());
      else components.integer(std::stol(value));
    }
    netsnmp_table_request_info hint = hintOf(components, c.count);
    const TableTest::Oid request = TableTest::oidOf(c.index);
    std::copy(request.begin(), request.end(), hint.index_oid);
    hint.index_oid_len = request.size();
    EXPECT_EQ(first(&hint) ? answeredDest() : "none", c.start);
    ipCidrRouteTable_free_loop_context_at_end(loop, &iinfo);
    loop = nullptr;
  }
}

TEST_F(IteratedTableFrameTest, StepAfterTheRowWasRemovedGoesToTheNextKey) {
  first(nullptr);
  ASSERT_EQ(answeredDest(), "10.0.1.0");
  ipCidrRouteTable_get_next_data_point(&loop, &data, index.list, &iinfo);
  ASSERT_EQ(answeredDest(), "10.0.2.0");
  tree.ipForwardMib->ipCidrRouteTableDel(TableTest::routeKey("10.0.2.0", 24, "192.0.2.1"));
  TableTest::addRoute(*tree.ipForwardMib, "10.0.2.128", 25, "192.0.2.1");
  ASSERT_NE(ipCidrRouteTable_get_next_data_point(&loop, &data, index.list, &iinfo), nullptr);
  EXPECT_EQ(answeredDest(), "10.0.2.128");
  ipCidrRouteTable_get_next_data_point(&loop, &data, index.list, &iinfo);
  EXPECT_EQ(answeredDest(), "10.0.3.0");
}

TEST_F(IteratedTableFrameTest, WalkEndsAfterTheLastRow) {
  first(nullptr);
  ipCidrRouteTable_get_next_data_point(&loop, &data, index.list, &iinfo);
  ipCidrRouteTable_get_next_data_point(&loop, &data, index.list, &iinfo);
  std::ostringstream traces;
  Quor::coverageStream_ = &traces;
  EXPECT_EQ(ipCidrRouteTable_get_next_data_point(&loop, &data, index.list, &iinfo), nullptr);
  Quor::coverageStream_ = nullptr;
  EXPECT_TRUE(contains(traces.str(), "ipCidrRouteTableIterationHelper - iterator is at end"));
  void* none = nullptr;
  EXPECT_EQ(ipCidrRouteTable_get_next_data_point(&none, &data, index.list, &iinfo), nullptr);
}

TEST_F(IteratedTableFrameTest, EmptyTableHasNoFirstRow) {
  tree.ipForwardMib->ipCidrRouteTableDelAll();
  EXPECT_EQ(first(nullptr), nullptr);
}

// A GET of `column` on the row that `dataContext` pins, as the helper hands it to the handler.
struct HandlerCall {
  HandlerCall(void* dataContext, unsigned int column) {
    varbind.type = ASN_NULL;
    request.requestvb = &varbind;
    request.agent_req_info = &reqinfo;
    tableInfo.colnum = column;
    netsnmp_request_add_list_data(&request, netsnmp_create_data_list(TABLE_HANDLER_NAME, &tableInfo, nullptr));
    if (dataContext)
      netsnmp_request_add_list_data(&request, netsnmp_create_data_list(TABLE_ITERATOR_NAME, dataContext, nullptr));
    reqinfo.mode = MODE_GET;
    result = ipCidrRouteTable_handler(nullptr, nullptr, &reqinfo, &request);
  }
  ~HandlerCall() {
    netsnmp_free_request_data_sets(&request);
    snmp_free_var_internals(&varbind);
  }
  netsnmp_variable_list varbind{};
  netsnmp_table_request_info tableInfo{};
  netsnmp_request_info request{};
  netsnmp_agent_request_info reqinfo{};
  int result = 0;
};

TEST_F(IteratedTableFrameTest, DataContextKeepsItsRowAfterRemovalAndLoopEnd) {
  first(nullptr);
  void* pinned = ipCidrRouteTable_make_data_context(loop, &iinfo);
  ipCidrRouteTable_free_loop_context_at_end(loop, &iinfo);
  loop = nullptr;
  tree.ipForwardMib->ipCidrRouteTableDel(TableTest::routeKey("10.0.1.0", 24, "192.0.2.1"));
  {
    HandlerCall get(pinned, 1);
    EXPECT_EQ(get.result, SNMP_ERR_NOERROR);
    ASSERT_EQ(get.varbind.type, ASN_IPADDRESS);
    EXPECT_EQ(IndexList::text(&get.varbind), "10.0.1.0");
  }
  ipCidrRouteTable_free_data_context(pinned, &iinfo);
}

TEST_F(IteratedTableFrameTest, HandlerWithoutDataContextLeavesTheRequest) {
  HandlerCall get(nullptr, 1);
  EXPECT_EQ(get.result, SNMP_ERR_NOERROR);
  EXPECT_EQ(get.varbind.type, ASN_NULL);
  EXPECT_EQ(get.request.status, 0);
}

TEST_F(IteratedTableFrameTest, UnknownColumnIsNoSuchObject) {
  first(nullptr);
  void* pinned = ipCidrRouteTable_make_data_context(loop, &iinfo);
  {
    HandlerCall get(pinned, 17);
    EXPECT_EQ(get.result, SNMP_ERR_NOERROR);
    EXPECT_EQ(get.varbind.type, SNMP_NOSUCHOBJECT);
  }
  ipCidrRouteTable_free_data_context(pinned, &iinfo);
}

TEST_F(IteratedTableFrameTest, TableWithoutContainerHasNoRows) {
  iinfo.myvoid = nullptr;
  EXPECT_EQ(first(nullptr), nullptr);
  EXPECT_EQ(loop, nullptr);
}

}  // namespace
