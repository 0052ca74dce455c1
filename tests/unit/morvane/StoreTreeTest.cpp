// The store's tree: the paths that the system reads resolve, and the interface index comes only
// through a details provider.
#include <gtest/gtest.h>

#include "platform/morvane/Store.h"

namespace {

Morvane::Store freshStore() { return Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("sys"))); }

TEST(StoreTree, ThePathsTheSystemReadsResolveToTheirEntities) {
  Morvane::Store store = freshStore();
  auto red = Quor::makePtr<Routing::Config>(Quor::Name("red"));
  store.routingVrfConfigDir->vrfConfigIs(red);
  EXPECT_EQ(Quor::entityAtPath(store.root, "Morvane/routing/config"), store.routingConfig);
  EXPECT_EQ(Quor::entityAtPath(store.root, "Morvane/routing6/config"), store.routing6Config);
  EXPECT_EQ(Quor::entityAtPath(store.root, "Morvane/routing/vrf/config.vrfConfig/red"), red);
  EXPECT_EQ(Quor::entityAtPath(store.root, "Morvane/routing/vrf/config.vrfConfig/blue"), nullptr);
  EXPECT_EQ(Quor::entityAtPath(store.root, "Morvane/routing/vrf/config.nothing/red"), nullptr);
  EXPECT_TRUE(Quor::dynamicPtrCast<Routing6::Config>(Quor::entityAtPath(store.root, "Morvane/routing6/config")));
  EXPECT_FALSE(Quor::dynamicPtrCast<Routing::Config>(Quor::entityAtPath(store.root, "Morvane/routing6/config")))
      << "the IPv6 switch is not mistaken for the IPv4 one";
}

TEST(StoreTree, EveryEntityStandsAtItsDocumentedPath) {
  Morvane::Store store = freshStore();
  EXPECT_EQ(store.routingVrfInfoDir->fullName(), "/sys/Morvane/routing/vrf/info");
  EXPECT_EQ(store.ipConfig->fullName(), "/sys/Morvane/ip/config");
  EXPECT_EQ(store.ipStatus->fullName(), "/sys/Morvane/ip/status");
  EXPECT_EQ(store.allVrfConfig->fullName(), "/sys/Morvane/ip/vrf/config");
  EXPECT_EQ(store.allVrfStatusLocal->fullName(), "/sys/Morvane/ip/vrf/status/local");
  EXPECT_EQ(store.ip6Config->fullName(), "/sys/Morvane/ip6/config");
  EXPECT_EQ(store.ip6Status->fullName(), "/sys/Morvane/ip6/status");
  EXPECT_EQ(store.intfStatusDir->fullName(), "/sys/Morvane/interface/status/all");
  EXPECT_EQ(store.snmpStatus->fullName(), "/sys/Morvane/snmp/status");
  EXPECT_EQ(store.entityManager->root(), store.root);
}

TEST(StoreTree, BuildingTwiceUnderOneRootIsRefused) {
  Morvane::Store store = freshStore();
  EXPECT_THROW(Morvane::buildStore(store.root), Quor::NameInUseException);
}

Quor::Ptr<const Interface::IntfStatus> intf(const char* kind, S32 ifIndex) {
  return Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId("Ethernet1"), Quor::Name(kind), ifIndex);
}

TEST(IntfIfIndex, AKindWithoutAProviderGivesMinusOne) {
  EXPECT_EQ(intfIfIndex(intf("ethernet", 7)), 7);
  EXPECT_EQ(intfIfIndex(intf("tunnel", 7)), -1);
  EXPECT_EQ(intfIfIndex(nullptr), -1);
  EXPECT_EQ(intfIfIndex(intf("vlan", 0)), 0) << "no index yet is below 1, not -1";
}

TEST(IntfIfIndex, AnInstalledProviderAnswersForItsKindUntilRemoved) {
  struct Fixed final : Intf::IntfDetailsProvider {
    S32 ifIndex(const Quor::Ptr<const Interface::IntfStatus>&) const override { return 1000; }
  };
  Intf::intfDetailsProviderIs(Quor::Name("tunnel"), Quor::makePtr<Fixed>());
  EXPECT_EQ(intfIfIndex(intf("tunnel", 7)), 1000);
  Intf::intfDetailsProviderIs(Quor::Name("tunnel"), nullptr);
  EXPECT_EQ(intfIfIndex(intf("tunnel", 7)), -1);
}

}  // namespace
