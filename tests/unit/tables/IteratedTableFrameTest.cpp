// The six functions of a table called as the table-iterator helper calls them, with hand-made hints:
// which hints start the search at their row, which fall back to the first row and with what trace,
// and how loop and data contexts keep their row while the table changes.
#include <gtest/gtest.h>

#include <sstream>

#include "MibTree.h"
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
  Varbinds& octets(const char* text) {
    snmp_varlist_add_variable(&list, nullptr, 0, ASN_OCTET_STR, text, std::strlen(text));
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

  // get_first_data_point with `hint` (null for none), tracing into `traces`; the loop context is
  // freed at the end unless the test takes it.
  netsnmp_variable_list* first(netsnmp_table_request_info* hint, std::string* traces = nullptr) {
    std::ostringstream out;
    Quor::coverageStream_ = &out;
    loop = hint;
    netsnmp_variable_list* found = ipCidrRouteTable_get_first_data_point(&loop, &data, index.list, &iinfo);
    Quor::coverageStream_ = nullptr;
    if (traces) *traces = out.str();
    return found;
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

TEST_F(IteratedTableFrameTest, HintOfAnExistingRowStartsAtThatRow) {
  Varbinds components;
  components.address("10.0.2.0").address("255.255.255.0").integer(0).address("192.0.2.1");
  netsnmp_table_request_info hint = hintOf(components, 4);
  std::string traces;
  ASSERT_NE(first(&hint, &traces), nullptr);
  EXPECT_EQ(answeredDest(), "10.0.2.0");
  EXPECT_TRUE(contains(traces, "hintMatched=1")) << traces;
  EXPECT_TRUE(contains(traces, "hint component ipCidrRouteDest is '10.0.2.0'")) << traces;
}

TEST_F(IteratedTableFrameTest, HintWithoutItsRowStartsAtTheFirstRow) {
  Varbinds components;
  components.address("10.0.2.0").address("255.255.255.0").integer(3).address("192.0.2.1");
  netsnmp_table_request_info hint = hintOf(components, 4);
  std::string traces;
  ASSERT_NE(first(&hint, &traces), nullptr);
  EXPECT_EQ(answeredDest(), "10.0.1.0");
  EXPECT_TRUE(contains(traces, "not found in table")) << traces;
  EXPECT_TRUE(contains(traces, "hintMatched=0")) << traces;
}

TEST_F(IteratedTableFrameTest, ComponentOfTheWrongTypeIsNotCountedButTheOthersAreRead) {
  Varbinds components;
  components.address("10.0.2.0").octets("mask").integer(0).address("192.0.2.1");
  netsnmp_table_request_info hint = hintOf(components, 4);
  std::string traces;
  first(&hint, &traces);
  EXPECT_EQ(answeredDest(), "10.0.1.0");
  EXPECT_TRUE(contains(traces, "hint for ipCidrRouteMask has incorrect type! Expecting 64 but got 4")) << traces;
  EXPECT_TRUE(contains(traces, "hint component ipCidrRouteNextHop is '192.0.2.1'")) << traces;
  EXPECT_TRUE(contains(traces, "ipCidrRouteTable_get_first_data_point - needed 4 components, found only 3")) << traces;
}

TEST_F(IteratedTableFrameTest, ComponentOutOfRangeIsNotCounted) {
  Varbinds components;
  // A sub-identifier of 2^32 - 1, which an INTEGER index cannot hold.
  components.address("10.0.2.0").address("255.255.255.0").integer(4294967295l).address("192.0.2.1");
  netsnmp_table_request_info hint = hintOf(components, 4);
  std::string traces;
  first(&hint, &traces);
  EXPECT_EQ(answeredDest(), "10.0.1.0");
  EXPECT_TRUE(contains(traces, "hint for index ipCidrRouteTos of ipCidrRouteTable is out of range! ")) << traces;
}

TEST_F(IteratedTableFrameTest, PartialIndexIsNoHintAndNoComplaint) {
  Varbinds components;
  components.address("10.0.2.0").address("255.255.255.0").integer(0);
  netsnmp_table_request_info hint = hintOf(components, 3);
  std::string traces;
  first(&hint, &traces);
  EXPECT_EQ(answeredDest(), "10.0.1.0");
  EXPECT_FALSE(contains(traces, "hint component")) << traces;
  EXPECT_TRUE(contains(traces, "number_indexes = 3")) << traces;
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
