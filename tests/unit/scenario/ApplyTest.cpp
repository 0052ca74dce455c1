// Applying a scenario changes the store by difference: what is new is entered complete, what is
// gone is removed, what changed is changed in place, and what stayed tells nobody.
#include <gtest/gtest.h>

#include "StoreRecorder.h"
#include "sources/scenario/ScenarioApply.h"
#include "sources/scenario/ScenarioParser.h"

namespace {

using ScenarioTest::Lines;
using ScenarioTest::text;

class ScenarioDiff : public ::testing::Test {
 protected:
  void apply(const std::string& yaml) { Sources::applyScenario(Sources::parseScenario(yaml, "s.yaml"), store); }

  Morvane::Store store = Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("sys")));
  ScenarioTest::StoreRecorder recorder{store};
};

const char* twoVrfs =
    "routing: { ipv4: true }\n"
    "vrfs:\n"
    "  red:  { routing: { ipv4: true }, published: true, config: { routeDistinguisher: '65000:1' },"
    "          status: { state: active, namespace: ns-red } }\n"
    "  blue: { routing: { ipv4: true }, published: true }\n";

TEST_F(ScenarioDiff, AFirstLoadEntersEverythingInOrderAndAnEqualReloadTellsNobody) {
  apply(twoVrfs);
  EXPECT_EQ(recorder.take(), (Lines{"routing true", "vrfConfig blue", "info blue", "vrfConfig red", "vrf config red",
                                     "vrf status red", "info red"}));
  Quor::Ptr<const Ip::VrfStatusLocal> red = store.allVrfStatusLocal->vrf("red");
  EXPECT_EQ(red->networkNamespace(), "ns-red");
  EXPECT_EQ(store.allVrfConfig->vrf("red")->routeDistinguisher().stringValue(), "65000:1");
  apply(twoVrfs);
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_EQ(store.allVrfStatusLocal->vrf("red"), red) << "the same entity, not a copy";
}

TEST_F(ScenarioDiff, ARemovedVrfLeavesEveryPartInReverseOrder) {
  apply(twoVrfs);
  recorder.take();
  apply("routing: { ipv4: true }\nvrfs:\n  blue: { routing: { ipv4: true }, published: true }\n");
  EXPECT_EQ(recorder.take(), (Lines{"info red", "vrf status red", "vrf config red", "vrfConfig red"}));
  EXPECT_FALSE(store.routingVrfConfigDir->vrfConfig("red"));
  EXPECT_TRUE(store.routingVrfConfigDir->vrfConfig("blue"));
}

class RoutingWatcher : public Routing::Config::NotifieeConst {
 public:
  void onRouting() override { ++changes; }
  int changes = 0;
};

TEST_F(ScenarioDiff, AChangedValueChangesTheEntityInPlace) {
  apply(twoVrfs);
  recorder.take();
  Quor::Ptr<Routing::Config> red = store.routingVrfConfigDir->vrfConfig("red");
  auto watcher = Quor::makePtr<RoutingWatcher>();
  watcher->notifierIs(red);
  apply("routing: { ipv4: true }\n"
        "vrfs:\n"
        "  red:  { routing: { ipv4: false }, published: true, config: { routeDistinguisher: '65000:1' },"
        "          status: { state: active, namespace: ns-red } }\n"
        "  blue: { routing: { ipv4: true }, published: true }\n");
  EXPECT_EQ(recorder.take(), Lines{}) << "no member came or went";
  EXPECT_EQ(watcher->changes, 1);
  EXPECT_FALSE(red->routing());
  EXPECT_EQ(store.routingVrfConfigDir->vrfConfig("red"), red);
}

TEST_F(ScenarioDiff, TheAgentsFlagsAreTouchedOnlyWhenTheScenarioStatesThem) {
  apply("snmp: { initialized: true }\n");
  EXPECT_EQ(recorder.take(), Lines{"initialized true"});
  apply("routing: { ipv4: false }\n");
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_TRUE(store.snmpStatus->initialized());
}

const char* oneInterface =
    "interfaces:\n"
    "  Ethernet1:\n"
    "    ifIndex: 1\n"
    "    config: { vrf: red, ipv4: 10.0.0.1/24, ipv6: [2001:db8::1/64] }\n"
    "    status: { vrf: red, ipv4: 10.0.0.1/24 }\n";

TEST_F(ScenarioDiff, AnInterfaceComesWithItsStatusBeforeItsAddressing) {
  apply(oneInterface);
  EXPECT_EQ(recorder.take(), (Lines{"intfStatus Ethernet1", "ipIntfConfig Ethernet1", "ip6 config Ethernet1",
                                     "ipIntfStatus Ethernet1", "ip6 status Ethernet1"}));
  Pelt::IntfId e1("Ethernet1");
  Quor::Ptr<const Ip::IpIntfConfig> config = store.ipConfig->ipIntfConfig(e1);
  EXPECT_EQ(config->addrWithMask(), Pelt::IpAddrWithMask("10.0.0.1/24"));
  EXPECT_EQ(L3::Intf::vrfOf(config->l3Config()), L3::VrfName("red"));
  EXPECT_EQ(intfIfIndex(store.intfStatusDir->intfStatus(e1)), 1);
  EXPECT_EQ(store.ip6Config->intf(e1)->addr(Pelt::Ip6AddrWithMask("2001:db8::1/64")).key(),
            Pelt::Ip6AddrWithMask("2001:db8::1/64"));
}

TEST_F(ScenarioDiff, ARemovedInterfaceLosesItsAddressingBeforeItsStatus) {
  apply(oneInterface);
  recorder.take();
  apply("interfaces: {}\n");
  EXPECT_EQ(recorder.take(), (Lines{"ip6 status Ethernet1", "ip6 config Ethernet1", "ipIntfStatus Ethernet1",
                                     "ipIntfConfig Ethernet1", "intfStatus Ethernet1"}));
}

TEST_F(ScenarioDiff, ANewIndexIsANewInterfaceStatusAndTheAddressingStays) {
  apply(oneInterface);
  recorder.take();
  Quor::Ptr<const Interface::IntfStatus> before = store.intfStatusDir->intfStatus(Pelt::IntfId("Ethernet1"));
  apply("interfaces:\n"
        "  Ethernet1:\n"
        "    ifIndex: 7\n"
        "    config: { vrf: red, ipv4: 10.0.0.1/24, ipv6: [2001:db8::1/64] }\n"
        "    status: { vrf: red, ipv4: 10.0.0.1/24 }\n");
  EXPECT_EQ(recorder.take(), Lines{"intfStatus Ethernet1"});
  Quor::Ptr<const Interface::IntfStatus> after = store.intfStatusDir->intfStatus(Pelt::IntfId("Ethernet1"));
  EXPECT_NE(after, before);
  EXPECT_EQ(after->ifIndex(), 7);
}

struct IntfLog {
  Lines lines;
};

class ConfigWatcher : public Ip::IpIntfConfig::NotifieeConst {
 public:
  explicit ConfigWatcher(IntfLog& log) : log_(log) {}
  void onAddrWithMask() override { log_.lines.push_back("addr " + text(notifier()->addrWithMask())); }
  void onL3Config() override { log_.lines.push_back("l3Config"); }

 private:
  IntfLog& log_;
};

class L3Watcher : public L3::Intf::Config::NotifieeConst {
 public:
  explicit L3Watcher(IntfLog& log) : log_(log) {}
  void onVrf() override { log_.lines.push_back("vrf " + text(notifier()->vrf())); }

 private:
  IntfLog& log_;
};

class Ip6Watcher : public Ip6::IntfConfig::NotifieeConst {
 public:
  explicit Ip6Watcher(IntfLog& log) : log_(log) {}
  void onAddr(const Pelt::Ip6AddrWithMask& key) override { log_.lines.push_back("addr6 " + text(key)); }

 private:
  IntfLog& log_;
};

TEST_F(ScenarioDiff, ChangedAddressingChangesOnlyWhatDiffers) {
  apply(oneInterface);
  recorder.take();
  Pelt::IntfId e1("Ethernet1");
  IntfLog log;
  auto config = Quor::makePtr<ConfigWatcher>(log);
  config->notifierIs(store.ipConfig->ipIntfConfig(e1));
  auto l3 = Quor::makePtr<L3Watcher>(log);
  l3->notifierIs(store.ipConfig->ipIntfConfig(e1)->l3Config());
  auto ip6 = Quor::makePtr<Ip6Watcher>(log);
  ip6->notifierIs(store.ip6Config->intf(e1));
  apply("interfaces:\n"
        "  Ethernet1:\n"
        "    ifIndex: 1\n"
        "    config: { vrf: blue, ipv4: 10.0.0.2/24, ipv6: [2001:db8::2/64] }\n"
        "    status: { vrf: red, ipv4: 10.0.0.1/24 }\n");
  EXPECT_EQ(log.lines, (Lines{"addr 10.0.0.2/24", "vrf blue", "addr6 2001:db8::1/64", "addr6 2001:db8::2/64"}))
      << "the L3 object is kept and its VRF changed; the old IPv6 address goes before the new one comes";
  EXPECT_EQ(recorder.take(), Lines{});
}

TEST_F(ScenarioDiff, AStatusThatGainsOrLosesItsL3ObjectIsReplaced) {
  apply(oneInterface);
  recorder.take();
  Pelt::IntfId e1("Ethernet1");
  Quor::Ptr<const Ip::IpIntfStatus> withL3 = store.ipStatus->ipIntfStatus(e1);
  apply("interfaces:\n"
        "  Ethernet1:\n"
        "    ifIndex: 1\n"
        "    config: { vrf: red, ipv4: 10.0.0.1/24, ipv6: [2001:db8::1/64] }\n"
        "    status: { vrf: null, ipv4: 10.0.0.1/24 }\n");
  EXPECT_EQ(recorder.take(), Lines{"ipIntfStatus Ethernet1"});
  Quor::Ptr<const Ip::IpIntfStatus> withoutL3 = store.ipStatus->ipIntfStatus(e1);
  EXPECT_NE(withoutL3, withL3);
  EXPECT_EQ(L3::Intf::vrfOf(withoutL3->l3Status()), L3::VrfName());
  EXPECT_EQ(withoutL3->activeAddrWithMask(), Pelt::IpAddrWithMask("10.0.0.1/24")) << "entered complete";
}

}  // namespace
