// The command-line writer, run as another process would: what it writes, IPv6 routes and FECs among
// it, is what a mounted view reads and its reactors hear, and bad input is refused whole with a message naming the word at fault.
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fstream>

#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/ForwardingStatus.h"
#include "platform/tarn/Mount.h"
#include "platform/tarn/RouteStatus.h"
#include "platform/tarn/VrfIdMapStatus.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

struct ToolRun {
  int status;
  std::string output;  // stdout and stderr
};

class TarnTool : public TarnTest::TableDir {
 protected:
  ToolRun tool(const std::string& arguments) {
    std::string command = std::string(IPSNMP_TARN_TOOL) + " --root " + dir_.string() + " " + arguments + " 2>&1";
    ToolRun run{-1, ""};
    FILE* pipe = ::popen(command.c_str(), "r");
    std::array<char, 256> buffer;
    while (std::fgets(buffer.data(), buffer.size(), pipe)) run.output += buffer.data();
    int status = ::pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
  }
  template <class Entity>
  Quor::Ptr<Entity> mounted(const std::string& path, const QuorTarn::MountInfo& info) {
    auto entity = Quor::makePtr<Entity>(Quor::Name(path));
    entity->mount((dir_ / path).string(), info.tableType);
    return entity;
  }
};

TEST_F(TarnTool, WritesWhatTheMountedViewsReadAndTheirReactorsHear) {
  ASSERT_EQ(tool("route put 10.0.0.0/8 5 metric=3 preference=20 type=4").status, 0);
  auto routes = mounted<Tarn::Fib::RouteStatus>("routing/status", Tarn::Fib::TableInfo::routeInfo());
  Tarn::Fib::Route r = routes->route().lookup(Pelt::Prefix("10.0.0.0/8")).value();
  EXPECT_EQ(r.fecId, Tarn::Fib::FecId(5));
  EXPECT_EQ(r.metric, Routing::RouteMetric(3));
  EXPECT_EQ(r.preference, Routing::RoutePreference(20));
  EXPECT_EQ(r.routeType, Routing::Fib::routeTypeStaticConfig);

  std::string vias;
  for (int i = 0; i < 20; ++i) vias += " 10.0.1." + std::to_string(i) + "@Ethernet" + std::to_string(i);
  ASSERT_EQ(tool("--vrf red fec put 5" + vias).status, 0);
  ASSERT_EQ(tool("arp put 7 Vlan10 fe80::1 00:1c:73:00:00:09 static").status, 0);
  ASSERT_EQ(tool("vrf put 7 red").status, 0);
  auto fecs = mounted<Tarn::Fib::ForwardingStatus>("forwarding/vrf/status/red", Tarn::Fib::TableInfo::forwardingInfo());
  Tarn::Fib::Fec fec = fecs->fec().lookup(Tarn::Fib::FecId(5)).value();
  ASSERT_EQ(fec.viaCount, 20u);
  EXPECT_EQ(fec.via(Tarn::Fib::ViaIndex(19)).intfId, Pelt::IntfId("Ethernet19"));
  auto arp = mounted<Arp::Table::Status>("arp/status", Arp::Table::TableInfo::arpInfo());
  Arp::Table::ArpKey key{Vrf::VrfIdMap::VrfId(7), Pelt::IntfId("Vlan10"), *Pelt::Ip6Addr::parse("fe80::1")};
  EXPECT_TRUE(arp->arpEntry().lookup(key).value().isStatic);
  auto vrfIds = mounted<Vrf::VrfIdMap::Status>("vrf/idmap", Vrf::VrfIdMap::TableInfo::vrfIdMapInfo());
  EXPECT_EQ(vrfIds->vrfEntry().lookup(Vrf::VrfIdMap::VrfId(7)).value().vrfName(), L3::VrfName("red"));

  ASSERT_EQ(tool("route6 put 2001:db8::/32 9 metric=7").status, 0);
  ASSERT_EQ(tool("--vrf red fec6 put 9 fe80::1@Ethernet1 ::@Vlan10").status, 0);
  auto routes6 = mounted<Tarn::Fib::Route6Status>("routing6/status", Tarn::Fib::TableInfo::route6Info());
  EXPECT_EQ(routes6->route().lookup(Pelt::Ip6AddrWithMask("2001:db8::/32")).value().metric, Routing::RouteMetric(7));
  auto fecs6 = mounted<Tarn::Fib::Forwarding6Status>("forwarding6/vrf/status/red", Tarn::Fib::TableInfo::forwarding6Info());
  const Tarn::Fib::Fec6 fec6 = fecs6->fec().lookup(Tarn::Fib::FecId(9)).value();
  ASSERT_EQ(fec6.viaCount, 2u);
  EXPECT_EQ(fec6.via(Tarn::Fib::ViaIndex(0)).hop, Pelt::Ip6Addr("fe80::1"));
  EXPECT_EQ(fec6.via(Tarn::Fib::ViaIndex(1)).intfId, Pelt::IntfId("Vlan10"));

  class Heard : public Tarn::Fib::RouteStatus::NotifieeConst {
   public:
    void onRoute(const Pelt::Prefix& prefix) override { heard.push_back(prefix); }
    std::vector<Pelt::Prefix> heard;
  };
  auto reactor = Quor::makePtr<Heard>();
  reactor->notifierIs(routes);
  ASSERT_EQ(tool("route del 10.0.0.0/8").status, 0);
  EXPECT_TRUE(TarnTest::turnUntil([&] { return !reactor->heard.empty(); }));
  EXPECT_FALSE(routes->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
}

TEST_F(TarnTool, ACommandFileIsCheckedWholeBeforeAnythingIsWritten) {
  std::ofstream((dir_.string() + ".commands").c_str()) << "# two routes\nroute put 10.0.0.0/8 1\n\nroute put 10.1.0.0/16 x\n";
  ToolRun run = tool("-f " + dir_.string() + ".commands");
  std::remove((dir_.string() + ".commands").c_str());
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.output, "ipsnmp-tarn: " + dir_.string() + ".commands:4: bad FEC id 'x' (a number up to 18446744073709551615)\n");
  EXPECT_FALSE(std::filesystem::exists(dir_ / "routing/status/route"));
}

TEST_F(TarnTool, BadInputIsNamedInTheError) {
  EXPECT_EQ(tool("route put 10.0.0.0/33 1").output, "ipsnmp-tarn: command: bad prefix '10.0.0.0/33'\n");
  EXPECT_EQ(tool("fec put 1 10.0.0.1").output, "ipsnmp-tarn: command: bad via '10.0.0.1' (HOP@INTERFACE)\n");
  EXPECT_EQ(tool("arp put 0 Ethernet1 10.0.0.1 00:1c:73:00:00").output,
            "ipsnmp-tarn: command: bad MAC address '00:1c:73:00:00'\n");
  EXPECT_EQ(tool("arp put -1 Ethernet1 10.0.0.1 00:1c:73:00:00:01").output,
            "ipsnmp-tarn: command: bad VRF id '-1' (a number up to 4294967294)\n");
  EXPECT_EQ(tool("vrf put 3").output, "ipsnmp-tarn: command: usage: vrf put VRF-ID NAME | vrf del VRF-ID\n");
  EXPECT_EQ(tool("mpls put 3").output, "ipsnmp-tarn: command: unknown table 'mpls' (route, fec, route6, fec6, arp, vrf)\n");
  ToolRun noCommand = tool("");
  EXPECT_EQ(noCommand.status, 2);
  EXPECT_NE(noCommand.output.find("usage: ipsnmp-tarn"), std::string::npos);
  EXPECT_TRUE(!std::filesystem::exists(dir_) || std::filesystem::is_empty(dir_));
}

}  // namespace
