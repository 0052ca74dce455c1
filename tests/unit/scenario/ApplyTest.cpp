// Applying a scenario changes the store by difference: what is new is entered complete and in the
// order the machines need (an interface's status before its addressing), what is gone leaves in the
// reverse order, what changed is changed in place, and what stayed tells nobody.
#include <gtest/gtest.h>

#include "StoreRecorder.h"
#include "sources/scenario/ScenarioApply.h"
#include "sources/scenario/ScenarioParser.h"

namespace {

using ScenarioTest::Lines;

const std::string twoVrfs =
    "routing: { ipv4: true }\n"
    "vrfs:\n"
    "  red:  { routing: { ipv4: true }, published: true, config: { routeDistinguisher: '65000:1' },"
    "          status: { state: active, namespace: ns-red } }\n"
    "  blue: { routing: { ipv4: true }, published: true }\n";
const std::string blueOnly = "routing: { ipv4: true }\nvrfs:\n  blue: { routing: { ipv4: true }, published: true }\n";

std::string interface(const char* ifIndex, const char* statusVrf) {
  return std::string("interfaces:\n  Ethernet1:\n    ifIndex: ") + ifIndex +
         "\n    config: { vrf: red, ipv4: 10.0.0.1/24, ipv6: [2001:db8::1/64] }\n    status: { vrf: " + statusVrf +
         ", ipv4: 10.0.0.1/24 }\n";
}

struct Step {
  std::string yaml;
  Lines told;  // what the store's reactors hear, in order
};

Morvane::Store freshStore() { return Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("sys"))); }

void applyText(const std::string& yaml, Morvane::Store& store) {
  Sources::applyScenario(Sources::parseScenario(yaml, "s.yaml"), store);
}

TEST(ScenarioDiff, EachStepTellsWhatChangedInOrder) {
  const std::vector<std::vector<Step>> histories = {
      {{twoVrfs,
        {"routing true", "vrfConfig blue", "info blue", "vrfConfig red", "vrf config red", "vrf status red", "info red"}},
       {twoVrfs, {}},
       {blueOnly, {"info red", "vrf status red", "vrf config red", "vrfConfig red"}}},
      {{"snmp: { initialized: true }\n", {"initialized true"}},
       {"routing: { ipv4: false }\n", {}}},  // the agent's flags are touched only when the scenario states them
      {{interface("1", "red"),
        {"intfStatus Ethernet1", "ipIntfConfig Ethernet1", "ip6 config Ethernet1", "ipIntfStatus Ethernet1",
         "ip6 status Ethernet1"}},
       {interface("7", "red"), {"intfStatus Ethernet1"}},  // a new index is a new status; the addressing stays
       {interface("7", "null"), {"ipIntfStatus Ethernet1"}},  // a status without its L3 object is another
       {"interfaces: {}\n",
        {"ip6 status Ethernet1", "ip6 config Ethernet1", "ipIntfStatus Ethernet1", "ipIntfConfig Ethernet1",
         "intfStatus Ethernet1"}}},
  };
  for (const std::vector<Step>& history : histories) {
    Morvane::Store store = freshStore();
    ScenarioTest::StoreRecorder recorder(store);
    for (const Step& step : history) {
      applyText(step.yaml, store);
      EXPECT_EQ(recorder.take(), step.told) << step.yaml;
    }
  }
}

TEST(ScenarioDiff, WhatChangedIsChangedInPlaceAndEnteredComplete) {
  Morvane::Store store = freshStore();
  applyText(twoVrfs + interface("1", "red"), store);
  const Quor::Ptr<Routing::Config> red = store.routingVrfConfigDir->vrfConfig("red");
  const Quor::Ptr<const Ip::VrfStatusLocal> redStatus = store.allVrfStatusLocal->vrf("red");
  EXPECT_EQ(redStatus->networkNamespace(), "ns-red");
  EXPECT_EQ(store.allVrfConfig->vrf("red")->routeDistinguisher().stringValue(), "65000:1");
  EXPECT_EQ(intfIfIndex(store.intfStatusDir->intfStatus(Pelt::IntfId("Ethernet1"))), 1);
  const Quor::Ptr<const Ip::IpIntfConfig> config = store.ipConfig->ipIntfConfig(Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(L3::Intf::vrfOf(config->l3Config()), L3::VrfName("red"));
  std::string changed = twoVrfs + interface("1", "null");
  changed.replace(changed.find("ipv4: true }, published: true, config"), 10, "ipv4: false");
  applyText(changed, store);
  EXPECT_EQ(store.routingVrfConfigDir->vrfConfig("red"), red) << "the same entity, changed";
  EXPECT_FALSE(red->routing());
  EXPECT_EQ(store.allVrfStatusLocal->vrf("red"), redStatus);
  const Quor::Ptr<const Ip::IpIntfStatus> withoutL3 = store.ipStatus->ipIntfStatus(Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(L3::Intf::vrfOf(withoutL3->l3Status()), L3::VrfName());
  EXPECT_EQ(withoutL3->activeAddrWithMask(), Pelt::IpAddrWithMask("10.0.0.1/24")) << "entered complete";
}

}  // namespace
