// Entries of the one ARP table reach the ARP machine of their VRF through the VRF-id table: id 0 is
// the default VRF, other ids are looked up by name among the VRFs that are up, an id that arrives
// after its VRF loads that VRF's entries, and what has no machine is dropped.
#include <algorithm>

#include "tests/unit/agent/TraceLines.h"
#include "tests/unit/agent/VrfLifecycleFixture.h"

namespace IpSnmp {
namespace {

using Strings = std::vector<std::string>;

class ArpRouting : public VrfLifecycle {
 protected:
  void SetUp() override {
    VrfLifecycle::SetUp();
    intfUp("Ethernet1", 1);
    initialized();
  }
  // The machine and VRF name that a key of `vrfId` goes to.
  std::pair<Quor::Ptr<ArpTableSm>, std::string> machineOf(U32 vrfId) {
    Arp::Table::ArpKey key{Vrf::VrfIdMap::VrfId(vrfId), Pelt::IntfId("Ethernet1"),
                           Pelt::IpAddr(std::string_view("10.0.0.1"))};
    Quor::String8 name("<none>");
    Quor::Ptr<ArpTableSm> machine = arpTarnKeyToArpTableSm(root->vrfRootSm(), key, &name);
    return {machine, name.str()};
  }
};

TEST_F(ArpRouting, IdZeroIsTheDefaultVrfWhateverTheIdTableSays) {
  vrfIdIs(0, "red");
  vrf("red");
  start();
  EXPECT_EQ(machineOf(0), std::make_pair(root->arpTableSm(), std::string("default")));
  neighbourIs(0, "Ethernet1", "10.0.0.1");
  EXPECT_EQ(arpRows(*ipMib), Strings{"1 10.0.0.1"});
  EXPECT_TRUE(arpRows(*ipMibOf("red")).empty());
}

TEST_F(ArpRouting, AnIdMissingFromTheIdTableIsIgnored) {
  vrf("red");
  start();
  TraceLines trace;
  EXPECT_EQ(machineOf(7), std::make_pair(Quor::Ptr<ArpTableSm>(), std::string("<none>")));
  neighbourIs(7, "Ethernet1", "10.0.0.7");
  EXPECT_EQ(trace.countStarting("IpSnmp/8 Ignoring update for arp entry "), 2);
  EXPECT_TRUE(arpRows(*ipMib).empty());
  EXPECT_TRUE(arpRows(*ipMibOf("red")).empty());
}

TEST_F(ArpRouting, AKnownIdWhoseVrfIsNotUpIsIgnored) {
  vrfIdIs(9, "blue");
  vrf("red");
  start();
  TraceLines trace;
  EXPECT_EQ(machineOf(9).first, nullptr);
  neighbourIs(9, "Ethernet1", "10.0.0.9");
  EXPECT_EQ(trace.countStarting("IpSnmp/8 VrfRoot for vrf 'blue' not found. Ignoring arp notification for "), 2);
  EXPECT_TRUE(arpRows(*ipMib).empty());
  EXPECT_TRUE(arpRows(*ipMibOf("red")).empty());
}

TEST_F(ArpRouting, EntriesOfAVrfShowOnceItsIdArrives) {
  vrf("red");
  start();
  const auto early = neighbourIs(7, "Ethernet1", "10.0.0.7");
  auto red = ipMibOf("red");
  EXPECT_TRUE(arpRows(*red).empty()) << "the id is not known yet";

  vrfIdIs(7, "red");
  EXPECT_EQ(vrfRoot("red")->arpTableSm()->arpTarnVrfId(), Vrf::VrfIdMap::VrfId(7));
  EXPECT_EQ(machineOf(7), std::make_pair(vrfRoot("red")->arpTableSm(), std::string("red")));
  EXPECT_EQ(arpRows(*red), Strings{"1 10.0.0.7"}) << "the id's arrival loads what came before it";

  neighbourIs(7, "Ethernet1", "10.0.0.8");
  EXPECT_EQ(arpRows(*red), (Strings{"1 10.0.0.7", "1 10.0.0.8"}));
  neighbourGone(early);
  EXPECT_EQ(arpRows(*red), Strings{"1 10.0.0.8"});
  EXPECT_TRUE(arpRows(*ipMib).empty());

  vrfIdGone(7);
  EXPECT_EQ(vrfRoot("red")->arpTableSm()->arpTarnVrfId(), Vrf::VrfIdMap::unknownVrfId);
  EXPECT_EQ(arpRows(*red), Strings{"1 10.0.0.8"}) << "an id that goes leaves the rows";
}

TEST_F(ArpRouting, TheInitializationPassLoadsEveryVrfThatIsUpWithAKnownId) {
  store.snmpStatus->initializedIs(false);
  vrfIdIs(7, "red");
  vrfIdIs(9, "blue");
  neighbourIs(0, "Ethernet1", "10.0.0.1");
  neighbourIs(7, "Ethernet1", "10.0.0.7");
  neighbourIs(9, "Ethernet1", "10.0.0.9");
  neighbourIs(7, "Ethernet2", "10.0.0.2");  // no interface status
  vrf("red");
  vrf("blue");
  start();
  EXPECT_TRUE(arpRows(*ipMib).empty()) << "the default VRF's machine starts empty";
  initialized();
  EXPECT_EQ(arpRows(*ipMib), Strings{"1 10.0.0.1"});
  EXPECT_EQ(arpRows(*ipMibOf("red")), Strings{"1 10.0.0.7"});
  EXPECT_EQ(arpRows(*ipMibOf("blue")), Strings{"1 10.0.0.9"});

  intfUp("Ethernet2", 2);
  EXPECT_EQ(arpRows(*ipMibOf("red")), (Strings{"1 10.0.0.7", "2 10.0.0.2"})) << "the interface's status brings it";
}

TEST_F(ArpRouting, AnEntryRefusedForANegativeIndexComesInWithTheInterfacesIndex) {
  intfUp("Tunnel1", 4, "tunnel");  // no details provider: index -1
  start();
  neighbourIs(0, "Tunnel1", "10.0.0.4");
  EXPECT_TRUE(arpRows(*ipMib).empty());
  TraceLines trace;
  intfUp("Tunnel1", 4, "tunnel");
  EXPECT_EQ(trace.count("IpSnmp/8 no ifIndex (yet?)"), 1) << "the machine's pass does not begin";
  intfUp("Tunnel1", 4);
  EXPECT_EQ(arpRows(*ipMib), Strings{"4 10.0.0.4"});
}

double slowTime = 0;
// Every reading of the clock is a tenth of a millisecond later: a slice of 5 ms takes about 50 entries.
double slowNow() { return slowTime += 0.0001; }

TEST_F(ArpRouting, AnInterfaceChangeWalksTheTableInSlicesAndOneChangedMeanwhileWaitsForTheNextWalk) {
  start();
  for (int i = 0; i < 300; ++i) {
    const std::string addr = "10.0." + std::to_string(i / 100) + "." + std::to_string(i % 100 + 1);
    neighbourIs(0, "Ethernet2", addr.c_str());
    neighbourIs(0, "Ethernet3", addr.c_str());
  }
  ASSERT_TRUE(arpRows(*ipMib).empty()) << "no status, no rows";
  Quor::nowSourceIs(slowNow);
  intfUp("Ethernet2", 2);
  const std::size_t firstSlice = arpRows(*ipMib).size();
  EXPECT_GT(firstSlice, 0u) << "the first slice runs at once";
  EXPECT_LT(firstSlice, 300u);
  intfUp("Ethernet3", 3);
  int slices = 0;
  while (root->vrfRootSm()->arpWalking() && slices < 1000) {
    Quor::activityManager()->runDue();
    ++slices;
  }
  Quor::nowSourceIs(nullptr);
  EXPECT_GT(slices, 2);
  EXPECT_EQ(arpRows(*ipMib).size(), 600u);
}

TEST_F(ArpRouting, AVrfWhoseNeighboursTakeSlicesOpensItsContextOnceTheyAreIn) {
  start();
  vrfIdIs(7, "red");
  for (int i = 0; i < 300; ++i) {
    const std::string addr = "10.0." + std::to_string(i / 100) + "." + std::to_string(i % 100 + 1);
    neighbourIs(7, "Ethernet1", addr.c_str());
  }
  auto opened = [&] {
    return std::count_if(contexts.calls.begin(), contexts.calls.end(), [](const std::string& call) { return call.starts_with("open red:"); });
  };
  Quor::nowSourceIs(slowNow);
  vrf("red");
  auto red = ipMibOf("red");
  EXPECT_LT(arpRows(*red).size(), 300u) << "the first slice runs at once";
  EXPECT_EQ(opened(), 0);
  for (int slice = 0; slice < 1000 && !opened(); ++slice) Quor::activityManager()->runDue();
  Quor::nowSourceIs(nullptr);
  EXPECT_EQ(opened(), 1);
  EXPECT_EQ(arpRows(*red).size(), 300u);
}

TEST_F(ArpRouting, TheDefaultNameInTheNameMapChangesNothing) {
  vrf("red");
  start();
  TraceLines trace;
  vrfIdIs(5, "default");
  EXPECT_EQ(trace.count("IpSnmp/8 void IpSnmp::VrfRootSm::handleArpTarnVrfName(Quor::String) vrf: default"), 1);
  EXPECT_EQ(trace.countStarting("IpSnmp/8 vrf root for "), 0);
  EXPECT_EQ(root->arpTableSm()->arpTarnVrfId(), Vrf::VrfIdMap::defaultVrfId);
  EXPECT_EQ(vrfRoot("red")->arpTableSm()->arpTarnVrfId(), Vrf::VrfIdMap::unknownVrfId);
}

TEST_F(ArpRouting, ANameWithoutVrfRootInTheNameMapIsTraced) {
  start();
  TraceLines trace;
  vrfIdIs(9, "blue");
  EXPECT_EQ(trace.count("IpSnmp/8 vrf root for blue not found"), 1);
}

}  // namespace
}  // namespace IpSnmp
