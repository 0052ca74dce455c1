// The store's collections tell their reactors which key changed, only after the change, and not at
// all when nothing did: the machines count on all three. (An attribute's equal value, and its
// change told before it is made, fail the scenario's diff and the VRF lifecycle.)
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

}  // namespace
