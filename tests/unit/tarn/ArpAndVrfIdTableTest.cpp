// The ARP table and the VRF-id table: their values stored and read back whole, in a file and in the
// process, their reactors told by key, and the defaults that mean "absent".
#include <set>
#include <sstream>

#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/RecordWriter.h"
#include "platform/tarn/VrfIdMapStatus.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using Arp::Table::ArpEntry;
using Arp::Table::ArpKey;
using Vrf::VrfIdMap::VrfEntry;
using Vrf::VrfIdMap::VrfId;

ArpEntry neighbour(U32 vrf, const char* intf, Pelt::IpGenAddr addr, U16 lastWord, bool isStatic = false) {
  return ArpEntry{VrfId(vrf), Pelt::IntfId(intf), addr, Pelt::EthAddr(0x001c, 0x7300, lastWord), isStatic};
}

class HeardArp : public Arp::Table::Status::NotifieeConst {
 public:
  void onArpEntry(const ArpKey& key) override { keys.insert(key); }
  void onArpEntryquorImmediate() override { ++wholeTable; }
  std::set<ArpKey> keys;
  int wholeTable = 0;
};

class HeardVrfIds : public Vrf::VrfIdMap::Status::NotifieeConst {
 public:
  void onVrfEntry(const VrfId& id) override { ids.insert(id); }
  std::set<VrfId> ids;
};

class ArpAndVrfIdTables : public TarnTest::TableDir {
 protected:
  Quor::Ptr<Arp::Table::Status> arp_ = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
  Quor::Ptr<Vrf::VrfIdMap::Status> vrfIds_ = Quor::makePtr<Vrf::VrfIdMap::Status>(Quor::Name("vrf/idmap"));
};

TEST_F(ArpAndVrfIdTables, TheAbsentEntriesAreTheDefaults) {
  ArpEntry absent = arp_->arpEntry().lookup(ArpKey{VrfId(0), Pelt::IntfId("Ethernet1"), Pelt::IpAddr(10, 0, 0, 1)}).value();
  EXPECT_EQ(absent, ArpEntry());
  EXPECT_EQ(absent.vrfId, Vrf::VrfIdMap::unknownVrfId);
  EXPECT_TRUE(absent.intfId.empty());
  EXPECT_EQ(absent.addr, Pelt::IpGenAddr());
  EXPECT_TRUE(absent.ethAddr.isZero());
  VrfEntry noVrf = vrfIds_->vrfEntry().lookup(VrfId(3)).value();
  EXPECT_EQ(noVrf.vrfId(), Vrf::VrfIdMap::unknownVrfId);
  EXPECT_TRUE(noVrf.vrfName().empty());
}

TEST_F(ArpAndVrfIdTables, ArpEntriesOfBothVersionsRoundTripThroughTheFile) {
  Tarn::RecordWriter<Arp::Table::ArpCodec> writer(path("arpEntry"), 100);
  ArpEntry v4 = neighbour(0, "Ethernet1", Pelt::IpAddr(10, 0, 0, 1), 1, true);
  ArpEntry v6 = neighbour(7, "Vlan10", Pelt::Ip6Addr(0xfe800000, 0, 0, 1), 2);
  ArpEntry sameAddressOtherVrf = neighbour(9, "Ethernet1", Pelt::IpAddr(10, 0, 0, 1), 3);
  for (const ArpEntry& e : {v4, v6, sameAddressOtherVrf}) writer.put(e);
  writer.commit();
  arp_->mount(dir_.string(), Tarn::TableType::sharedMemory);
  for (const ArpEntry& e : {v4, v6, sameAddressOtherVrf}) {
    auto found = arp_->arpEntry().lookup(e.key());
    ASSERT_TRUE(found.found()) << e;
    EXPECT_EQ(found.value(), e);
  }
  Arp::ArpEntryStatus row(arp_->arpEntry().lookup(v4.key()).value());
  EXPECT_EQ(row.ipAddr, Pelt::IpAddr(10, 0, 0, 1));
  EXPECT_EQ(row.ethAddr, Pelt::EthAddr(0x001c, 0x7300, 1));
  EXPECT_TRUE(row.isStatic);
}

TEST_F(ArpAndVrfIdTables, ChangedNeighboursReachTheReactorsByKey) {
  Tarn::RecordWriter<Arp::Table::ArpCodec> writer(path("arpEntry"), 100);
  ArpEntry stays = neighbour(0, "Ethernet1", Pelt::IpAddr(10, 0, 0, 1), 1);
  ArpEntry moves = neighbour(0, "Ethernet2", Pelt::IpAddr(10, 0, 0, 2), 2);
  writer.put(stays);
  writer.put(moves);
  writer.commit();
  arp_->mount(dir_.string(), Tarn::TableType::sharedMemory);
  auto heard = Quor::makePtr<HeardArp>();
  heard->notifierIs(arp_);
  for (const ArpEntry& e : {stays, moves}) ASSERT_TRUE(arp_->arpEntry().lookup(e.key()).found());  // its first pass
  ArpEntry moved = moves;
  moved.ethAddr = Pelt::EthAddr(0x001c, 0x7300, 0x99);
  writer.put(moved);
  ArpEntry added = neighbour(5, "Ethernet2", Pelt::IpAddr(10, 0, 0, 3), 3);
  writer.put(added);
  writer.erase(stays.key());
  writer.commit();
  std::set<ArpKey> expected{stays.key(), moves.key(), added.key()};
  EXPECT_TRUE(TarnTest::turnUntil([&] { return heard->keys == expected; }));
  EXPECT_EQ(arp_->arpEntry().lookup(moves.key()).value().ethAddr, moved.ethAddr);
  EXPECT_FALSE(arp_->arpEntry().lookup(stays.key()).found());
}

TEST_F(ArpAndVrfIdTables, KeysOrderByVrfThenInterfaceThenAddressAndPrint) {
  ArpKey a{VrfId(0), Pelt::IntfId("Ethernet2"), Pelt::IpAddr(10, 0, 0, 1)};
  ArpKey b{VrfId(0), Pelt::IntfId("Ethernet2"), Pelt::IpAddr(10, 0, 0, 2)};
  ArpKey c{VrfId(0), Pelt::IntfId("Ethernet3"), Pelt::IpAddr(10, 0, 0, 0)};
  ArpKey d{VrfId(1), Pelt::IntfId("Ethernet1"), Pelt::IpAddr(10, 0, 0, 0)};
  EXPECT_TRUE(a < b && b < c && c < d);
  EXPECT_FALSE(b < a || a < a);
  std::ostringstream text;
  text << neighbour(7, "Vlan10", Pelt::IpAddr(10, 1, 2, 3), 0x0203, true);
  EXPECT_EQ(text.str(), "vrf 7 Vlan10 10.1.2.3 00:1c:73:00:02:03 static");
}

TEST_F(ArpAndVrfIdTables, InterfaceNamesTooLongForARecordAreRefusedByTheWriter) {
  Tarn::RecordWriter<Arp::Table::ArpCodec> writer(path("arpEntry"), 100);
  EXPECT_NO_THROW(writer.put(neighbour(0, "Port-Channel1000.4094abc", Pelt::IpAddr(10, 0, 0, 1), 1)));  // 24 bytes
  EXPECT_THROW(writer.put(neighbour(0, "Port-Channel1000.4094abcd", Pelt::IpAddr(10, 0, 0, 1), 1)), Quor::RangeException);
  EXPECT_EQ(writer.members(), 1u);
}

TEST_F(ArpAndVrfIdTables, VrfEntriesRoundTripAndReachTheReactorsById) {
  Tarn::RecordWriter<Vrf::VrfIdMap::VrfEntryCodec> writer(path("vrfEntry"), 100);
  std::string longest(L3::VrfName::maxBytes, 'v');
  writer.put(VrfEntry(VrfId(7), "red"));
  writer.put(VrfEntry(VrfId(8), L3::VrfName(longest)));
  writer.commit();
  vrfIds_->mount(dir_.string(), Tarn::TableType::sharedMemory);
  EXPECT_EQ(vrfIds_->vrfEntry().lookup(VrfId(7)).value(), VrfEntry(VrfId(7), "red"));
  EXPECT_EQ(vrfIds_->vrfEntry().lookup(VrfId(8)).value().vrfName(), L3::VrfName(longest));
  auto heard = Quor::makePtr<HeardVrfIds>();
  heard->notifierIs(vrfIds_);
  writer.put(VrfEntry(VrfId(7), "blue"));
  writer.commit();
  EXPECT_TRUE(TarnTest::turnUntil([&] { return heard->ids.count(VrfId(7)); }));
  EXPECT_EQ(heard->ids, std::set<VrfId>{VrfId(7)});
  EXPECT_EQ(vrfIds_->vrfEntry().lookup(VrfId(7)).value().vrfName(), L3::VrfName("blue"));
}

TEST_F(ArpAndVrfIdTables, AnInProcessMountIsWrittenDirectlyAndNotifiesInsideTheWrite) {
  arp_->mount("", Tarn::TableType::inProcess);
  auto heard = Quor::makePtr<HeardArp>();
  heard->notifierIs(arp_);
  ArpEntry e = neighbour(0, "Ethernet1", Pelt::IpAddr(10, 0, 0, 1), 1);
  Tarn::inProcessTable(arp_->arpEntry()).put(e.key(), e);
  EXPECT_EQ(heard->keys, std::set<ArpKey>{e.key()});
  EXPECT_EQ(arp_->arpEntry().lookup(e.key()).value(), e);
  arp_->unmount();
  EXPECT_EQ(heard->wholeTable, 1);
  EXPECT_FALSE(arp_->arpEntry().lookup(e.key()).found());
  EXPECT_THROW(Tarn::inProcessTable(vrfIds_->vrfEntry()), Quor::RangeException);
}

}  // namespace
