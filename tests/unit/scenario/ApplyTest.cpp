// Applying a scenario changes the store by difference: what is new is entered in the order the
// machines need (an interface's status before its addressing), what is gone leaves in the reverse
// order, what changed is changed in place (a new entity would be told as a new member), and what
// stayed tells nobody.
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

}  // namespace
