// The tables of a scenario are written by difference: what is new or changed is written, what is
// gone is erased, what is right is left alone, a section that the scenario leaves out is not touched
// at all, runs are spelled out entry by entry, and a table too small for the scenario grows.
#include <gtest/gtest.h>

#include <filesystem>

#include "TableFiles.h"
#include "platform/tarn/RecordWriter.h"
#include "sources/scenario/ScenarioParser.h"
#include "sources/scenario/TableSync.h"

namespace {

using namespace ScenarioTest;
using Sources::TableSyncCounts;

class TableSync : public ::testing::Test {
 protected:
  TableSyncCounts sync(const std::string& yaml) {
    return Sources::syncTables(Sources::parseScenario(yaml, "t.yaml").tables, root(), 0);
  }
  const std::string& root() const { return dir.path(); }

  TestSupport::TempDir dir;
};

const std::string small =
    "vrfIds: { red: 1 }\n"
    "fib:\n"
    "  default:\n"
    "    fecs: { 1: [10.0.0.2@Ethernet1, 10.0.0.3@Ethernet1] }\n"
    "    routes:\n"
    "      10.1.0.0/16: { fec: 1, type: ebgp, metric: 20 }\n"
    "      10.2.0.0/16: { fec: 1 }\n"
    "  red:\n"
    "    fecs: { 5: [0.0.0.0@Ethernet2] }\n"
    "    routes: { 10.0.2.0/24: { fec: 5 } }\n"
    "arp:\n"
    "  - { interface: Ethernet1, address: 10.0.0.2, mac: 00:1c:73:00:00:02, static: true }\n"
    "  - { vrf: red, interface: Ethernet2, address: 10.0.2.2, mac: 00:1c:73:00:02:02 }\n";

std::string edited(std::string text, const std::vector<std::pair<std::string, std::string>>& edits) {
  for (const auto& [from, to] : edits) text.replace(text.find(from), from.size(), to);
  return text;
}

TEST_F(TableSync, EachSyncWritesWhatChangedAndErasesWhatWent) {
  const std::pair<std::string, TableSyncCounts> steps[] = {
      {small, {8, 0}},
      {small, {0, 0}},
      {edited(small, {{"metric: 20", "metric: 30"},                    // one route
                      {"10.0.0.3@Ethernet1", "10.0.0.4@Ethernet1"},    // one FEC
                      {"static: true", "static: false"},               // one neighbour
                      {"red: 1", "red: 1, blue: 2"}}),                 // one VRF id more
       {4, 0}},
      {"routing: { ipv4: true }\n", {0, 0}},  // the sections left out are not touched
      {"vrfIds: {}\n"
       "fib:\n"
       "  default:\n"
       "    fecs: { 1: [10.0.0.2@Ethernet1, 10.0.0.4@Ethernet1] }\n"
       "    routes: { 10.2.0.0/16: { fec: 1 } }\n"
       "arp: []\n",
       {0, 7}},
  };
  for (const auto& [yaml, counts] : steps) EXPECT_EQ(sync(yaml), counts) << yaml;
  EXPECT_EQ(routesIn(root(), "default").size(), 1u);
  EXPECT_EQ(fecsIn(root(), "default").at(Tarn::Fib::FecId(1)).vias[1].hop, Pelt::IpAddr(10, 0, 0, 4));
  EXPECT_TRUE(routesIn(root(), "red").empty()) << "a VRF that left fib has its tables emptied";
  EXPECT_TRUE(std::filesystem::exists(routeFile(root(), "red"))) << "emptied, not removed: readers keep their file";
  EXPECT_TRUE(arpIn(root()).empty());
  EXPECT_TRUE(vrfIdsIn(root()).empty());
  sync("fib: { green: {} }\narp: []\n");
  EXPECT_FALSE(std::filesystem::exists(routeFile(root(), "green"))) << "no file for a table that stays empty";
}

TEST_F(TableSync, RunsAreSpelledOutEntryByEntry) {
  EXPECT_EQ(sync("fib:\n"
                 "  default:\n"
                 "    fecs: { 100: { count: 3, vias: [10.0.0.10@Ethernet1, 0.0.0.0@Vlan10] } }\n"
                 "    routes: { 100.0.0.0/24: { count: 1000, fec: [100, 101, 102], type: ebgp } }\n"
                 "arp:\n"
                 "  - { interface: Ethernet1, address: 10.0.0.254, count: 4, mac: 02:00:00:00:00:fe }\n"),
            (TableSyncCounts{1007, 0}));
  auto routes = routesIn(root(), "default");
  ASSERT_EQ(routes.size(), 1000u);
  EXPECT_EQ(std::prev(routes.end())->first, Pelt::Prefix("100.3.231.0/24")) << "the 1000th block of 256";
  EXPECT_EQ(routes.at(Pelt::Prefix("100.0.4.0/24")).fecId, Tarn::Fib::FecId(101)) << "the FECs in turn";
  EXPECT_EQ(routes.at(Pelt::Prefix("100.0.4.0/24")).routeType, Routing::Fib::routeTypeEbgp);
  auto fecs = fecsIn(root(), "default");
  ASSERT_EQ(fecs.size(), 3u);
  EXPECT_EQ(fecs.at(Tarn::Fib::FecId(102)).vias[0].hop, Pelt::IpAddr(10, 0, 0, 12)) << "next hops count up";
  EXPECT_EQ(fecs.at(Tarn::Fib::FecId(102)).vias[1].hop, Pelt::IpAddr()) << "except the connected ones";
  auto arp = arpIn(root());
  ASSERT_EQ(arp.size(), 4u);
  const Arp::Table::ArpEntry& last = std::prev(arp.end())->second;
  EXPECT_EQ(last.addr, Pelt::IpGenAddr(Pelt::IpAddr(10, 0, 1, 1))) << "addresses count over the octet";
  EXPECT_EQ(last.ethAddr, Pelt::EthAddr(0x0200, 0x0000, 0x0101));
}

TEST_F(TableSync, AFecOfManyViasComesBackEqualAndIsNotRewritten) {
  std::string vias;
  for (int i = 1; i <= 40; ++i) vias += (i > 1 ? ", " : "") + std::string("10.0.") + std::to_string(i) + ".1@Ethernet" +
                                         std::to_string(i);
  const std::string yaml = "fib:\n  default:\n    fecs: { 9: [" + vias + "] }\n";
  EXPECT_EQ(sync(yaml), (TableSyncCounts{1, 0}));
  EXPECT_EQ(fecsIn(root(), "default").at(Tarn::Fib::FecId(9)).vias[39],
            (Tarn::Fib::Via{Pelt::IpAddr(10, 0, 40, 1), Pelt::IntfId("Ethernet40")}));
  EXPECT_EQ(sync(yaml), (TableSyncCounts{0, 0}));
}

TEST_F(TableSync, ATableTooSmallForTheScenarioGrowsAndALargeOneIsKept) {
  Tarn::RecordWriter<Arp::Table::ArpCodec>(arpFile(root()), 8)
      .put(Arp::Table::ArpEntry{Vrf::VrfIdMap::defaultVrfId, Pelt::IntfId("Ethernet9"), Pelt::IpAddr(10, 9, 0, 1),
                                Pelt::EthAddr(0, 0, 1), false});
  EXPECT_EQ(sync("arp:\n  - { interface: Ethernet1, address: 10.0.0.1, count: 20, mac: 02:00:00:00:00:01 }\n"),
            (TableSyncCounts{20, 1}))
      << "the file of 8 is rebuilt for 20 with the entry it held, which the save erases";
  EXPECT_EQ(arpIn(root()).size(), 20u);
  EXPECT_EQ(sync("arp:\n  - { interface: Ethernet1, address: 10.0.0.1, count: 2, mac: 02:00:00:00:00:01 }\n"),
            (TableSyncCounts{0, 18}))
      << "a file large enough is kept and brought in line";
}

TEST_F(TableSync, AnotherWriterHoldingATableIsAnError) {
  Tarn::RecordWriter<Vrf::VrfIdMap::VrfEntryCodec> other(vrfIdFile(root()), 1024);
  EXPECT_THROW(sync("vrfIds: { red: 1 }\n"), std::system_error);
}

}  // namespace
