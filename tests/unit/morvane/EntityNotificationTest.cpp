// The store's entities tell their reactors what changed, by key for a collection, only after the
// state has changed, and not at all when nothing did.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/morvane/Store.h"
#include "platform/morvane/VrfNameToIdMap.h"

namespace {

using Log = std::vector<std::string>;

template <class T>
std::string text(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

class IpConfigWatcher : public Ip::Config::NotifieeConst {
 public:
  explicit IpConfigWatcher(Log& log) : log_(log) {}
  void onIpIntfConfig(const Pelt::IntfId& id) override {
    // The state has changed before the reactor is told: the lookup already sees it.
    log_.push_back(text(id) + (notifier()->ipIntfConfig(id) ? " present" : " absent"));
  }

 private:
  Log& log_;
};

class IntfConfigWatcher : public Ip::IpIntfConfig::NotifieeConst {
 public:
  explicit IntfConfigWatcher(Log& log) : log_(log) {}
  void onAddrWithMask() override { log_.push_back("addr " + text(notifier()->addrWithMask())); }
  void onL3Config() override { log_.push_back("l3Config " + text(L3::Intf::vrfOf(notifier()->l3Config()))); }

 private:
  Log& log_;
};

TEST(CollectionNotification, AddChangeAndRemoveEachTellTheKeyOnce) {
  Log log;
  auto config = Quor::makePtr<Ip::Config>(Quor::Name("config"));
  auto watcher = Quor::makePtr<IpConfigWatcher>(log);
  watcher->notifierIs(config);
  Pelt::IntfId e1("Ethernet1");
  auto first = Quor::makePtr<Ip::IpIntfConfig>(e1);
  config->ipIntfConfigIs(first);
  config->ipIntfConfigIs(first);
  config->ipIntfConfigIs(Quor::makePtr<Ip::IpIntfConfig>(e1));
  config->ipIntfConfigDel(e1);
  config->ipIntfConfigDel(e1);
  EXPECT_EQ(log, (Log{"Ethernet1 present", "Ethernet1 present", "Ethernet1 absent"}))
      << "the same member again and an absent key tell nobody";
}

TEST(CollectionNotification, MembersIterateInKeyOrderAndCount) {
  auto status = Quor::makePtr<Ip::Status>(Quor::Name("status"));
  for (const char* name : {"Vlan10", "Ethernet2", "Ethernet1"})
    status->ipIntfStatusIs(Quor::makePtr<Ip::IpIntfStatus>(Pelt::IntfId(name), nullptr));
  std::string order;
  for (auto [id, member] : status->ipIntfStatuses()) order += text(id) + "=" + text(member->intfId()) + " ";
  EXPECT_EQ(order, "Ethernet1=Ethernet1 Ethernet2=Ethernet2 Vlan10=Vlan10 ");
  EXPECT_EQ(status->ipIntfStatuses().members(), 3u);
}

TEST(CollectionNotification, ANullMemberIsARangeFailureNamingTheAttribute) {
  auto config = Quor::makePtr<Ip::Config>(Quor::Name("config"));
  try {
    config->ipIntfConfigIs(nullptr);
    FAIL() << "no exception";
  } catch (const Quor::RangeException& e) {
    EXPECT_EQ(e.text(), "null _ipIntfConfig parameter to mutator for Ip::Config::ipIntfConfig not allowed");
  }
}

TEST(AttributeNotification, AChangedValueTellsAndAnEqualOneDoesNot) {
  Log log;
  auto intf = Quor::makePtr<Ip::IpIntfConfig>(Pelt::IntfId("Ethernet1"));
  auto watcher = Quor::makePtr<IntfConfigWatcher>(log);
  watcher->notifierIs(intf);
  intf->addrWithMaskIs(Pelt::IpAddrWithMask("10.0.0.1/24"));
  intf->addrWithMaskIs(Pelt::IpAddrWithMask("10.0.0.1/24"));
  intf->addrWithMaskIs(Pelt::IpAddrWithMask("10.0.0.1/25"));
  auto l3 = Quor::makePtr<L3::Intf::Config>(Quor::Name("Ethernet1"));
  l3->vrfIs("red");
  intf->l3ConfigIs(l3);
  intf->l3ConfigIs(l3);
  intf->l3ConfigIs(nullptr);
  EXPECT_EQ(log, (Log{"addr 10.0.0.1/24", "addr 10.0.0.1/25", "l3Config red", "l3Config "}));
}

TEST(AttributeNotification, ANullL3ObjectReadsAsTheEmptyVrfNotTheDefault) {
  auto intf = Quor::makePtr<Ip::IpIntfStatus>(Pelt::IntfId("Ethernet1"), nullptr);
  Quor::Ptr<const Ip::IpIntfStatus> reader = intf;
  EXPECT_EQ(L3::Intf::vrfOf(reader->l3Status()), L3::VrfName());
  EXPECT_NE(L3::Intf::vrfOf(reader->l3Status()), L3::VrfName("default"));
}

class Ip6Watcher : public Ip6::IntfStatus::NotifieeConst {
 public:
  explicit Ip6Watcher(Log& log) : log_(log) {}
  void onAddr(const Pelt::Ip6AddrWithMask& key) override {
    log_.push_back(text(key) + " -> " + text(notifier()->addr(key)));
  }

 private:
  Log& log_;
};

TEST(Ip6Addresses, AnAbsentAddressReadsAsTheDefaultInfo) {
  Log log;
  auto intf = Quor::makePtr<Ip6::IntfStatus>(Pelt::IntfId("Ethernet1"));
  auto watcher = Quor::makePtr<Ip6Watcher>(log);
  watcher->notifierIs(intf);
  Pelt::Ip6AddrWithMask key("2001:db8::1/64");
  intf->addrIs(Ip6::AddressInfo(key));
  intf->addrDel(key);
  EXPECT_EQ(log, (Log{"2001:db8::1/64 -> 2001:db8::1/64", "2001:db8::1/64 -> ::/0"}));
  EXPECT_EQ(intf->addr(key), Ip6::AddressInfo());
}

class VrfStatusWatcher : public Ip::VrfStatusLocal::NotifieeConst {
 public:
  explicit VrfStatusWatcher(Log& log) : log_(log) {}
  void onState() override { log_.push_back("state " + text(notifier()->state())); }
  void onNetworkNamespace() override { log_.push_back("ns " + text(notifier()->networkNamespace())); }
  void onNsInode() override { log_.push_back("inode " + std::to_string(notifier()->nsInode())); }
  void onNsInodeValid() override { log_.push_back(notifier()->nsInodeValid() ? "valid" : "invalid"); }

 private:
  Log& log_;
};

TEST(AttributeNotification, EachAttributeOfAVrfStatusHasItsOwnNotification) {
  Log log;
  auto vrf = Quor::makePtr<Ip::VrfStatusLocal>(L3::VrfName("red"));
  auto watcher = Quor::makePtr<VrfStatusWatcher>(log);
  watcher->notifierIs(vrf);
  vrf->stateIs(Ip::vrfStateActive);
  vrf->networkNamespaceIs("ns-red");
  vrf->nsInodeIs(4026532200u);
  vrf->nsInodeValidIs(true);
  vrf->stateIs(Ip::vrfStateActive);
  EXPECT_EQ(log, (Log{"state vrfStateActive", "ns ns-red", "inode 4026532200", "valid"}));
}

class NameToIdWatcher : public Vrf::VrfIdMap::NameToIdMap::NotifieeConst {
 public:
  explicit NameToIdWatcher(Log& log) : log_(log) {}
  void onVrfNameToId(const Quor::String8& name) override {
    log_.push_back(text(name) + "=" + text(notifier()->vrfNameToId(name)));
  }

 private:
  Log& log_;
};

TEST(NameToIdMap, ANameWithoutANumberReadsUnknownAndChangesAreToldByName) {
  Log log;
  auto map = Quor::makePtr<Vrf::VrfIdMap::NameToIdMap>(Quor::Name("nameToId"));
  auto watcher = Quor::makePtr<NameToIdWatcher>(log);
  watcher->notifierIs(map);
  EXPECT_TRUE(map->vrfNameToId("red").isUnknown());
  map->vrfNameToIdIs("red", Vrf::VrfIdMap::VrfId(3));
  map->vrfNameToIdIs("red", Vrf::VrfIdMap::VrfId(3));
  map->vrfNameToIdIs("red", Vrf::VrfIdMap::VrfId(4));
  map->vrfNameToIdDel("red");
  EXPECT_EQ(log, (Log{"red=3", "red=4", "red=-1"}));
}

TEST(Reflection, AttributeIdsFollowTheDeclarationOrder) {
  auto vrf = Quor::makePtr<Ip::VrfStatusLocal>(L3::VrfName("red"));
  EXPECT_EQ(vrf->attributeString(Quor::Entity::firstAttributeId + 1), "state");
  EXPECT_EQ(vrf->attributeId("nsInodeValid"), Quor::Entity::firstAttributeId + 4);
  EXPECT_EQ(vrf->attributeString(Quor::Entity::firstAttributeId + 5), "unknown");
  EXPECT_STREQ(vrf->fwkType(), "Ip::VrfStatusLocal");
}

TEST(Reflection, AMemberKnowsItsParentAndAttributeUntilRemoved) {
  auto dir = Quor::makePtr<Routing::VrfConfigDir>(Quor::Name("config"));
  auto red = Quor::makePtr<Routing::Config>(Quor::Name("red"));
  dir->vrfConfigIs(red);
  EXPECT_EQ(red->fullName(), "/config/red");
  EXPECT_EQ(red->parentAttr(), "vrfConfig");
  dir->vrfConfigDel("red");
  EXPECT_EQ(red->parent(), nullptr);
}

}  // namespace
