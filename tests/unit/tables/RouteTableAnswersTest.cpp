// What ipCidrRouteTable and ipCidrRouteNumber answer (the row's own values are those that the
// integration walks check cell by cell): the fixed values, the refusal of every SET with its trace,
// and the tables of each VRF in its own context, gone from the agent once the context is unregistered
// and back when it is registered again. And the index of inetCidrRouteTable for each family and kind
// of next hop, with inetCidrRouteNumber.
#include <gtest/gtest.h>

#include "AgentRequests.h"
#include "MibTree.h"
#include "Traces.h"
#include "frontend/IpForward.h"
#include "model/ProtocolMap.h"
#include "platform/snmp/ContextTeardown.h"

namespace {

using TableTest::Oid;
using TableTest::oidOf;
using TableTest::tracesOf;

// Column `column` of the route 10.1.2.0/24 via 192.0.2.1 (type of service 0).
Oid column(unsigned column) {
  return oidOf("1.3.6.1.2.1.4.24.4.1." + std::to_string(column) + ".10.1.2.0.255.255.255.0.0.192.0.2.1");
}

const Oid routeNumber = oidOf("1.3.6.1.2.1.4.24.3.0");

class RouteTableAnswersTest : public ::testing::Test {
 protected:
  void SetUp() override {
    init_IpForward("");
    TableTest::addRoute(*tree.ipForwardMib, "10.1.2.0", 24, "192.0.2.1", 7, 20, 200);
  }
  void TearDown() override {
    for (const char* context : {"red", "blue"}) {
      unregister_IpForward(context);
      shutdown_tree_in_context(context);
      clear_cache_in_context(context);
    }
    Snmp::unregisterHandlersOfThisLibrary();
    IpSnmp::protoMap = IpSnmp::ProtocolMap();
  }

  TableTest::Varbind getOne(const Oid& name, const char* context = "") {
    TableTest::Response response = TableTest::AgentRequests(context).get({name});
    EXPECT_EQ(response.errorStatus, SNMP_ERR_NOERROR);
    return response.varbinds.empty() ? TableTest::Varbind{} : response.varbinds.front();
  }

  TableTest::MibTree tree;
  TableTest::AgentRequests agent;
};

std::string octets(std::initializer_list<int> bytes) {
  std::string text;
  for (int b : bytes) text.push_back(static_cast<char>(b));
  return text;
}

TEST_F(RouteTableAnswersTest, ColumnsWithoutStoreValueAreFixed) {
  for (unsigned c : {3u, 10u}) EXPECT_EQ(getOne(column(c)).integer, 0) << c;
  for (unsigned c : {6u, 16u}) EXPECT_EQ(getOne(column(c)).integer, 1) << c;
  for (unsigned c : {8u, 13u, 14u, 15u}) {
    const TableTest::Varbind v = getOne(column(c));
    EXPECT_EQ(v.type, ASN_INTEGER) << c;
    EXPECT_EQ(v.integer, -1) << c;
  }
  const TableTest::Varbind info = getOne(column(9));
  EXPECT_EQ(info.type, ASN_OBJECT_ID);
  EXPECT_EQ(info.objectId, oidOf("0.0"));
}

TEST_F(RouteTableAnswersTest, ProtocolFollowsTheProtocolMap) {
  EXPECT_EQ(getOne(column(7)).integer, IpSnmp::ipRouteProtocolOther);
  IpSnmp::protoMap.protocolIs(Routing::Fib::routeTypeStaticConfig, IpSnmp::ipRouteProtocolNetmgmt);
  EXPECT_EQ(getOne(column(7)).integer, IpSnmp::ipRouteProtocolNetmgmt);
}

TEST_F(RouteTableAnswersTest, TypeOfServiceIsZeroInIndexAndColumn) {
  TableTest::addRoute(*tree.ipForwardMib, "10.9.0.0", 16, "192.0.2.1", 1, 0, 0, 4);
  const Oid tosZero = oidOf("1.3.6.1.2.1.4.24.4.1.3.10.9.0.0.255.255.0.0.0.192.0.2.1");
  TableTest::Response next = agent.getNext({column(3)});
  ASSERT_EQ(next.varbinds.size(), 1u);
  EXPECT_EQ(next.varbinds[0].name, tosZero);
  EXPECT_EQ(next.varbinds[0].integer, 0);
}

TEST_F(RouteTableAnswersTest, AbsentRowAndUnknownColumnAreNoSuchInstanceAndObject) {
  EXPECT_EQ(getOne(oidOf("1.3.6.1.2.1.4.24.4.1.5.10.1.3.0.255.255.255.0.0.192.0.2.1")).type, SNMP_NOSUCHINSTANCE);
  EXPECT_EQ(getOne(oidOf("1.3.6.1.2.1.4.24.4.1.5.10.1.2.0.255.255.255.0.0.192.0.2")).type, SNMP_NOSUCHINSTANCE);
  EXPECT_EQ(getOne(oidOf("1.3.6.1.2.1.4.24.4.1.5.10.1.2.0.255.255.255.0.4294967295.192.0.2.1")).type,
            SNMP_NOSUCHINSTANCE);
  EXPECT_EQ(getOne(oidOf("1.3.6.1.2.1.4.24.4.1.17.10.1.2.0.255.255.255.0.0.192.0.2.1")).type, SNMP_NOSUCHOBJECT);
}

TEST_F(RouteTableAnswersTest, SetOfAWritableColumnIsNotConfigured) {
  TableTest::Response response;
  const std::string traces = tracesOf([&] { response = agent.setInteger(column(11), 5); });
  EXPECT_EQ(response.errorStatus, SNMP_ERR_NOTWRITABLE);
  EXPECT_NE(traces.find("ipCidrRouteTable_handler: SET is not configured for column ipCidrRouteMetric1"),
            std::string::npos)
      << traces;
  EXPECT_EQ(getOne(column(11)).integer, 20);
}

TEST_F(RouteTableAnswersTest, SetOfAReadOnlyColumnIsAnInvalidColumn) {
  TableTest::Response response;
  const std::string traces = tracesOf([&] { response = agent.setInteger(column(8), 5); });
  EXPECT_EQ(response.errorStatus, SNMP_ERR_NOTWRITABLE);
  EXPECT_NE(traces.find("ipCidrRouteTable invalid column 8"), std::string::npos) << traces;
}

TEST_F(RouteTableAnswersTest, SetOfAnAbsentRowIsRefusedToo) {
  EXPECT_EQ(agent.setInteger(oidOf("1.3.6.1.2.1.4.24.4.1.16.10.7.0.0.255.255.0.0.0.192.0.2.1"), 2).errorStatus,
            SNMP_ERR_NOTWRITABLE);
  EXPECT_EQ(tree.ipForwardMib->ipCidrRouteTables(), 1u);
}

TEST_F(RouteTableAnswersTest, RouteNumberIsTheRowCountAsGauge) {
  TableTest::Varbind number = getOne(routeNumber);
  EXPECT_EQ(number.type, ASN_GAUGE);
  EXPECT_EQ(number.integer, 1);
  TableTest::addRoutes(*tree.ipForwardMib, 3);
  EXPECT_EQ(getOne(routeNumber).integer, 4);
}

TEST_F(RouteTableAnswersTest, EachVrfContextServesItsOwnRoutes) {
  TableTest::addRoute(tree.vrfIpForwardMib("red"), "10.2.0.0", 16, "192.0.2.2");
  tree.vrfIpForwardMib("blue");
  init_IpForward("red");
  init_IpForward("blue");
  EXPECT_EQ(getOne(oidOf("1.3.6.1.2.1.4.24.4.1.1.10.2.0.0.255.255.0.0.0.192.0.2.2"), "red").octets,
            octets({10, 2, 0, 0}));
  EXPECT_EQ(getOne(column(1), "red").type, SNMP_NOSUCHINSTANCE);
  EXPECT_EQ(getOne(routeNumber, "blue").integer, 0);
  EXPECT_EQ(TableTest::AgentRequests("blue").walk(oidOf("1.3.6.1.2.1.4.24.4")).size(), 0u);
  EXPECT_EQ(TableTest::AgentRequests("red").walk(oidOf("1.3.6.1.2.1.4.24.4")).size(), 16u);
  EXPECT_EQ(ipForwardRegistrations().handlerRegistrations("red").size(), 4u);
  EXPECT_EQ(ipForwardRegistrations().columnInfos("red").size(), 2u);
}

TEST_F(RouteTableAnswersTest, UnregisteredContextLeavesNothingInTheAgent) {
  init_IpForward("red");
  unregister_IpForward("red");
  shutdown_tree_in_context("red");
  clear_cache_in_context("red");
  EXPECT_EQ(netsnmp_subtree_find_first("red"), nullptr);
  EXPECT_EQ(ipForwardRegistrations().contexts(), 0u);
  EXPECT_NE(getOne(routeNumber, "red").type, ASN_GAUGE);
  // The default context is untouched.
  EXPECT_EQ(getOne(routeNumber).integer, 1);
}

TEST_F(RouteTableAnswersTest, ContextRegisteredAgainAnswersAgain) {
  TableTest::addRoute(tree.vrfIpForwardMib("red"), "10.2.0.0", 16, "192.0.2.2");
  init_IpForward("red");
  unregister_IpForward("red");
  shutdown_tree_in_context("red");
  clear_cache_in_context("red");
  init_IpForward("red");
  EXPECT_EQ(getOne(routeNumber, "red").integer, 1);
  EXPECT_EQ(TableTest::AgentRequests("red").walk(oidOf("1.3.6.1.2.1.4.24.4")).size(), 16u);
}

// IPv4 rows first, a connected route without next hop, a link-local IPv6 next hop with its zone.
TEST_F(RouteTableAnswersTest, InetTableIndexesEveryKindOfNextHopAndCountsBothFamilies) {
  TableTest::addRoute(*tree.ipForwardMib, "10.1.3.0", 24, "0.0.0.0", 3);
  for (const char* hop : {"::", "2001:db8::1"}) TableTest::addRoute6(*tree.ipForwardMib, "2001:db8::", 32, hop, 2);
  TableTest::addRoute6(*tree.ipForwardMib, "2001:db8::", 32, "fe80::1", 258);
  const std::string dest6 = "2.16.32.1.13.184.0.0.0.0.0.0.0.0.0.0.0.0.32.2.0.0";
  const std::pair<std::string, long> rows[] = {
      {"1.4.10.1.2.0.24.2.0.0.1.4.192.0.2.1", 7},
      {"1.4.10.1.3.0.24.2.0.0.0.0", 3},
      {dest6 + ".0.0", 2},
      {dest6 + ".2.16.32.1.13.184.0.0.0.0.0.0.0.0.0.0.0.1", 2},
      {dest6 + ".4.20.254.128.0.0.0.0.0.0.0.0.0.0.0.0.0.1.0.0.1.2", 258}};
  const std::vector<TableTest::Varbind> walk = agent.walk(oidOf("1.3.6.1.2.1.4.24.7.1.7"));
  ASSERT_EQ(walk.size(), std::size(rows));
  for (std::size_t i = 0; i < walk.size(); ++i) {
    EXPECT_EQ(TableTest::textOf(walk[i].name), "1.3.6.1.2.1.4.24.7.1.7." + rows[i].first);
    EXPECT_EQ(walk[i].integer, rows[i].second) << rows[i].first;
  }
  const TableTest::Varbind number = getOne(oidOf("1.3.6.1.2.1.4.24.6.0"));
  EXPECT_EQ(number.type, ASN_GAUGE);
  EXPECT_EQ(number.integer, 5);
  EXPECT_EQ(getOne(routeNumber).integer, 2);
  for (unsigned c : {10u, 12u})
    EXPECT_EQ(agent.setInteger(oidOf("1.3.6.1.2.1.4.24.7.1." + std::to_string(c) + "." + rows[0].first), 5).errorStatus,
              SNMP_ERR_NOTWRITABLE) << c;
}

}  // namespace
