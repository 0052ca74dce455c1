// ipNetToMediaTable through the agent's helpers: rows in the order of interface index and address,
// the MAC address and entry type read from the shared-memory ARP table at each GET (and only for
// those columns), a neighbour that has just left it, and SET refused naming the column.
#include <gtest/gtest.h>

#include "AgentRequests.h"
#include "MibTree.h"
#include "Traces.h"
#include "frontend/IpBase.h"
#include "platform/morvane/Store.h"
#include "platform/snmp/ContextTeardown.h"
#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/TableEntity.h"

namespace {

using TableTest::oidOf;
using TableTest::tracesOf;
using TableTest::contains;
using TableTest::namesOf;

const TableTest::Oid ipNetToMediaTable = oidOf("1.3.6.1.2.1.4.22");
const Vrf::VrfIdMap::VrfId defaultVrfId(0);

class NeighbourTableTest : public ::testing::Test {
 protected:
  void SetUp() override {
    arp->mount("", Tarn::TableType::inProcess);
    neighbour(2, "Ethernet2", "10.0.0.5", "00:1c:73:00:00:05", false);
    neighbour(1, "Ethernet1", "10.0.0.10", "00:1c:73:00:00:10", true);
    neighbour(1, "Ethernet1", "10.0.0.9", "00:1c:73:00:00:09", false);
    init_IpBase("");
  }
  void TearDown() override { Snmp::unregisterHandlersOfThisLibrary(); }

  // A neighbour in the shared-memory table and its row in the default VRF's table.
  void neighbour(U32 ifIndex, const char* intf, const char* address, const char* mac, bool isStatic) {
    tree.ipMib->arpTableIs({ifIndex, Pelt::IpAddr(address)}, Pelt::IntfId(intf), arp, defaultVrfId);
    sharedTable().put(entry(intf, address, mac, isStatic).key(), entry(intf, address, mac, isStatic));
  }
  static Arp::Table::ArpEntry entry(const char* intf, const char* address, const char* mac, bool isStatic) {
    Arp::Table::ArpEntry e;
    e.vrfId = defaultVrfId;
    e.intfId = Pelt::IntfId(intf);
    e.addr = Pelt::IpGenAddr(Pelt::IpAddr(address));
    e.ethAddr = Pelt::EthAddr(std::string_view(mac));
    e.isStatic = isStatic;
    return e;
  }
  Tarn::InProcessTable<Arp::Table::ArpKey, Arp::Table::ArpEntry>& sharedTable() {
    return Tarn::inProcessTable(arp->arpEntry());
  }
  TableTest::Varbind getOne(const std::string& name) {
    TableTest::Response response = agent.get({oidOf(name)});
    EXPECT_EQ(response.errorStatus, SNMP_ERR_NOERROR) << name;
    return response.varbinds.empty() ? TableTest::Varbind{} : response.varbinds.front();
  }

  Quor::Ptr<Arp::Table::Status> arp = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
  TableTest::MibTree tree;
  // The forwarding scalars answer, so that a bulk request runs on past the table without an error.
  Morvane::Store store = Morvane::buildStore(tree.root);
  TableTest::AgentRequests agent;
};

TEST_F(NeighbourTableTest, WalkIsOrderedByInterfaceThenAddress) {
  EXPECT_EQ(namesOf(agent.walk(oidOf("1.3.6.1.2.1.4.22.1.1"))),
            (std::vector<std::string>{"1.3.6.1.2.1.4.22.1.1.1.10.0.0.9", "1.3.6.1.2.1.4.22.1.1.1.10.0.0.10",
                                      "1.3.6.1.2.1.4.22.1.1.2.10.0.0.5"}));
  const std::vector<TableTest::Varbind> walk = agent.walk(ipNetToMediaTable);
  ASSERT_EQ(walk.size(), 4u * 3u);
  EXPECT_EQ(TableTest::textOf(walk.back().name), "1.3.6.1.2.1.4.22.1.4.2.10.0.0.5");
  EXPECT_EQ(namesOf(agent.bulkWalk(ipNetToMediaTable, 5)), namesOf(walk));
}

TEST_F(NeighbourTableTest, ColumnsOfARow) {
  const std::string row = ".1.10.0.0.10";
  const TableTest::Varbind ifIndex = getOne("1.3.6.1.2.1.4.22.1.1" + row);
  EXPECT_EQ(ifIndex.type, ASN_INTEGER);
  EXPECT_EQ(ifIndex.integer, 1);
  const TableTest::Varbind mac = getOne("1.3.6.1.2.1.4.22.1.2" + row);
  EXPECT_EQ(mac.type, ASN_OCTET_STR);
  EXPECT_EQ(mac.octets, std::string("\x00\x1c\x73\x00\x00\x10", 6));
  const TableTest::Varbind address = getOne("1.3.6.1.2.1.4.22.1.3" + row);
  EXPECT_EQ(address.type, ASN_IPADDRESS);
  EXPECT_EQ(address.octets, std::string("\x0a\x00\x00\x0a", 4));
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.22.1.4" + row).integer, 4);            // static
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.22.1.4.1.10.0.0.9").integer, 3);       // dynamic
}

TEST_F(NeighbourTableTest, NeighbourIsReadAnewAtEachGet) {
  neighbour(1, "Ethernet1", "10.0.0.9", "00:1c:73:00:00:99", true);
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.22.1.2.1.10.0.0.9").octets, std::string("\x00\x1c\x73\x00\x00\x99", 6));
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.22.1.4.1.10.0.0.9").integer, 4);
}

TEST_F(NeighbourTableTest, NeighbourThatHasJustGoneReadsSixZeroBytesWithoutError) {
  sharedTable().erase(entry("Ethernet1", "10.0.0.9", "00:00:00:00:00:00", false).key());
  const TableTest::Varbind mac = getOne("1.3.6.1.2.1.4.22.1.2.1.10.0.0.9");
  EXPECT_EQ(mac.type, ASN_OCTET_STR);
  EXPECT_EQ(mac.octets, std::string(6, '\0'));
  EXPECT_EQ(getOne("1.3.6.1.2.1.4.22.1.4.1.10.0.0.9").integer, 3);
  // The row itself stays until the ARP machine takes it away.
  EXPECT_EQ(agent.walk(oidOf("1.3.6.1.2.1.4.22.1.1")).size(), 3u);
}

TEST_F(NeighbourTableTest, IndexColumnsDoNotReadTheSharedTable) {
  arp->unmount();  // every read of the table now goes to the stub, which traces it
  const std::string indexColumns = tracesOf([&] {
    EXPECT_EQ(getOne("1.3.6.1.2.1.4.22.1.1.1.10.0.0.9").integer, 1);
    EXPECT_EQ(getOne("1.3.6.1.2.1.4.22.1.3.1.10.0.0.9").type, ASN_IPADDRESS);
  });
  EXPECT_FALSE(contains(indexColumns, "TarnBaseDummy::lookup()")) << indexColumns;
  const std::string mac = tracesOf([&] { getOne("1.3.6.1.2.1.4.22.1.2.1.10.0.0.9"); });
  EXPECT_TRUE(contains(mac, "TarnBaseDummy::lookup()")) << mac;
}

TEST_F(NeighbourTableTest, SetOfTheTypeIsNotConfiguredAndDeletesNothing) {
  TableTest::Response response;
  const std::string traces =
      tracesOf([&] { response = agent.setInteger(oidOf("1.3.6.1.2.1.4.22.1.4.1.10.0.0.9"), 2); });
  EXPECT_EQ(response.errorStatus, SNMP_ERR_NOTWRITABLE);
  EXPECT_TRUE(contains(traces, "ipNetToMediaTable_handler: SET is not configured for column ipNetToMediaType"))
      << traces;
  EXPECT_EQ(agent.walk(oidOf("1.3.6.1.2.1.4.22.1.4")).size(), 3u);
  EXPECT_TRUE(contains(tracesOf([&] { agent.setInteger(oidOf("1.3.6.1.2.1.4.22.1.1.1.10.0.0.9"), 7); }),
                       "SET is not configured for column ipNetToMediaIfIndex"));
}

}  // namespace
