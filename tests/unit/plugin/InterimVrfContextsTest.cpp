// Until the VRF lifecycle machine exists, a VRF's context follows its routing configuration in the
// store: it opens when the configuration appears, closes without a trace when it goes, and is
// registered anew when the configuration is replaced by another entity.
#include <gtest/gtest.h>

#include "frontend/IpBase.h"
#include "platform/morvane/Store.h"
#include "platform/snmp/ContextTeardown.h"
#include "platform/snmp/SnmpUtil.h"
#include "plugin/InterimVrfContexts.h"

namespace {

oid ipForwardingInstance[] = {1, 3, 6, 1, 2, 1, 4, 1, 0};

// The configuration that ipForwarding reads in the context of `vrf`, or null when it is not served.
const void* servedConfig(const char* vrf) {
  netsnmp_subtree* subtree =
      netsnmp_subtree_find(ipForwardingInstance, OID_LENGTH(ipForwardingInstance), nullptr, vrf);
  if (!subtree || !subtree->reginfo) return nullptr;
  for (netsnmp_mib_handler* h = subtree->reginfo->handler; h; h = h->next)
    if (h->access_method == handle_ipForwarding) return subtree->reginfo->my_reg_void;
  return nullptr;
}

class InterimVrfContextsTest : public ::testing::Test {
 protected:
  void SetUp() override { SnmpUtil::rootIs(root); }
  void TearDown() override {
    if (contexts) contexts->quorDoZombieReactors(true);
    SnmpUtil::rootIs(nullptr);
  }
  Quor::Ptr<Routing::Config> vrf(const char* name) {
    auto config = Quor::makePtr<Routing::Config>(Quor::Name(name));
    store.routingVrfConfigDir->vrfConfigIs(config);
    return config;
  }
  void follow() { contexts = InterimVrfContexts::newInstance(store.routingVrfConfigDir); }

  Quor::Ptr<Quor::Dir> root = Quor::makePtr<Quor::Dir>(Quor::Name("switch"));
  Morvane::Store store = Morvane::buildStore(root);
  Quor::Ptr<InterimVrfContexts> contexts;
};

TEST_F(InterimVrfContextsTest, VrfsPresentAtStartGetTheirContexts) {
  auto red = vrf("red");
  auto blue = vrf("blue");
  follow();
  EXPECT_EQ(servedConfig("red"), red.ptr());
  EXPECT_EQ(servedConfig("blue"), blue.ptr());
  EXPECT_EQ(contexts->openContexts().size(), 2u);
}

TEST_F(InterimVrfContextsTest, AnArrivingVrfGetsItsContext) {
  follow();
  auto green = vrf("green");
  EXPECT_EQ(servedConfig("green"), green.ptr());
}

TEST_F(InterimVrfContextsTest, ALeavingVrfLeavesNothingOfItsContext) {
  vrf("red");
  follow();
  store.routingVrfConfigDir->vrfConfigDel(Quor::Name("red"));
  EXPECT_EQ(netsnmp_subtree_find_first("red"), nullptr);
  EXPECT_TRUE(ipBaseRegistrations().handlerRegistrations("red").empty());
  EXPECT_TRUE(contexts->openContexts().empty());
}

TEST_F(InterimVrfContextsTest, AVrfThatComesBackIsServedAgain) {
  vrf("red");
  follow();
  const std::size_t oneSet = ipBaseRegistrations().handlerRegistrations("red").size();
  store.routingVrfConfigDir->vrfConfigDel(Quor::Name("red"));
  auto again = vrf("red");
  EXPECT_EQ(servedConfig("red"), again.ptr());
  EXPECT_EQ(ipBaseRegistrations().handlerRegistrations("red").size(), oneSet);
}

TEST_F(InterimVrfContextsTest, AReplacedConfigurationIsRegisteredAnew) {
  auto first = vrf("red");
  follow();
  const std::size_t oneSet = ipBaseRegistrations().handlerRegistrations("red").size();
  auto second = vrf("red");
  EXPECT_EQ(servedConfig("red"), second.ptr());
  EXPECT_EQ(ipBaseRegistrations().handlerRegistrations("red").size(), oneSet) << "the first set is gone";
}

TEST_F(InterimVrfContextsTest, TheDefaultVrfIsNotAContextOfItsOwn) {
  vrf("default");
  follow();
  EXPECT_EQ(netsnmp_subtree_find_first("default"), nullptr);
  EXPECT_TRUE(contexts->openContexts().empty());
}

TEST_F(InterimVrfContextsTest, StoppingClosesEveryContext) {
  vrf("red");
  vrf("blue");
  follow();
  contexts->quorDoZombieReactors(true);
  EXPECT_EQ(netsnmp_subtree_find_first("red"), nullptr);
  EXPECT_EQ(netsnmp_subtree_find_first("blue"), nullptr);
  EXPECT_EQ(ipBaseRegistrations().contexts(), 0u);
  vrf("green");
  EXPECT_EQ(netsnmp_subtree_find_first("green"), nullptr) << "a stopped follower opened a context";
}

}  // namespace
