// A scenario file is checked whole before anything is applied, and its first problem is reported
// once, as "<file>:<line>: <problem>".
#include <gtest/gtest.h>

#include <string>

#include "sources/scenario/DefaultScenario.h"
#include "sources/scenario/ScenarioParser.h"

namespace {

std::string errorOf(const std::string& yaml) {
  try {
    Sources::parseScenario(yaml, "scenario.yaml");
  } catch (const Sources::ScenarioError& e) {
    return e.what();
  }
  return "(accepted)";
}

TEST(ScenarioErrors, AnUnknownKeyIsNamedWithItsLineAndPlace) {
  EXPECT_EQ(errorOf("routing:\n"
                    "  ipv4: true\n"
                    "vrfs:\n"
                    "  red:\n"
                    "    routng: { ipv4: true }\n"),
            "scenario.yaml:5: unknown key 'routng' in vrf red");
  EXPECT_EQ(errorOf("routes: {}\n"), "scenario.yaml:1: unknown key 'routes' in the scenario");
  EXPECT_EQ(errorOf("interfaces:\n  Ethernet1:\n    config: { ipv5: 10.0.0.1/24 }\n"),
            "scenario.yaml:3: unknown key 'ipv5' in config of interface Ethernet1");
}

TEST(ScenarioErrors, MalformedYamlIsReportedWithTheParsersWords) {
  std::string error = errorOf("routing:\n  ipv4: true\n vrfs: [\n");
  EXPECT_EQ(error.rfind("scenario.yaml:3: malformed YAML: ", 0), 0u) << error;
}

TEST(ScenarioErrors, AValueOfTheWrongTypeSaysWhatWasExpected) {
  EXPECT_EQ(errorOf("routing: { ipv4: maybe }\n"),
            "scenario.yaml:1: 'ipv4' in routing must be true or false, not 'maybe'");
  EXPECT_EQ(errorOf("routing: true\n"), "scenario.yaml:1: routing must be a map of keys and values");
  EXPECT_EQ(errorOf("interfaces:\n  Ethernet1:\n    ifIndex: 3000000000\n"),
            "scenario.yaml:3: 'ifIndex' in interface Ethernet1 must be a whole number from -2147483648 to "
            "2147483647, not '3000000000'");
  EXPECT_EQ(errorOf("interfaces:\n  Ethernet1:\n    status: { ipv4: 10.0.0.1 }\n"),
            "scenario.yaml:3: 'ipv4' in status of interface Ethernet1 must be an IPv4 address with prefix length "
            "such as 10.0.0.1/24, not '10.0.0.1'");
  EXPECT_EQ(errorOf("interfaces:\n  Ethernet1:\n    status: { ipv6: 2001:db8::1/64 }\n"),
            "scenario.yaml:3: 'ipv6' in status of interface Ethernet1 must be a list of addresses");
  EXPECT_EQ(errorOf("vrfs:\n  red:\n    status: { state: up }\n"),
            "scenario.yaml:3: 'state' in status of vrf red must be initializing, active, deleting or a number, "
            "not 'up'");
  EXPECT_EQ(errorOf("vrfs:\n  red:\n    config: { routeDistinguisher: 65000 }\n"),
            "scenario.yaml:3: 'routeDistinguisher' in config of vrf red must be a route distinguisher such as "
            "65000:100, not '65000'");
}

TEST(ScenarioErrors, AVrfNameOfOneHundredBytesPassesAndOneMoreIsRefused) {
  std::string name100(100, 'v');
  EXPECT_EQ(errorOf("vrfs:\n  " + name100 + ": { published: true }\n"), "(accepted)");
  EXPECT_EQ(errorOf("vrfs:\n  " + name100 + "w: { published: true }\n"),
            "scenario.yaml:2: VRF name of 101 bytes: VrfName::bytes > 100 not allowed");
  EXPECT_EQ(errorOf("interfaces:\n  Ethernet1:\n    config:\n      vrf: " + name100 + "w\n"),
            "scenario.yaml:4: VRF name of 101 bytes: VrfName::bytes > 100 not allowed");
}

TEST(ScenarioErrors, StructuralMistakesAreNamed) {
  EXPECT_EQ(errorOf("vrfs:\n  red: {}\n  red: {}\n"), "scenario.yaml:3: duplicate key 'red' in vrfs");
  EXPECT_EQ(errorOf("vrfs:\n  default: { routing: { ipv4: true } }\n"),
            "scenario.yaml:2: the default VRF is not listed in vrfs: its routing is the top-level 'routing'");
  EXPECT_EQ(errorOf("interfaces:\n  Ethernet1:\n    kind: vlan\n"),
            "scenario.yaml:3: 'kind' in interface Ethernet1 needs 'ifIndex': an interface exists with both");
  EXPECT_EQ(errorOf("interfaces:\n  Ethernet1:\n    status:\n      ipv6:\n        - 2001:db8::1/64\n"
                    "        - 2001:db8::1/64\n"),
            "scenario.yaml:6: 'ipv6' in status of interface Ethernet1 lists 2001:db8::1/64 twice");
  EXPECT_EQ(errorOf("just a line\n"), "scenario.yaml:1: the scenario must be a map of keys and values");
}

TEST(ScenarioReading, AnEmptyFileIsTheEmptyScenario) {
  Sources::Scenario s = Sources::parseScenario("# nothing yet\n", "scenario.yaml");
  EXPECT_FALSE(s.routing.ipv4);
  EXPECT_TRUE(s.vrfs.empty());
  EXPECT_TRUE(s.interfaces.empty());
  EXPECT_FALSE(s.snmp.initialized);
}

TEST(ScenarioReading, LeftOutPartsAreAbsentAndInterfaceDefaultsApply) {
  Sources::Scenario s = Sources::parseScenario(
      "vrfs:\n  red: { published: true }\n"
      "interfaces:\n"
      "  Ethernet1: { ifIndex: 1, config: { ipv4: 10.0.0.1/24 }, status: { vrf: null } }\n",
      "scenario.yaml");
  const Sources::VrfScenario& red = s.vrfs.at("red");
  EXPECT_TRUE(red.published);
  EXPECT_FALSE(red.routingIpv4);
  EXPECT_FALSE(red.config);
  EXPECT_FALSE(red.status);
  const Sources::IntfScenario& e1 = s.interfaces.at(Pelt::IntfId("Ethernet1"));
  EXPECT_EQ(e1.presence->kind, "ethernet");
  EXPECT_EQ(e1.config->vrf, L3::VrfName("default")) << "an interface is in the default VRF unless told";
  EXPECT_FALSE(e1.status->vrf) << "null: no L3 object at all";
  EXPECT_EQ(e1.status->ipv4, Pelt::IpAddrWithMask()) << "no address: 0.0.0.0/0";
}

TEST(ScenarioReading, TheEmbeddedDefaultIsASwitchWithTwoRoutedVrfs) {
  Sources::Scenario s = Sources::parseScenario(Sources::defaultScenarioText, "default.yaml");
  EXPECT_TRUE(s.routing.ipv4);
  EXPECT_TRUE(s.routing.ipv6);
  ASSERT_EQ(s.vrfs.size(), 2u);
  for (const char* name : {"red", "blue"}) {
    const Sources::VrfScenario& vrf = s.vrfs.at(name);
    EXPECT_EQ(vrf.routingIpv4, true) << name;
    EXPECT_TRUE(vrf.published && vrf.config && vrf.status) << name;
  }
  EXPECT_EQ(s.snmp.initialized, true);
}

}  // namespace
