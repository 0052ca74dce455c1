// A scenario file is checked whole before anything is applied, and its first problem is reported
// once, as "<file>:<line>: <problem>": that line is what the operator reads in the log. The format's
// complete example is accepted whole.
#include <gtest/gtest.h>

#include <string>

#include "sources/scenario/ScenarioParser.h"
#include "tests/support/TestSupport.h"

namespace {

using Sources::parseScenario;

std::string verdictOf(const std::string& yaml) {
  const std::string failure = TestSupport::failureOf([&] { parseScenario(yaml, "s.yaml"); });
  return failure == "no failure" ? "(accepted)" : failure;
}

const std::string name24(24, 'e');
const std::string name100(100, 'v');

std::string fecOfVias(int count) {
  std::string vias;
  for (int i = 0; i < count; ++i) vias += (i ? ", " : "") + std::string("10.0.0.1@Ethernet1");
  return "fib:\n  default:\n    fecs:\n      1: [" + vias + "]\n";
}

struct Verdict {
  std::string yaml;
  std::string verdict;
};

const Verdict verdicts[] = {
    // the structure and its keys
    {"just a line\n", "s.yaml:1: the scenario must be a map of keys and values"},
    {"routes: {}\n", "s.yaml:1: unknown key 'routes' in the scenario"},
    {"routing:\n  ipv4: true\nvrfs:\n  red:\n    routng: { ipv4: true }\n", "s.yaml:5: unknown key 'routng' in vrf red"},
    {"vrfs:\n  red: {}\n  red: {}\n", "s.yaml:3: duplicate key 'red' in vrfs"},
    {"vrfs:\n  default: { routing: { ipv4: true } }\n",
     "s.yaml:2: the default VRF is not listed in vrfs: its routing is the top-level 'routing'"},
    {"interfaces:\n  Ethernet1:\n    kind: vlan\n",
     "s.yaml:3: 'kind' in interface Ethernet1 needs 'ifIndex': an interface exists with both"},
    // values
    {"routing: { ipv4: maybe }\n", "s.yaml:1: 'ipv4' in routing must be true or false, not 'maybe'"},
    {"interfaces:\n  Ethernet1:\n    ifIndex: 3000000000\n",
     "s.yaml:3: 'ifIndex' in interface Ethernet1 must be a whole number from -2147483648 to 2147483647, not "
     "'3000000000'"},
    {"interfaces:\n  Ethernet1:\n    status: { ipv4: 10.0.0.1 }\n",
     "s.yaml:3: 'ipv4' in status of interface Ethernet1 must be an IPv4 address with prefix length such as "
     "10.0.0.1/24, not '10.0.0.1'"},
    {"interfaces:\n  Ethernet1:\n    status:\n      ipv6:\n        - 2001:db8::1/64\n        - 2001:db8::1/64\n",
     "s.yaml:6: 'ipv6' in status of interface Ethernet1 lists 2001:db8::1/64 twice"},
    {"vrfs:\n  red:\n    status: { state: up }\n",
     "s.yaml:3: 'state' in status of vrf red must be initializing, active, deleting or a number, not 'up'"},
    {"vrfs:\n  red:\n    config: { routeDistinguisher: 65000 }\n",
     "s.yaml:3: 'routeDistinguisher' in config of vrf red must be a route distinguisher such as 65000:100, not "
     "'65000'"},
    {"vrfs:\n  " + name100 + ": { published: true }\n", "(accepted)"},
    {"vrfs:\n  " + name100 + "w: { published: true }\n", "s.yaml:2: VRF name of 101 bytes: VrfName::bytes > 100 not allowed"},
    // routes and FECs
    {"fib:\n  default:\n    routes:\n      10.0.0.0/8: { fec: 1, type: bgp }\n",
     "s.yaml:4: 'type' in route 10.0.0.0/8 of fib of vrf default must be a route type such as connected, "
     "staticConfig, ebgp or ospfIntraArea, or a number up to 65535, not 'bgp'"},
    {"fib:\n  default:\n    routes:\n      10.0.0.0/33: { fec: 1 }\n",
     "s.yaml:4: a route must be a prefix such as 10.1.0.0/16, not '10.0.0.0/33'"},
    {"fib:\n  default:\n    routes:\n      10.0.0.0/8: { metric: 1 }\n",
     "s.yaml:4: route 10.0.0.0/8 of fib of vrf default needs 'fec', the FEC it uses"},
    {"fib:\n  default:\n    routes:\n      10.0.0.0/8: { fec: 1, preference: 256 }\n",
     "s.yaml:4: 'preference' in route 10.0.0.0/8 of fib of vrf default must be a whole number from 0 to 255, not "
     "'256'"},
    {"fib:\n  default:\n    fecs:\n      1: [10.0.0.2@Ethernet1, 10.0.0.300@Ethernet1]\n",
     "s.yaml:4: a via of FEC 1 of fib of vrf default must be a next hop with its interface such as "
     "10.0.0.2@Ethernet1, or a next hop alone, not '10.0.0.300@Ethernet1'"},
    {"fib:\n  default:\n    fecs:\n      1: [10.0.0.2@" + name24 + "]\n", "(accepted)"},
    {"fib:\n  default:\n    fecs:\n      1: [10.0.0.2@" + name24 + "x]\n",
     "s.yaml:4: interface name '" + name24 + "x' in FEC 1 of fib of vrf default is longer than the 24 bytes a "
     "table record holds"},
    {fecOfVias(128), "(accepted)"},
    {fecOfVias(129), "s.yaml:4: FEC 1 of fib of vrf default has 129 vias; a FEC has at most 128"},
    {"fib:\n  a/b: {}\n", "s.yaml:2: VRF name 'a/b' in fib cannot name a directory of tables"},
    // neighbours and VRF ids
    {"arp:\n  - { interface: Ethernet1, address: 10.0.0.2 }\n", "s.yaml:2: the neighbour of line 2 needs 'mac'"},
    {"arp:\n  - { vrf: green, interface: Ethernet1, address: 10.0.0.2, mac: 00:00:00:00:00:01 }\n",
     "s.yaml:2: 'vrf' in the neighbour of line 2 must be default, a VRF named in vrfIds or a VRF id up to "
     "4294967294, not 'green'"},
    {"vrfIds: { red: 4294967295 }\n",
     "s.yaml:1: 'red' in vrfIds must be a whole number from 0 to 4294967294, not '4294967295'"},
    {"vrfIds: { red: 1, blue: 1 }\n", "s.yaml:1: VRF id 1 in vrfIds is given to red already"},
    // runs: inside their space, and apart from each other
    {"fib:\n  default:\n    routes:\n      255.255.254.0/24: { count: 2, fec: 1 }\n", "(accepted)"},
    {"fib:\n  default:\n    routes:\n      255.255.254.0/24: { count: 3, fec: 1 }\n",
     "s.yaml:4: route 255.255.254.0/24 of fib of vrf default: 3 routes of length 24 run past 255.255.255.255"},
    {"fib:\n  default:\n    routes:\n      10.0.0.0/8: { fec: [1, 2] }\n",
     "s.yaml:4: route 10.0.0.0/8 of fib of vrf default is one route and uses one FEC; a list of FECs is for routes "
     "with a count"},
    {"fib:\n  default:\n    fecs:\n      5: { count: 2, vias: [255.255.255.255@Ethernet1] }\n",
     "s.yaml:4: FEC 5 of fib of vrf default: the next hops of its 2 FECs run past 255.255.255.255"},
    {"arp:\n  - { interface: E1, address: 10.0.0.250, count: 7, mac: ff:ff:ff:ff:ff:fa }\n",
     "s.yaml:2: the neighbour of line 2: its 7 MAC addresses run past ff:ff:ff:ff:ff:ff"},
    {"fib:\n  default:\n    routes:\n      0.0.0.0/32: { count: 16777216, fec: 1 }\n      11.0.0.0/32: { fec: 1 }\n",
     "s.yaml:2: routes of fib of vrf default come to 16777217 entries; a table holds at most 16777216"},
    {"fib:\n  red:\n    routes:\n      100.0.0.0/24: { count: 256, fec: 1 }\n      100.0.7.0/24: { fec: 2 }\n",
     "s.yaml:5: routes from 100.0.7.0/24 in fib of vrf red share entries with those of line 4"},
    {"fib:\n  red:\n    routes:\n      100.0.0.0/24: { count: 256, fec: 1 }\n      100.0.7.0/25: { fec: 2 }\n"
     "      100.1.0.0/24: { fec: 2 }\n",
     "(accepted)"},  // another length, or just past the run, is another route
    {"fib:\n  red:\n    routes:\n      100.0.0.0/24: { fec: 1 }\n      99.255.0.0/24: { count: 257, fec: 2 }\n",
     "s.yaml:5: routes from 99.255.0.0/24 in fib of vrf red share entries with those of line 4"},
    {"fib:\n  red:\n    fecs:\n      10: { count: 5, vias: [] }\n      14: []\n",
     "s.yaml:5: FECs from 14 in fib of vrf red share entries with those of line 4"},
    {"arp:\n  - { interface: E1, address: 10.0.0.9, mac: 00:00:00:00:00:01 }\n"
     "  - { interface: E1, address: 10.0.0.1, count: 10, mac: 00:00:00:00:01:00 }\n",
     "s.yaml:3: neighbours from 10.0.0.1 in arp share entries with those of line 2"},
    {"arp:\n  - { interface: E1, address: 10.0.0.9, mac: 00:00:00:00:00:01 }\n"
     "  - { interface: E2, address: 10.0.0.9, mac: 00:00:00:00:00:01 }\n"
     "  - { vrf: 3, interface: E1, address: 10.0.0.9, mac: 00:00:00:00:00:01 }\n",
     "(accepted)"},
};

TEST(ScenarioChecks, EachFileGetsItsVerdict) {
  for (const Verdict& v : verdicts) EXPECT_EQ(verdictOf(v.yaml), v.verdict) << v.yaml;
  const std::string malformed = verdictOf("routing:\n  ipv4: true\n vrfs: [\n");
  EXPECT_EQ(malformed.rfind("s.yaml:3: malformed YAML: ", 0), 0u) << malformed;
}

TEST(ScenarioDocs, TheCompleteExampleOfTheFormatIsAcceptedWhole) {
  const std::string all = TestSupport::fileText(SCENARIO_DOC);
  const std::size_t start = all.find("```yaml\n", all.find("## A complete example"));
  const std::size_t end = all.find("```\n", start + 8);
  ASSERT_NE(end, std::string::npos);
  const Sources::Scenario s = parseScenario(all.substr(start + 8, end - start - 8), "scenario.md");
  EXPECT_EQ(s.vrfs.size(), 2u);
  ASSERT_TRUE(s.tables.fib && s.tables.arp && s.tables.vrfIds);
  EXPECT_EQ(s.tables.fib->at("default").routes.size(), 5u);
}

}  // namespace
