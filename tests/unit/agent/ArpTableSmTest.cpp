// The ARP machine of one VRF: entries handed to it become rows that read the neighbour from the
// shared-memory table, refusals come in a fixed order, and the VRF id moves only through "unknown".
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "agent/ArpTableSm.h"
#include "tests/unit/agent/DamageableTable.h"
#include "tests/unit/agent/TraceLines.h"

namespace IpSnmp {
namespace {

using Vrf::VrfIdMap::VrfId;

const VrfId unknown = Vrf::VrfIdMap::unknownVrfId;

class ArpMachine : public ::testing::Test {
 protected:
  void start(VrfId id) { sm = Quor::makePtr<ArpTableSm>(ArpTableSm::Inputs{intfStatusDir, ipMib, arpTarn, id}); }
  void intfUp(const char* name, S32 ifIndex, const char* kind = "ethernet") {
    intfStatusDir->intfStatusIs(Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId(name), Quor::Name(kind), ifIndex));
  }
  static Arp::Table::ArpEntry neighbour(U32 vrf, const char* intf, const char* addr, const char* mac = "00:1c:73:00:00:01") {
    Arp::Table::ArpEntry entry;
    entry.vrfId = VrfId(vrf);
    entry.intfId = Pelt::IntfId(intf);
    entry.addr = Pelt::IpAddr(std::string_view(addr));
    entry.ethAddr = Pelt::EthAddr(std::string_view(mac));
    return entry;
  }
  // The entry is in the shared-memory table.
  Arp::Table::ArpEntry arrives(U32 vrf, const char* intf, const char* addr, const char* mac = "00:1c:73:00:00:01") {
    Arp::Table::ArpEntry entry = neighbour(vrf, intf, addr, mac);
    arpTarn->table().put(entry.key(), entry);
    return entry;
  }
  static ArpTableIndex indexOf(U32 ifIndex, const char* addr) {
    return ArpTableIndex(ifIndex, Pelt::IpAddr(std::string_view(addr)));
  }
  // The rows as "<ifIndex> <address>", in walk order.
  std::vector<std::string> rows() const {
    std::vector<std::string> out;
    for (auto it = ipMib->arpTable().begin(); it; ++it) {
      std::ostringstream text;
      text << it->ifIndex() << ' ' << it->netAddress();
      out.push_back(text.str());
    }
    return out;
  }

  CorruptionReportDir corruptionReports;
  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir =
      Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("intfStatus"));
  Quor::Ptr<IpMib> ipMib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  Quor::Ptr<DamageableTable<Arp::Table::Status>> arpTarn =
      Quor::makePtr<DamageableTable<Arp::Table::Status>>(Quor::Name("arp/status"));
  Quor::Ptr<ArpTableSm> sm;
};

using Strings = std::vector<std::string>;

TEST_F(ArpMachine, AnAddedEntryIsARowThatReadsTheNeighbourFromTheTable) {
  intfUp("Ethernet1", 3);
  start(VrfId(7));
  EXPECT_TRUE(rows().empty()) << "a machine made with a known id starts empty";
  const Arp::Table::ArpEntry entry = arrives(7, "Ethernet1", "10.0.0.9");
  sm->addArpEntry(entry);
  const ArpTableEntry* row = ipMib->arpTable(indexOf(3, "10.0.0.9"));
  ASSERT_TRUE(row);
  EXPECT_EQ(row->intfId(), Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(row->arpTarnVrfId(), VrfId(7));
  EXPECT_EQ(row->physAddress(), Pelt::EthAddr(std::string_view("00:1c:73:00:00:01")));
  arrives(7, "Ethernet1", "10.0.0.9", "00:1c:73:00:00:02");
  EXPECT_EQ(row->physAddress(), Pelt::EthAddr(std::string_view("00:1c:73:00:00:02")));

  sm->addArpEntry(entry);  // again, with equal values: nothing changes
  EXPECT_EQ(rows(), Strings{"3 10.0.0.9"});

  arpTarn->table().erase(entry.key());
  EXPECT_TRUE(row->physAddress().isZero()) << "the neighbour has left, the row is still there";
  sm->delArpEntry(entry.key());
  EXPECT_TRUE(rows().empty());
}

TEST_F(ArpMachine, AnEntryIsRefusedForStatusThenIndexThenVrfIdInThisOrder) {
  intfUp("Tunnel1", 4, "tunnel");  // no details provider: index -1
  start(unknown);
  TraceLines trace;
  sm->addArpEntry(neighbour(7, "Ethernet1", "10.0.0.1"));
  sm->addArpEntry(neighbour(7, "Tunnel1", "10.0.0.2"));
  EXPECT_EQ(trace.count("IpSnmp/8 no intfStatus"), 1);
  EXPECT_EQ(trace.count("IpSnmp/8 no ifIndex (yet?)"), 1);
  EXPECT_EQ(trace.count("IpSnmp/8 no arp tarn vrf id (yet?)"), 0);

  intfUp("Ethernet1", 1);
  sm->addArpEntry(neighbour(7, "Ethernet1", "10.0.0.1"));
  EXPECT_EQ(trace.count("IpSnmp/8 no arp tarn vrf id (yet?)"), 1);
  EXPECT_TRUE(rows().empty());
}

TEST_F(ArpMachine, ADeletionMeetsTheSameTestsAndARowWithoutInterfaceStatusStays) {
  intfUp("Ethernet1", 1);
  start(VrfId(0));
  const Arp::Table::ArpEntry entry = arrives(0, "Ethernet1", "10.0.0.1");
  sm->addArpEntry(entry);
  ASSERT_EQ(rows(), Strings{"1 10.0.0.1"});

  intfStatusDir->intfStatusDel(Pelt::IntfId("Ethernet1"));
  TraceLines trace;
  sm->delArpEntry(entry.key());
  EXPECT_EQ(trace.count("IpSnmp/8 no intfStatus"), 1);
  EXPECT_EQ(rows(), Strings{"1 10.0.0.1"});

  intfUp("Ethernet1", 1);
  sm->arpTarnVrfIdIs(unknown);
  sm->delArpEntry(entry.key());
  EXPECT_EQ(trace.count("IpSnmp/8 no arp tarn vrf id (yet?)"), 1);
  EXPECT_EQ(rows(), Strings{"1 10.0.0.1"});
}

TEST_F(ArpMachine, TheVrfIdMovesOnlyThroughUnknown) {
  intfUp("Ethernet1", 1);
  arrives(7, "Ethernet1", "10.0.0.7");
  arrives(9, "Ethernet1", "10.0.0.9");
  arrives(0, "Ethernet1", "10.0.0.10");
  start(unknown);

  sm->arpTarnVrfIdIs(VrfId(7));
  EXPECT_EQ(sm->arpTarnVrfId(), VrfId(7));
  EXPECT_EQ(rows(), Strings{"1 10.0.0.7"});

  arrives(7, "Ethernet1", "10.0.0.17");
  TraceLines trace;
  sm->arpTarnVrfIdIs(VrfId(7));
  EXPECT_EQ(trace.countStarting("IpSnmp/8 void IpSnmp::ArpTableSm::populate()"), 0);
  EXPECT_EQ(rows(), Strings{"1 10.0.0.7"});

  sm->arpTarnVrfIdIs(VrfId(9));  // both known and different: deliberately nothing
  EXPECT_EQ(sm->arpTarnVrfId(), VrfId(7));
  EXPECT_EQ(rows(), Strings{"1 10.0.0.7"});

  sm->arpTarnVrfIdIs(unknown);
  EXPECT_EQ(sm->arpTarnVrfId(), unknown);
  EXPECT_EQ(rows(), Strings{"1 10.0.0.7"});

  sm->arpTarnVrfIdIs(VrfId(9));
  EXPECT_EQ(sm->arpTarnVrfId(), VrfId(9));
  EXPECT_EQ(rows(), (Strings{"1 10.0.0.7", "1 10.0.0.9"}));
  EXPECT_EQ(trace.count("IpSnmp/8 void IpSnmp::ArpTableSm::arpTarnVrfIdIs(Vrf::VrfIdMap::VrfId) cur: -1 new: 9"), 1);
}

TEST_F(ArpMachine, PopulateAtAnUnknownIdReadsNothing) {
  intfUp("Ethernet1", 1);
  arrives(7, "Ethernet1", "10.0.0.7");
  start(unknown);
  arpTarn->damageAfter(0);  // any read would be reported
  TraceLines trace;
  sm->populate();
  EXPECT_EQ(trace.count("IpSnmp/8   not arp ready"), 1);
  EXPECT_EQ(trace.countStarting("Tarn/1 "), 0);
  EXPECT_TRUE(rows().empty());
}

TEST_F(ArpMachine, PopulateStopsAtDamageAndKeepsWhatItAdded) {
  intfUp("Ethernet1", 1);
  arrives(7, "Ethernet1", "10.0.0.1");
  arrives(7, "Ethernet1", "10.0.0.2");
  arrives(7, "Ethernet1", "10.0.0.3");
  start(unknown);
  arpTarn->damageAfter(2);
  TraceLines trace;
  sm->arpTarnVrfIdIs(VrfId(7));
  EXPECT_EQ(rows(), (Strings{"1 10.0.0.1", "1 10.0.0.2"}));
  EXPECT_EQ(trace.countStarting("Tarn/1 TarnMap::corruptionDetected() arp/status/arpEntry "), 1);
}

TEST_F(ArpMachine, AnEntryOfAnotherInterfaceUnderAnExistingRowIsANameInUseFailure) {
  intfUp("Ethernet1", 5);
  intfUp("Vlan5", 5, "vlan");
  start(VrfId(0));
  sm->addArpEntry(neighbour(0, "Ethernet1", "10.0.0.1"));
  EXPECT_THROW(sm->addArpEntry(neighbour(0, "Vlan5", "10.0.0.1")), Quor::NameInUseException);
  const ArpTableEntry* row = ipMib->arpTable(indexOf(5, "10.0.0.1"));
  ASSERT_TRUE(row);
  EXPECT_EQ(row->intfId(), Pelt::IntfId("Ethernet1"));
}

TEST_F(ArpMachine, TeardownLeavesTheRows) {
  intfUp("Ethernet1", 1);
  start(VrfId(0));
  sm->addArpEntry(arrives(0, "Ethernet1", "10.0.0.1"));
  sm = nullptr;
  EXPECT_EQ(rows(), Strings{"1 10.0.0.1"});
  EXPECT_FALSE(ipMib->hasNotifiees());
  EXPECT_FALSE(intfStatusDir->hasNotifiees());
}

}  // namespace
}  // namespace IpSnmp
