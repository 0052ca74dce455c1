// The table sections of a scenario: routes and FECs per VRF, neighbours and VRF ids, written one by
// one or in runs, checked whole like the rest, with the first problem named by its line.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "sources/scenario/DefaultScenario.h"
#include "sources/scenario/ScenarioParser.h"

namespace {

using Sources::parseScenario;

std::string errorOf(const std::string& yaml) {
  try {
    parseScenario(yaml, "tables.yaml");
  } catch (const Sources::ScenarioError& e) {
    return e.what();
  }
  return "(accepted)";
}

TEST(TableSections, ALeftOutSectionIsATableTheScenarioDoesNotManage) {
  Sources::TablesScenario t = parseScenario("routing: { ipv4: true }\n", "s.yaml").tables;
  EXPECT_FALSE(t.fib);
  EXPECT_FALSE(t.arp);
  EXPECT_FALSE(t.vrfIds);
  t = parseScenario("fib: {}\narp: []\nvrfIds: {}\n", "s.yaml").tables;
  EXPECT_TRUE(t.fib && t.fib->empty()) << "present and empty: the tables are to be empty";
  EXPECT_TRUE(t.arp && t.arp->empty());
  EXPECT_TRUE(t.vrfIds && t.vrfIds->empty());
}

// IPv6 FECs (their vias IPv6) and routes go to the IPv6 tables; a run of routes counts up blocks of
// the prefix's length, across the 64-bit boundary, and may not run past the last address.
TEST(TableSections, Ipv6RoutesAndFecsAreReadApart) {
  Sources::TablesScenario t = parseScenario(
                                  "fib:\n"
                                  "  red:\n"
                                  "    fecs:\n"
                                  "      7: [\"fe80::1@Ethernet1\", \"::@Vlan10\"]\n"
                                  "    routes:\n"
                                  "      \"2001:db8:0:ffff::/64\": { fec: 7, count: 2, metric: 3 }\n",
                                  "s.yaml")
                                  .tables;
  const Sources::FibScenario& red = t.fib->at("red");
  EXPECT_TRUE(red.fecs.empty() && red.routes.empty());
  ASSERT_EQ(red.fecs6.size(), 1u);
  EXPECT_EQ(red.fecs6[0].viaCount, 2u);
  EXPECT_EQ(red.fecs6[0].vias[1], (Tarn::Fib::Via6{Pelt::Ip6Addr("::"), Pelt::IntfId("Vlan10")}));
  ASSERT_EQ(red.routes6.size(), 2u);
  EXPECT_EQ(red.routes6[1].prefix, Pelt::Ip6AddrWithMask("2001:db8:1::/64"));
  EXPECT_EQ(red.routes6[1].metric, Routing::RouteMetric(3));
  EXPECT_NE(errorOf("fib: { default: { routes: { \"ffff:ffff:ffff:ffff:ffff:ffff:ffff:ff00/120\": "
                    "{ fec: 1, count: 2 } } } }\n"),
            "(accepted)");
}

TEST(TableSections, RoutesAndFecsAreReadWithTheirDefaults) {
  Sources::TablesScenario t = parseScenario(
                                  "fib:\n"
                                  "  red:\n"
                                  "    fecs:\n"
                                  "      7: [10.0.0.2@Ethernet1, 10.0.0.3, 0.0.0.0@Vlan10]\n"
                                  "      8: []\n"
                                  "      100: { count: 16, vias: [10.1.0.1@Ethernet2] }\n"
                                  "    routes:\n"
                                  "      10.1.0.0/16: { fec: 7 }\n"
                                  "      10.2.0.0/16: { fec: 8, type: ebgp, metric: 20, preference: 200 }\n"
                                  "      100.0.0.0/24: { count: 1000, fec: [7, 8], type: 13 }\n",
                                  "s.yaml")
                                  .tables;
  const Sources::FibScenario& red = t.fib->at("red");
  ASSERT_EQ(red.fecs.size(), 3u);
  EXPECT_EQ(red.fecs[0].first, 7u);
  EXPECT_EQ(red.fecs[0].count, 1u);
  ASSERT_EQ(red.fecs[0].vias.size(), 3u);
  EXPECT_EQ(red.fecs[0].vias[0], (Tarn::Fib::Via{Pelt::IpAddr(10, 0, 0, 2), Pelt::IntfId("Ethernet1")}));
  EXPECT_EQ(red.fecs[0].vias[1], (Tarn::Fib::Via{Pelt::IpAddr(10, 0, 0, 3), Pelt::IntfId()})) << "a hop alone";
  EXPECT_TRUE(red.fecs[1].vias.empty());
  EXPECT_EQ(red.fecs[2].count, 16u);

  ASSERT_EQ(red.routes.size(), 3u);
  const Sources::RouteRun& plain = red.routes[0];
  EXPECT_EQ(plain.type, Routing::Fib::routeTypeConnected);
  EXPECT_EQ(plain.metric, Routing::RouteMetric(0));
  EXPECT_EQ(plain.preference, Routing::RoutePreference(1));
  EXPECT_EQ(red.routes[1].type, Routing::Fib::routeTypeEbgp);
  EXPECT_EQ(red.routes[1].preference, Routing::RoutePreference(200));
  EXPECT_EQ(red.routes[2].count, 1000u);
  EXPECT_EQ(red.routes[2].type, Routing::Fib::routeTypeOspfInterArea);
  EXPECT_EQ(red.routes[2].fecs, (std::vector<Tarn::Fib::FecId>{Tarn::Fib::FecId(7), Tarn::Fib::FecId(8)}));
}

TEST(TableSections, NeighboursNameTheirVrfByIdOrByTheNameThatVrfIdsGives) {
  Sources::TablesScenario t = parseScenario(
                                  "arp:\n"
                                  "  - { interface: Ethernet1, address: 10.0.0.2, mac: 00:1c:73:00:00:02 }\n"
                                  "  - { vrf: red, interface: Ethernet2, address: 10.0.1.2, mac: 02:00:00:00:00:01,"
                                  " static: true }\n"
                                  "  - { vrf: 9, interface: Ethernet3, address: 2001:db8::2, count: 3,"
                                  " mac: 02:00:00:00:00:ff }\n"
                                  "vrfIds: { red: 4 }\n",
                                  "s.yaml")
                                  .tables;
  ASSERT_EQ(t.arp->size(), 3u);
  EXPECT_EQ((*t.arp)[0].vrfId, Vrf::VrfIdMap::defaultVrfId) << "the default VRF unless told";
  EXPECT_FALSE((*t.arp)[0].isStatic);
  EXPECT_EQ((*t.arp)[1].vrfId, Vrf::VrfIdMap::VrfId(4)) << "vrfIds stands after arp in the file";
  EXPECT_TRUE((*t.arp)[1].isStatic);
  EXPECT_EQ((*t.arp)[2].vrfId, Vrf::VrfIdMap::VrfId(9));
  EXPECT_EQ((*t.arp)[2].count, 3u);
  EXPECT_EQ(t.vrfIds->at(Vrf::VrfIdMap::VrfId(4)), L3::VrfName("red"));
}

TEST(TableSections, ValuesOfTheWrongKindAreNamedWithTheirLine) {
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      10.0.0.0/8: { fec: 1, type: bgp }\n"),
            "tables.yaml:4: 'type' in route 10.0.0.0/8 of fib of vrf default must be a route type such as "
            "connected, staticConfig, ebgp or ospfIntraArea, or a number up to 65535, not 'bgp'");
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      10.0.0.0/33: { fec: 1 }\n"),
            "tables.yaml:4: a route must be a prefix such as 10.1.0.0/16, not '10.0.0.0/33'");
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      10.0.0.0/8: { metric: 1 }\n"),
            "tables.yaml:4: route 10.0.0.0/8 of fib of vrf default needs 'fec', the FEC it uses");
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      10.0.0.0/8: { fec: 1, preference: 256 }\n"),
            "tables.yaml:4: 'preference' in route 10.0.0.0/8 of fib of vrf default must be a whole number from 0 "
            "to 255, not '256'");
  EXPECT_EQ(errorOf("fib:\n  default:\n    fecs:\n      1: [10.0.0.2@Ethernet1, 10.0.0.300@Ethernet1]\n"),
            "tables.yaml:4: a via of FEC 1 of fib of vrf default must be a next hop with its interface such as "
            "10.0.0.2@Ethernet1, or a next hop alone, not '10.0.0.300@Ethernet1'");
  EXPECT_EQ(errorOf("fib:\n  default:\n    fecs:\n      0: []\n"),
            "tables.yaml:4: a FEC id must be a whole number from 1, not '0'");
  EXPECT_EQ(errorOf("arp:\n  - { interface: Ethernet1, address: 10.0.0.2 }\n"),
            "tables.yaml:2: the neighbour of line 2 needs 'mac'");
  EXPECT_EQ(errorOf("arp:\n  - { vrf: green, interface: Ethernet1, address: 10.0.0.2, mac: 00:00:00:00:00:01 }\n"),
            "tables.yaml:2: 'vrf' in the neighbour of line 2 must be default, a VRF named in vrfIds or a VRF id up "
            "to 4294967294, not 'green'");
  EXPECT_EQ(errorOf("arp: { interface: Ethernet1 }\n"), "tables.yaml:1: arp must be a list of neighbours");
}

TEST(TableSections, WhatATableRecordCannotHoldIsRefused) {
  const std::string name24(24, 'e');
  EXPECT_EQ(errorOf("fib:\n  default:\n    fecs:\n      1: [10.0.0.2@" + name24 + "]\n"), "(accepted)");
  EXPECT_EQ(errorOf("fib:\n  default:\n    fecs:\n      1: [10.0.0.2@" + name24 + "x]\n"),
            "tables.yaml:4: interface name '" + name24 + "x' in FEC 1 of fib of vrf default is longer than the 24 "
            "bytes a table record holds");
  std::string vias;
  for (int i = 0; i < 129; ++i) vias += (i ? ", " : "") + std::string("10.0.0.1@Ethernet1");
  EXPECT_EQ(errorOf("fib:\n  default:\n    fecs:\n      1: [" + vias + "]\n"),
            "tables.yaml:4: FEC 1 of fib of vrf default has 129 vias; a FEC has at most 128");
  EXPECT_EQ(errorOf("vrfIds: { red: 4294967295 }\n"),
            "tables.yaml:1: 'red' in vrfIds must be a whole number from 0 to 4294967294, not '4294967295'");
  EXPECT_EQ(errorOf("fib:\n  a/b: {}\n"), "tables.yaml:2: VRF name 'a/b' in fib cannot name a directory of tables");
}

TEST(TableSections, RunsMustStayInsideTheirSpace) {
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      255.255.254.0/24: { count: 2, fec: 1 }\n"), "(accepted)");
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      255.255.254.0/24: { count: 3, fec: 1 }\n"),
            "tables.yaml:4: route 255.255.254.0/24 of fib of vrf default: 3 routes of length 24 run past "
            "255.255.255.255");
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      10.0.0.0/8: { count: 0, fec: 1 }\n"),
            "tables.yaml:4: 'count' in route 10.0.0.0/8 of fib of vrf default must be a whole number from 1 to "
            "16777216, not '0'");
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      10.0.0.0/8: { fec: [1, 2] }\n"),
            "tables.yaml:4: route 10.0.0.0/8 of fib of vrf default is one route and uses one FEC; a list of FECs "
            "is for routes with a count");
  EXPECT_EQ(errorOf("fib:\n  default:\n    fecs:\n      5: { count: 2, vias: [255.255.255.255@Ethernet1] }\n"),
            "tables.yaml:4: FEC 5 of fib of vrf default: the next hops of its 2 FECs run past 255.255.255.255");
  EXPECT_EQ(errorOf("arp:\n  - { interface: E1, address: 10.0.0.250, count: 7, mac: ff:ff:ff:ff:ff:fa }\n"),
            "tables.yaml:2: the neighbour of line 2: its 7 MAC addresses run past ff:ff:ff:ff:ff:ff");
  EXPECT_EQ(errorOf("fib:\n  default:\n    routes:\n      0.0.0.0/32: { count: 16777216, fec: 1 }\n"
                    "      11.0.0.0/32: { fec: 1 }\n"),
            "tables.yaml:2: routes of fib of vrf default come to 16777217 entries; a table holds at most 16777216");
}

TEST(TableSections, RunsThatShareAKeyAreRefusedAtTheLaterOne) {
  EXPECT_EQ(errorOf("fib:\n  red:\n    routes:\n"
                    "      100.0.0.0/24: { count: 256, fec: 1 }\n"
                    "      100.0.7.0/24: { fec: 2 }\n"),
            "tables.yaml:5: routes from 100.0.7.0/24 in fib of vrf red share entries with those of line 4");
  EXPECT_EQ(errorOf("fib:\n  red:\n    routes:\n"
                    "      100.0.0.0/24: { count: 256, fec: 1 }\n"
                    "      100.0.7.0/25: { fec: 2 }\n"
                    "      100.1.0.0/24: { fec: 2 }\n"),
            "(accepted)")
      << "another length, or just past the run, is another route";
  EXPECT_EQ(errorOf("fib:\n  red:\n    fecs:\n      10: { count: 5, vias: [] }\n      14: []\n"),
            "tables.yaml:5: FECs from 14 in fib of vrf red share entries with those of line 4");
  EXPECT_EQ(errorOf("arp:\n"
                    "  - { interface: E1, address: 10.0.0.9, mac: 00:00:00:00:00:01 }\n"
                    "  - { interface: E1, address: 10.0.0.1, count: 10, mac: 00:00:00:00:01:00 }\n"),
            "tables.yaml:3: neighbours from 10.0.0.1 in arp share entries with those of line 2");
  EXPECT_EQ(errorOf("arp:\n"
                    "  - { interface: E1, address: 10.0.0.9, mac: 00:00:00:00:00:01 }\n"
                    "  - { interface: E2, address: 10.0.0.9, mac: 00:00:00:00:00:01 }\n"
                    "  - { vrf: 3, interface: E1, address: 10.0.0.9, mac: 00:00:00:00:00:01 }\n"),
            "(accepted)");
  EXPECT_EQ(errorOf("vrfIds: { red: 1, blue: 1 }\n"), "tables.yaml:1: VRF id 1 in vrfIds is given to red already");
}

TEST(TableSections, TheEmbeddedDefaultHasEcmpRoutesAndBothKindsOfNeighbour) {
  Sources::TablesScenario t = parseScenario(Sources::defaultScenarioText, "default.yaml").tables;
  ASSERT_TRUE(t.fib && t.arp && t.vrfIds);
  EXPECT_EQ(t.vrfIds->size(), 2u);
  for (const char* vrf : {"default", "red", "blue"}) EXPECT_FALSE(t.fib->at(vrf).routes.empty()) << vrf;
  bool ecmp = false;
  for (const auto& [vrf, fib] : *t.fib)
    for (const Sources::FecRun& fec : fib.fecs) ecmp |= fec.vias.size() > 1;
  EXPECT_TRUE(ecmp);
  bool staticOne = false, dynamicOne = false;
  for (const Sources::ArpRun& run : *t.arp) (run.isStatic ? staticOne : dynamicOne) = true;
  EXPECT_TRUE(staticOne && dynamicOne);
}

TEST(ScenarioDocs, TheCompleteExampleOfTheFormatIsAcceptedWhole) {
  std::ifstream doc(SCENARIO_DOC);
  std::stringstream text;
  text << doc.rdbuf();
  const std::string all = text.str();
  const std::size_t heading = all.find("## A complete example");
  ASSERT_NE(heading, std::string::npos);
  const std::size_t start = all.find("```yaml\n", heading);
  const std::size_t end = all.find("```\n", start + 8);
  ASSERT_NE(end, std::string::npos);
  Sources::Scenario s = parseScenario(all.substr(start + 8, end - start - 8), "scenario.md");
  EXPECT_EQ(s.vrfs.size(), 2u);
  ASSERT_TRUE(s.tables.fib && s.tables.arp && s.tables.vrfIds);
  EXPECT_EQ(s.tables.fib->at("default").routes.size(), 5u);
}

}  // namespace
