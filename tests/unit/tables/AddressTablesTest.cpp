// The address tables of IpBase through the agent's helpers: the walk order and index forms of
// ipAddressTable, ipAddrTable and ipAddressPrefixTable, their constant columns, the RowPointer from an
// address to its prefix row, and the refusal of SET naming the MIB's writable columns.
#include <gtest/gtest.h>

#include "AgentRequests.h"
#include "MibTree.h"
#include "Traces.h"
#include "frontend/IpBase.h"
#include "platform/snmp/ContextTeardown.h"

namespace {

using TableTest::Oid;
using TableTest::oidOf;
using TableTest::tracesOf;
using TableTest::namesOf;

const Oid ipAddressTable = oidOf("1.3.6.1.2.1.4.34");
const Oid ipAddrTable = oidOf("1.3.6.1.2.1.4.20");
const Oid ipAddressPrefixTable = oidOf("1.3.6.1.2.1.4.32");

class AddressTablesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TableTest::addIpv6Address(*tree.ipMib, "2001:db8::1", 64, 3);
    TableTest::addIpv4Address(*tree.ipMib, "10.0.2.1", 24, 2);
    TableTest::addIpv4Address(*tree.ipMib, "10.0.1.1", 24, 1);
    init_IpBase("");
  }
  void TearDown() override { Snmp::unregisterHandlersOfThisLibrary(); }

  TableTest::Varbind getOne(const std::string& name) {
    TableTest::Response response = agent.get({oidOf(name)});
    return response.varbinds.empty() ? TableTest::Varbind{} : response.varbinds.front();
  }

  TableTest::MibTree tree;
  TableTest::AgentRequests agent;
};

TEST_F(AddressTablesTest, AddressTableListsIpv4BeforeIpv6WithLengthInTheIndex) {
  std::vector<TableTest::Varbind> column = agent.walk(oidOf("1.3.6.1.2.1.4.34.1.3"));
  EXPECT_EQ(namesOf(column),
            (std::vector<std::string>{"1.3.6.1.2.1.4.34.1.3.1.4.10.0.1.1", "1.3.6.1.2.1.4.34.1.3.1.4.10.0.2.1",
                                      "1.3.6.1.2.1.4.34.1.3.2.16.32.1.13.184.0.0.0.0.0.0.0.0.0.0.0.1"}));
  ASSERT_EQ(column.size(), 3u);
  EXPECT_EQ(column[0].integer, 1);
  EXPECT_EQ(column[2].integer, 3);
}

TEST_F(AddressTablesTest, AddressTableWalkCoversColumnsThreeToEleven) {
  const std::vector<TableTest::Varbind> walk = agent.bulkWalk(ipAddressTable, 4);
  ASSERT_EQ(walk.size(), 9u * 3u);
  EXPECT_EQ(walk.front().name[9], 3u);
  EXPECT_EQ(walk.back().name[9], 11u);
  EXPECT_EQ(namesOf(walk), namesOf(agent.walk(ipAddressTable)));
}

TEST_F(AddressTablesTest, AddressColumnsOfARow) {
  const std::string row = ".1.4.10.0.2.1";
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.34.1.4" + row).integer, 1);   // unicast
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.34.1.6" + row).integer, 1);   // origin other
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.34.1.7" + row).integer, 1);   // preferred
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.34.1.8" + row).type, ASN_TIMETICKS);
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.34.1.9" + row).integer, 0);
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.34.1.10" + row).integer, 1);  // active
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.34.1.11" + row).integer, 1);  // storage other
}

TEST_F(AddressTablesTest, PrefixPointerLeadsToThePrefixRow) {
  const TableTest::Varbind pointer = getOne("1.3.6.1.2.1.4.34.1.5.1.4.10.0.2.1");
  ASSERT_EQ(pointer.type, ASN_OBJECT_ID);
  EXPECT_EQ(TableTest::textOf(pointer.objectId), "1.3.6.1.2.1.4.32.1.5.2.1.4.10.0.2.0.24");
  const TableTest::Varbind origin = agent.get({pointer.objectId}).varbinds.at(0);
  EXPECT_EQ(origin.type, ASN_INTEGER);
  EXPECT_EQ(origin.integer, 1);
}

TEST_F(AddressTablesTest, SetOfAWritableAddressColumnIsNotConfigured) {
  TableTest::Response response;
  const std::string traces = tracesOf([&] { response = agent.setInteger(oidOf("1.3.6.1.2.1.4.34.1.10.1.4.10.0.2.1"), 6); });
  EXPECT_EQ(response.errorStatus, SNMP_ERR_NOTWRITABLE);
  EXPECT_NE(traces.find("ipAddressTable_handler: SET is not configured for column ipAddressRowStatus"),
            std::string::npos);
  EXPECT_TRUE(tree.ipMib->ipAddressTable(IpSnmp::inetAddress(Pelt::IpAddr(10, 0, 2, 1))));
}

TEST_F(AddressTablesTest, SetOfOriginIsAnInvalidColumn) {
  TableTest::Response response;
  const std::string traces = tracesOf([&] { response = agent.setInteger(oidOf("1.3.6.1.2.1.4.34.1.6.1.4.10.0.2.1"), 2); });
  EXPECT_EQ(response.errorStatus, SNMP_ERR_NOTWRITABLE);
  EXPECT_NE(traces.find("ipAddressTable invalid column 6"), std::string::npos);
}

TEST_F(AddressTablesTest, Ipv4TableIndexIsTheBareAddress) {
  const std::vector<TableTest::Varbind> walk = agent.walk(ipAddrTable);
  ASSERT_EQ(walk.size(), 10u);
  EXPECT_EQ(TableTest::textOf(walk[0].name), "1.3.6.1.2.1.4.20.1.1.10.0.1.1");
  EXPECT_EQ(walk[0].octets, std::string("\x0a\x00\x01\x01", 4));
  EXPECT_EQ(walk[3].integer, 2);                                     // ipAdEntIfIndex of 10.0.2.1
  EXPECT_EQ(walk[5].octets, std::string("\xff\xff\xff\x00", 4));     // ipAdEntNetMask
  EXPECT_EQ(walk[7].integer, 0);                                     // ipAdEntBcastAddr
  EXPECT_EQ(walk[9].integer, 65535);                                 // ipAdEntReasmMaxSize
}

TEST_F(AddressTablesTest, PrefixTableGroupsByInterfaceWithConstantColumns) {
  const std::vector<TableTest::Varbind> origins = agent.walk(oidOf("1.3.6.1.2.1.4.32.1.5"));
  EXPECT_EQ(namesOf(origins),
            (std::vector<std::string>{"1.3.6.1.2.1.4.32.1.5.1.1.4.10.0.1.0.24", "1.3.6.1.2.1.4.32.1.5.2.1.4.10.0.2.0.24",
                                      "1.3.6.1.2.1.4.32.1.5.3.2.16.32.1.13.184.0.0.0.0.0.0.0.0.0.0.0.0.64"}));
  const TableTest::Varbind lifetime = getOne("1.3.6.1.2.1.4.32.1.8.2.1.4.10.0.2.0.24");
  EXPECT_EQ(lifetime.type, ASN_UNSIGNED);
  EXPECT_EQ(static_cast<unsigned long>(lifetime.integer), 4294967295ul);
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.32.1.7.2.1.4.10.0.2.0.24").integer, 2);
  // Another length for the same subnet is another row.
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.32.1.7.2.1.4.10.0.2.0.25").type, SNMP_NOSUCHINSTANCE);
  EXPECT_EQ(agent.walk(ipAddressPrefixTable).size(), 5u * 3u);
}

}  // namespace
