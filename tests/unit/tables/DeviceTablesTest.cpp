// The tables that are not per VRF or hold no rows of their own: oskelVrfTable and oskelVrfIfTable in
// the default context only, and oskelSwFwdIpStatsTable, whose rows are the statistics entities.
#include <gtest/gtest.h>

#include "AgentRequests.h"
#include "MibTree.h"
#include "Traces.h"
#include "frontend/IpSwForwarding.h"
#include "frontend/VrfBase.h"
#include "platform/morvane/IpVrf.h"
#include "platform/snmp/ContextTeardown.h"

namespace {

using TableTest::Oid;
using TableTest::oidOf;
using TableTest::tracesOf;

const Oid vrfTable = oidOf("1.3.6.1.4.1.48213.3.18.1.1");
const Oid vrfIfTable = oidOf("1.3.6.1.4.1.48213.3.18.1.2");
const Oid statsTable = oidOf("1.3.6.1.4.1.48213.3.1.1.1");

std::size_t countOf(const std::string& text, const std::string& word) {
  std::size_t count = 0;
  for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) ++count;
  return count;
}

class VrfTablesTest : public ::testing::Test {
 protected:
  void SetUp() override { init_VrfBase(""); }
  void TearDown() override { Snmp::unregisterHandlersOfThisLibrary(); }

  // A VRF row with a configuration of `rd` and routing on, and a local status of `state`.
  void addVrf(const char* name, const char* rd, Ip::VrfState state) {
    auto config = Quor::makePtr<Ip::VrfConfig>(L3::VrfName(name));
    config->routeDistinguisherIs(Pelt::RouteDistinguisher(rd));
    auto status = Quor::makePtr<Ip::VrfStatusLocal>(L3::VrfName(name));
    status->stateIs(state);
    auto routing = Quor::makePtr<Routing::Config>(Quor::Name(name));
    routing->routingIs(true);
    tree.ipVrfMib->vrfTableIs(Snmp::String(name), config, status)->vrfRoutingStatusIs(Quor::Name(name), routing);
  }

  TableTest::MibTree tree;
  TableTest::AgentRequests agent;
};

TEST_F(VrfTablesTest, VrfNamesAreIndexedWithTheirLengthShorterFirst) {
  addVrf("blue", "65000:200", Ip::vrfStateActive);
  addVrf("red", "65000:100", Ip::vrfStateActive);
  const std::vector<TableTest::Varbind> states = agent.walk(oidOf("1.3.6.1.4.1.48213.3.18.1.1.1.4"));
  ASSERT_EQ(states.size(), 2u);
  EXPECT_EQ(TableTest::textOf(states[0].name), "1.3.6.1.4.1.48213.3.18.1.1.1.4.3.114.101.100");
  EXPECT_EQ(TableTest::textOf(states[1].name), "1.3.6.1.4.1.48213.3.18.1.1.1.4.4.98.108.117.101");
  EXPECT_EQ(agent.bulkWalk(vrfTable, 4).size(), 6u);
}

TEST_F(VrfTablesTest, VrfColumnsShowRoutingDistinguisherAndState) {
  addVrf("red", "65000:100", Ip::vrfStateDeleting);
  const std::vector<TableTest::Varbind> row = agent.walk(vrfTable);
  ASSERT_EQ(row.size(), 3u);
  EXPECT_EQ(row[0].octets, std::string("\x80", 1));
  EXPECT_EQ(row[1].octets, "65000:100");
  EXPECT_EQ(row[2].integer, 2);
}

TEST_F(VrfTablesTest, VrfWithoutConfigurationOrStatusReadsTheDefaults) {
  tree.ipVrfMib->vrfTableIs(Snmp::String("bare"), nullptr, nullptr)->vrfRoutingStatusIs(Quor::Name("bare"), nullptr);
  const std::vector<TableTest::Varbind> row = agent.walk(vrfTable);
  ASSERT_EQ(row.size(), 3u);
  EXPECT_EQ(row[0].octets, std::string("\0", 1));
  EXPECT_EQ(row[1].octets, Pelt::RouteDistinguisher().stringValue().str());
  EXPECT_EQ(row[2].integer, 2);
}

TEST_F(VrfTablesTest, InterfaceMembershipNamesTheVrf) {
  tree.ipVrfMib->vrfIfTableIs(7)->vrfNameIs(Snmp::String("red"));
  tree.ipVrfMib->vrfIfTableIs(3);
  const std::vector<TableTest::Varbind> rows = agent.walk(vrfIfTable);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(TableTest::textOf(rows[0].name), "1.3.6.1.4.1.48213.3.18.1.2.1.1.3");
  EXPECT_EQ(rows[0].octets, "");
  EXPECT_EQ(rows[1].octets, "red");
}

TEST_F(VrfTablesTest, NonDefaultContextRegistersNothing) {
  const std::string traces = tracesOf([] { init_VrfBase("red"); });
  EXPECT_EQ(countOf(traces, "morvanePathWithContext not specified"), 2u);
  EXPECT_EQ(vrfBaseRegistrations().contexts(), 0u);
  EXPECT_EQ(netsnmp_subtree_find(const_cast<oid*>(vrfTable.data()), vrfTable.size(), nullptr, "red"), nullptr);
  unregister_VrfBase("red");
  EXPECT_EQ(agent.walk(vrfTable).size(), 0u);
}

class StatsTableTest : public ::testing::Test {
 protected:
  void TearDown() override {
    unregister_IpSwForwarding("red");
    shutdown_tree_in_context("red");
    clear_cache_in_context("red");
    Snmp::unregisterHandlersOfThisLibrary();
  }
  TableTest::MibTree tree;
};

TEST_F(StatsTableTest, EachStatisticsEntityIsARowByIpVersion) {
  tree.ipMib->ipSwFwdStatsIs(Ip::ipVersion6, Quor::Name("default"));
  tree.ipMib->ipSwFwdStatsIs(Ip::ipVersion4, Quor::Name("default"));
  tree.vrfIpMib("red").ipSwFwdStatsIs(Ip::ipVersion4, Quor::Name("red"));
  init_IpSwForwarding("");
  init_IpSwForwarding("red");
  TableTest::AgentRequests defaultContext;
  const std::vector<TableTest::Varbind> rates = defaultContext.walk(oidOf("1.3.6.1.4.1.48213.3.1.1.1.1.47"));
  ASSERT_EQ(rates.size(), 2u);
  EXPECT_EQ(TableTest::textOf(rates[0].name), "1.3.6.1.4.1.48213.3.1.1.1.1.47.1");
  EXPECT_EQ(TableTest::textOf(rates[1].name), "1.3.6.1.4.1.48213.3.1.1.1.1.47.2");
  EXPECT_EQ(rates[0].type, ASN_UNSIGNED);
  EXPECT_EQ(rates[0].integer, 500);
  const std::vector<TableTest::Varbind> inRed = TableTest::AgentRequests("red").walk(statsTable);
  ASSERT_EQ(inRed.size(), 45u);
  EXPECT_EQ(TableTest::textOf(inRed[0].name), "1.3.6.1.4.1.48213.3.1.1.1.1.3.1");
  EXPECT_EQ(inRed[0].type, ASN_COUNTER);
  EXPECT_EQ(inRed[1].type, ASN_COUNTER64);
  EXPECT_EQ(inRed[43].type, ASN_TIMETICKS);
  EXPECT_EQ(inRed[43].integer, 0);
  EXPECT_EQ(ipSwForwardingRegistrations().columnInfos("red").size(), 1u);
}

TEST_F(StatsTableTest, SetIsNotWritable) {
  tree.ipMib->ipSwFwdStatsIs(Ip::ipVersion4, Quor::Name("default"));
  init_IpSwForwarding("");
  TableTest::AgentRequests agent;
  EXPECT_EQ(agent.setInteger(oidOf("1.3.6.1.4.1.48213.3.1.1.1.1.47.1"), 1).errorStatus, SNMP_ERR_NOTWRITABLE);
}

}  // namespace
