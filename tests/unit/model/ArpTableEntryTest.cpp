// A neighbour row reads its MAC address and type from the shared-memory ARP table at every access.
#include <gtest/gtest.h>

#include "model/IpMib.h"

namespace IpSnmp {
namespace {

class ArpRowTest : public ::testing::Test {
 protected:
  void SetUp() override { arp->mount("", Tarn::TableType::inProcess); }
  Arp::Table::ArpEntry neighbour(const char* mac, bool isStatic) {
    Arp::Table::ArpEntry e;
    e.vrfId = Vrf::VrfIdMap::VrfId(7);
    e.intfId = Pelt::IntfId("Ethernet1");
    e.addr = Pelt::IpGenAddr(Pelt::IpAddr(std::string_view("10.0.0.9")));
    e.ethAddr = Pelt::EthAddr(std::string_view(mac));
    e.isStatic = isStatic;
    return e;
  }
  Quor::Ptr<Arp::Table::Status> arp = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
  Quor::Ptr<IpMib> mib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  ArpTableIndex index{3, Pelt::IpAddr(std::string_view("10.0.0.9"))};
};

TEST_F(ArpRowTest, RowFollowsTheNeighbourAndReadsZeroesOnceItLeft) {
  auto row = mib->arpTableIs(index, Pelt::IntfId("Ethernet1"), arp, Vrf::VrfIdMap::VrfId(7));
  auto& table = Tarn::inProcessTable(arp->arpEntry());
  table.put(neighbour("00:1c:73:00:00:01", true).key(), neighbour("00:1c:73:00:00:01", true));
  EXPECT_EQ(row->physAddress(), Pelt::EthAddr(std::string_view("00:1c:73:00:00:01")));
  EXPECT_TRUE(row->arpEntry().isStatic);
  table.put(neighbour("00:1c:73:00:00:02", false).key(), neighbour("00:1c:73:00:00:02", false));
  EXPECT_EQ(row->physAddress(), Pelt::EthAddr(std::string_view("00:1c:73:00:00:02"))) << "no row update needed";
  table.erase(neighbour("00:1c:73:00:00:02", false).key());
  EXPECT_EQ(row->physAddress(), Pelt::EthAddr());
  EXPECT_FALSE(row->arpEntry().isStatic);
}

TEST_F(ArpRowTest, AnotherVrfIdForTheSameNeighbourIsRefused) {
  mib->arpTableIs(index, Pelt::IntfId("Ethernet1"), arp, Vrf::VrfIdMap::VrfId(7));
  EXPECT_EQ(mib->arpTableIs(index, Pelt::IntfId("Ethernet1"), arp, Vrf::VrfIdMap::VrfId(7))->arpTarnVrfId(), Vrf::VrfIdMap::VrfId(7));
  EXPECT_THROW(mib->arpTableIs(index, Pelt::IntfId("Ethernet1"), arp, Vrf::VrfIdMap::VrfId(9)), Quor::NameInUseException);
  EXPECT_TRUE(mib->arpTableDel(index));
  EXPECT_FALSE(mib->arpTableDel(index));
}

}  // namespace
}  // namespace IpSnmp
