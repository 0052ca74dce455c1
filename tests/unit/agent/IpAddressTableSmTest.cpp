// The IPv4 side of the address machine: configuration and status of each interface merge into one row
// per address, the rows follow the interface's index and VRF, and the machine takes back what it added.
#include "AddressStoreFixture.h"

namespace IpSnmp {
namespace {

using Strings = std::vector<std::string>;

class Ipv4Addresses : public AddressStoreFixture {};

TEST_F(Ipv4Addresses, ConfiguredOnlyAddressReadsInaccessibleWithTheConfiguredIndex) {
  intfUp("Ethernet1", 11);
  configured("Ethernet1", "10.0.0.1/24");
  start();
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "inaccessible 11");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"11 10.0.0.0/24"});
  EXPECT_EQ(ipAddrRowsOf(*ipMib), Strings{"10.0.0.1 11 255.255.255.0"});
}

TEST_F(Ipv4Addresses, StatusArrivingTurnsTheSameRowPreferredWithTheStatusInterfaceIndex) {
  intfUp("Ethernet1", 11);
  intfUp("Ethernet2", 22);
  configured("Ethernet1", "10.0.0.1/24");
  start();
  const IpAddressEntry* row = ipMib->ipAddressTable(address("10.0.0.1"));
  active("Ethernet2", "10.0.0.1/24");
  EXPECT_EQ(ipMib->ipAddressTable(address("10.0.0.1")), row) << "the row stays the same object";
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "preferred 22");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"22 10.0.0.0/24"}) << "only the master's prefix stands in the table";
  EXPECT_EQ(ipAddrRowsOf(*ipMib), Strings{"10.0.0.1 22 255.255.255.0"});

  status->ipIntfStatusDel(Pelt::IntfId("Ethernet2"));
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "inaccessible 11") << "back to the configuration";
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"11 10.0.0.0/24"});
}

TEST_F(Ipv4Addresses, OfTwoStatusInterfacesTheLowerInterfaceIsMasterWhateverItsIndex) {
  intfUp("Ethernet1", 30);
  intfUp("Ethernet2", 10);
  start();
  active("Ethernet2", "10.0.0.1/24");
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "preferred 10");
  active("Ethernet1", "10.0.0.1/24");
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "preferred 30") << "Ethernet1 sorts first and takes over";
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"30 10.0.0.0/24"});
  status->ipIntfStatusDel(Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "preferred 10");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"10 10.0.0.0/24"});
}

TEST_F(Ipv4Addresses, RemovingConfigOrStatusRemovesExactlyThatOccurrence) {
  intfUp("Ethernet5", 5);
  configured("Ethernet5", "10.0.0.1/24");
  active("Ethernet5", "10.0.0.1/24");
  start();
  EXPECT_EQ(occurrencesOf(*ipMib, "10.0.0.1"), 2u);
  config->ipIntfConfigDel(Pelt::IntfId("Ethernet5"));
  EXPECT_EQ(occurrencesOf(*ipMib, "10.0.0.1"), 1u);
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "preferred 5") << "nothing changes for the reader";
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"5 10.0.0.0/24"});
  EXPECT_EQ(ipAddrRowsOf(*ipMib), Strings{"10.0.0.1 5 255.255.255.0"});
  status->ipIntfStatusDel(Pelt::IntfId("Ethernet5"));
  EXPECT_TRUE(empty(*ipMib)) << "the row goes with its last occurrence, in all three tables";
}

TEST_F(Ipv4Addresses, AddressChangeRemovesTheOldAndAddsTheNew) {
  intfUp("Ethernet1", 1);
  auto entity = active("Ethernet1", "10.0.0.1/24");
  start();
  entity->activeAddrWithMaskIs(Pelt::IpAddrWithMask("10.9.0.1/16"));
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "none");
  EXPECT_EQ(rowOf(*ipMib, "10.9.0.1"), "preferred 1");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"1 10.9.0.0/16"});
  EXPECT_EQ(ipAddrRowsOf(*ipMib), Strings{"10.9.0.1 1 255.255.0.0"});
  entity->activeAddrWithMaskIs(Pelt::IpAddrWithMask());
  EXPECT_TRUE(empty(*ipMib)) << "a change to 0.0.0.0 only removes";
}

TEST_F(Ipv4Addresses, InterfaceWithoutIndexGetsNoRowsUntilTheIndexArrives) {
  intfUp("Ethernet7", 0);
  intfUp("Tunnel1", 9, "tunnel");  // a kind without index provider reads -1
  active("Ethernet7", "10.0.7.1/24");
  active("Tunnel1", "10.0.8.1/24");
  start();
  EXPECT_TRUE(empty(*ipMib));
  intfUp("Ethernet7", 7);
  EXPECT_EQ(rowOf(*ipMib, "10.0.7.1"), "preferred 7") << "the remembered address finds no row, the add succeeds";
  EXPECT_EQ(rowOf(*ipMib, "10.0.8.1"), "none");
}

TEST_F(Ipv4Addresses, InterfaceWithoutStatusGetsItsRowsWhenTheStatusArrives) {
  configured("Ethernet3", "10.0.3.1/24");
  active("Ethernet3", "10.0.3.1/24");
  start();
  EXPECT_TRUE(empty(*ipMib));
  intfUp("Ethernet3", 3);
  EXPECT_EQ(rowOf(*ipMib, "10.0.3.1"), "preferred 3");
  EXPECT_EQ(occurrencesOf(*ipMib, "10.0.3.1"), 2u);
}

TEST_F(Ipv4Addresses, InterfaceThatLosesItsStatusKeepsItsRowsEvenWhenItsReactorGoes) {
  intfUp("Ethernet3", 3);
  configured("Ethernet3", "10.0.3.1/24");
  start();
  intfGone("Ethernet3");
  EXPECT_EQ(rowOf(*ipMib, "10.0.3.1"), "inaccessible 3");
  config->ipIntfConfigDel(Pelt::IntfId("Ethernet3"));
  EXPECT_EQ(rowOf(*ipMib, "10.0.3.1"), "inaccessible 3") << "without a status the reactor deletes nothing";
}

TEST_F(Ipv4Addresses, NewStatusWithAnotherIndexReaddsUnderTheNewIndex) {
  intfUp("Ethernet1", 1);
  active("Ethernet1", "10.0.0.1/24");
  start();
  intfUp("Ethernet1", 41);
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "preferred 41");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"41 10.0.0.0/24"}) << "IPv4 deletes before it adds";
}

TEST_F(Ipv4Addresses, ConflictingPrefixLengthIsTracedAndTheNewDataWins) {
  intfUp("Ethernet1", 1);
  configured("Ethernet1", "10.0.0.1/24");
  start();
  TraceCapture trace;
  sm->doAddAddr(Pelt::IntfId("Ethernet1"), addressSourceConfig, 1, "default", Pelt::IpAddrWithMask("10.0.0.1/16"));
  EXPECT_TRUE(trace.has(1, "Ethernet1 already has address 10.0.0.1/16 with prefix length 24; ignoring it"));
  EXPECT_EQ(ipAddrRowsOf(*ipMib), Strings{"10.0.0.1 1 255.255.0.0"}) << "the occurrence holds the new length";
}

TEST_F(Ipv4Addresses, MasterAddedAgainLeavesItsOldPrefixRowBehindOnRemoval) {
  intfUp("Ethernet1", 1);
  active("Ethernet1", "10.0.0.1/24");
  start();
  sm->doAddAddr(Pelt::IntfId("Ethernet1"), addressSourceStatus, 1, "default", Pelt::IpAddrWithMask("10.0.0.1/24"));
  status->ipIntfStatusDel(Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "none");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"1 10.0.0.0/24"}) << "the table held another object than the occurrence";
}

TEST_F(Ipv4Addresses, MutatorsRefuseNullWithTheirOwnMessages) {
  start();
  auto failureOf = [](const std::function<void()>& action) -> std::string {
    try {
      action();
    } catch (const Quor::RangeException& e) {
      return e.text();
    }
    return "no failure";
  };
  const std::string tail = " not allowed\"";
  EXPECT_EQ(failureOf([&] { sm->ipIntfConfigIs(nullptr); }),
            "null _ipIntfConfig parameter to mutator for IpSnmp::IpAddressTableSm::ipIntfConfig" + tail);
  EXPECT_EQ(failureOf([&] { sm->ipIntfStatusIs(nullptr); }),
            "null _ipIntfStatus parameter to mutator for IpSnmp::IpAddressTableSm::ipIntfStatus" + tail);
  EXPECT_EQ(failureOf([&] { sm->ip6IntfConfigIs(nullptr); }),
            "null _ip6IntfConfig parameter to mutator for IpSnmp::IpAddressTableSm::ip6IntfConfig" + tail);
  EXPECT_EQ(failureOf([&] { sm->ip6IntfStatusIs(nullptr); }),
            "null _ip6IntfStatus parameter to mutator for IpSnmp::IpAddressTableSm::ip6IntfStatus" + tail);
  EXPECT_EQ(failureOf([&] { sm->vrfIpMibIs(nullptr); }),
            "null _vrfIpMib parameter to mutator for IpSnmp::IpAddressTableSm::vrfIpMib" + tail);
  EXPECT_EQ(failureOf([&] { sm->handleIntfInVrf(Quor::Name(std::string(101, 'v'))); }),
            "VrfName::bytes > 100 not allowed");
}

class VrfMoves : public AddressStoreFixture {};

TEST_F(VrfMoves, InterfaceMovingBetweenVrfsTakesItsIpv4RowsAlongAndLeavesIpv6InTheDefault) {
  intfUp("Ethernet1", 1);
  auto l3Config = configured("Ethernet1", "10.0.0.1/24")->l3Config();
  auto l3Status = active("Ethernet1", "10.0.0.1/24")->l3Status();
  active6("Ethernet1", {"2001:db8::1/64"});
  start();
  auto red = vrfUp("red");
  auto blue = vrfUp("blue");

  l3Config->vrfIs("red");
  l3Status->vrfIs("red");
  EXPECT_EQ(rowOf(*red, "10.0.0.1"), "preferred 1");
  EXPECT_EQ(occurrencesOf(*red, "10.0.0.1"), 2u);
  EXPECT_EQ(prefixesOf(*red), Strings{"1 10.0.0.0/24"});
  EXPECT_EQ(ipAddrRowsOf(*red), Strings{"10.0.0.1 1 255.255.255.0"});
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "none");
  EXPECT_EQ(prefixesOf(*ipMib), Strings{"1 2001:db8::/64"}) << "only the IPv6 prefix is left in the default";
  EXPECT_TRUE(ipAddrRowsOf(*ipMib).empty());

  l3Status->vrfIs("blue");
  l3Config->vrfIs("blue");
  EXPECT_TRUE(empty(*red));
  EXPECT_EQ(rowOf(*blue, "10.0.0.1"), "preferred 1");
  EXPECT_EQ(prefixesOf(*blue), Strings{"1 10.0.0.0/24"});
  EXPECT_EQ(rowOf(*ipMib, "2001:db8::1"), "preferred 1") << "IPv6 stays in the default VRF's table";
}

TEST_F(VrfMoves, VrfNotUpYetMakesTheInterfaceWaitUntilHandleIntfInVrfLetsItIn) {
  intfUp("Ethernet1", 1);
  auto l3Config = configured("Ethernet1", "10.0.0.1/24")->l3Config();
  auto l3Status = active("Ethernet1", "10.0.0.1/24")->l3Status();
  start();
  l3Config->vrfIs("green");
  l3Status->vrfIs("green");
  EXPECT_TRUE(empty(*ipMib)) << "the address leaves the old table at once";
  EXPECT_EQ(sm->ipIntfStatus(Pelt::IntfId("Ethernet1"))->currentVrf(), L3::VrfName());

  auto green = vrfUp("green");
  EXPECT_TRUE(empty(*green)) << "registering the table touches no rows";
  sm->handleIntfInVrf(Quor::Name("green"));
  EXPECT_EQ(rowOf(*green, "10.0.0.1"), "preferred 1");
  EXPECT_EQ(occurrencesOf(*green, "10.0.0.1"), 2u);
  EXPECT_EQ(ipAddrRowsOf(*green), Strings{"10.0.0.1 1 255.255.255.0"});
}

TEST_F(VrfMoves, InterfaceInAVrfThatIsNotUpAtStartWaitsForIt) {
  intfUp("Ethernet1", 1);
  configured("Ethernet1", "10.0.0.1/24", "green");
  active("Ethernet1", "10.0.0.1/24", "green");
  start();
  EXPECT_TRUE(empty(*ipMib));
  auto green = vrfUp("green");
  sm->handleIntfInVrf(Quor::Name("blue"));
  EXPECT_TRUE(empty(*green)) << "only the interfaces of the named VRF move in";
  sm->handleIntfInVrf(Quor::Name("green"));
  EXPECT_EQ(rowOf(*green, "10.0.0.1"), "preferred 1");
  EXPECT_EQ(prefixesOf(*green), Strings{"1 10.0.0.0/24"});
}

TEST_F(VrfMoves, OnlyTheConfigSideReaddsWhenTheVrfItStandsInComesUpAgain) {
  intfUp("Ethernet1", 1);
  configured("Ethernet1", "10.0.0.1/24", "red");
  active("Ethernet1", "10.0.0.1/24", "red");
  start();
  auto red = vrfUp("red");
  sm->handleIntfInVrf(Quor::Name("red"));
  const IpAddressEntry* row = red->ipAddressTable(address("10.0.0.1"));
  const IntfDataKey configKey(addressSourceConfig, Pelt::IntfId("Ethernet1"));
  const IntfDataKey statusKey(addressSourceStatus, Pelt::IntfId("Ethernet1"));
  const IntfData configBefore = row->intf(configKey);
  const IntfData statusBefore = row->intf(statusKey);
  sm->handleIntfInVrf(Quor::Name("red"));
  EXPECT_FALSE(row->intf(configKey) == configBefore) << "the config side deletes and adds again";
  EXPECT_TRUE(row->intf(statusKey) == statusBefore) << "the status side stops at the unchanged VRF";
}

TEST_F(VrfMoves, EmptyVrfNameKeepsTheConfigOccurrenceButRemovesTheStatusOne) {
  intfUp("Ethernet1", 1);
  auto l3Config = configured("Ethernet1", "10.0.0.1/24")->l3Config();
  auto l3Status = active("Ethernet1", "10.0.0.1/24")->l3Status();
  start();
  l3Config->vrfIs("");
  EXPECT_EQ(occurrencesOf(*ipMib, "10.0.0.1"), 2u) << "the config side ignores the empty name";
  l3Status->vrfIs("");
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "inaccessible 1") << "the status side leaves and waits";
}

TEST_F(VrfMoves, AddressWhoseVrfTableWentWaitsForItsVrfToComeBack) {
  intfUp("Ethernet1", 1);
  active("Ethernet1", "10.0.0.1/24", "red");
  start();
  auto red = vrfUp("red");
  sm->handleIntfInVrf(Quor::Name("red"));
  EXPECT_EQ(sm->vrfIpMibDel(Quor::Name("red")), red);
  EXPECT_EQ(rowOf(*red, "10.0.0.1"), "preferred 1") << "the rows inside are not touched";
  EXPECT_EQ(sm->ipIntfStatus(Pelt::IntfId("Ethernet1"))->currentVrf(), L3::VrfName()) << "it waits";
  auto again = vrfUp("red");
  sm->handleIntfInVrf(Quor::Name("red"));
  EXPECT_EQ(rowOf(*again, "10.0.0.1"), "preferred 1") << "a status-only address comes back with its VRF";
}

class MachineLifetime : public AddressStoreFixture {};

TEST_F(MachineLifetime, DestroyingTheMachineRemovesWhatItAdded) {
  intfUp("Ethernet1", 1);
  intfUp("Ethernet2", 2);
  configured("Ethernet1", "10.0.0.1/24");
  active("Ethernet1", "10.0.0.1/24");
  configured("Ethernet2", "10.0.2.1/24", "red");
  active("Ethernet2", "10.0.2.1/24", "red");
  auto v6 = active6("Ethernet1", {});
  configured6("Ethernet2", {});
  start();
  auto red = vrfUp("red");
  sm->handleIntfInVrf(Quor::Name("red"));
  v6->addrIs(info6("2001:db8::1/64"));
  config6->intf(Pelt::IntfId("Ethernet2"))->addrIs(info6("2001:db8:2::1/64"));
  ASSERT_EQ(ipMib->ipAddressTable().members(), 3u);
  ASSERT_EQ(red->ipAddressTable().members(), 1u);

  sm = nullptr;
  EXPECT_TRUE(empty(*ipMib));
  EXPECT_TRUE(empty(*red));
  config->ipIntfConfigDel(Pelt::IntfId("Ethernet1"));
  active("Ethernet9", "10.0.9.1/24");
  intfUp("Ethernet9", 9);
  EXPECT_TRUE(empty(*ipMib)) << "nothing follows the store any more";
}

TEST_F(MachineLifetime, ReplacedEntityIsFollowedInsteadOfTheOldOne) {
  intfUp("Ethernet1", 1);
  auto old = configured("Ethernet1", "10.0.0.1/24");
  start();
  auto red = vrfUp("red");
  auto l3Config = configured("Ethernet1", "10.0.0.2/24")->l3Config();
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.1"), "none") << "the old entity's address went with it";
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.2"), "inaccessible 1");
  old->addrWithMaskIs(Pelt::IpAddrWithMask("10.0.0.3/24"));
  old->l3Config()->vrfIs("red");
  EXPECT_EQ(rowOf(*ipMib, "10.0.0.3"), "none") << "the old entity is not followed any more";
  EXPECT_TRUE(empty(*red));
  l3Config->vrfIs("red");
  EXPECT_EQ(rowOf(*red, "10.0.0.2"), "inaccessible 1") << "the new entity's L3 object is followed";
}

}  // namespace
}  // namespace IpSnmp
