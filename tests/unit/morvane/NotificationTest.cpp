// The store's entities tell their reactors what changed, by key for a collection, only after the
// state has changed, and not at all when nothing did: the machines count on all three.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/morvane/Store.h"
#include "tests/support/TestSupport.h"

namespace {

using Log = std::vector<std::string>;
using TestSupport::text;

class IpConfigWatcher : public Ip::Config::NotifieeConst {
 public:
  explicit IpConfigWatcher(Log& log) : log_(log) {}
  void onIpIntfConfig(const Pelt::IntfId& id) override {
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

TEST(StoreNotification, ACollectionTellsEachKeyThatChangedOnceTheChangeIsMade) {
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

TEST(StoreNotification, AnAttributeTellsAChangeAndNotAnEqualValue) {
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
  EXPECT_EQ(log, (Log{"addr 10.0.0.1/24", "addr 10.0.0.1/25", "l3Config red", "l3Config "}))
      << "a null L3 object reads as the empty VRF, not the default";
}

}  // namespace
