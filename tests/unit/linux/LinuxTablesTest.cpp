// The table side of the Linux source against a kernel: routes (ECMP, connected, static, dropped,
// by nexthop object), IPv6 routes, FECs, neighbours and VRF ids, compared with what ip(8) shows; and
// the writer process kept running by the agent's source.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <sstream>

#include "platform/morvane/Store.h"
#include "sources/linux/LinuxSource.h"
#include "sources/linux/TableMirror.h"
#include "tests/unit/linux/KernelFixture.h"

namespace {

using LinuxTest::lines;
using LinuxTest::must;
using LinuxTest::runUntil;

std::string viasText(std::vector<std::string> vias) {
  std::sort(vias.begin(), vias.end());
  std::string text;
  for (const std::string& via : vias) text += (text.empty() ? "" : ",") + via;
  return text;
}

class LinuxTables : public LinuxTest::KernelTest {
 protected:
  // The routes of namespace `ns` ("" for this one) as ip shows them, one line each:
  // "<prefix> <metric> <route type> <hop>@<interface>,...", interfaces named as in the store. The
  // next hops of a route by nexthop object are those of the object, or of its group's members.
  std::set<std::string> routesOfIp(const std::string& ns, const std::string& vrf) {
    const std::string ip = ns.empty() ? "ip" : "ip -n " + ns;
    const std::string qualifier = vrf == "default" ? "" : vrf + ":";
    std::set<std::string> routes;
    for (const std::string& line :
         lines("nh=$(" + ip + " -j nexthop show); " + ip + " -j route show | jq -r --argjson nh \"${nh:-[]}\" '"
               "($nh | map({key: (.id | tostring), value: .}) | from_entries) as $objects | .[] | "
               "(if .nhid then ($objects[.nhid | tostring] | if .group then [.group[] | $objects[.id | tostring]] "
               "else [.] end) else (.nexthops // [.]) end) as $hops | "
               "\"\\(.dst) \\(.metric // 0) \\(.protocol // \"boot\") \\(.type // \"unicast\") "
               "\\([$hops[] | select(.dev) | \"\\(.gateway // \"0.0.0.0\")@\\(.dev)\"] | join(\",\"))\"'")) {
      std::istringstream fields(line);
      std::string dst, metric, protocol, type, hops;
      fields >> dst >> metric >> protocol >> type >> hops;
      if (dst == "default") dst = "0.0.0.0/0";
      if (dst.find('/') == std::string::npos) dst += "/32";
      int routeType = type == "blackhole" || type == "unreachable" || type == "prohibit" ? 3
                      : protocol == "kernel"                                           ? 8
                      : protocol == "boot" || protocol == "static"                     ? 4
                      : protocol == "bgp"                                              ? 19
                                                                                       : 5;
      std::vector<std::string> vias;
      std::istringstream split(hops);
      for (std::string via; std::getline(split, via, ',');) vias.push_back(via.replace(via.find('@') + 1, 0, qualifier));
      routes.insert(dst + " " + metric + " " + std::to_string(routeType) + " " + viasText(vias));
    }
    return routes;
  }
  // The same from the tables of `vrf`.
  std::set<std::string> routesOfTables(const std::string& vrf) {
    auto fecs = LinuxTest::readFecs(tableRoot, vrf);
    std::set<std::string> routes;
    for (const auto& [prefix, route] : LinuxTest::readRoutes(tableRoot, vrf)) {
      std::ostringstream text;
      text << prefix << " " << route.metric.value() << " " << static_cast<int>(route.routeType) << " ";
      std::vector<std::string> vias;
      auto fec = fecs.find(route.fecId.value());
      if (fec == fecs.end()) {
        vias.push_back("<no FEC " + std::to_string(route.fecId.value()) + ">");
      } else {
        for (U32 i = 0; i < fec->second.viaCount; ++i) {
          std::ostringstream via;
          via << fec->second.vias[i].hop << "@" << fec->second.vias[i].intfId.stringValue().view();
          vias.push_back(via.str());
        }
      }
      routes.insert(text.str() + viasText(vias));
    }
    return routes;
  }
  // Neighbours with a hardware address, "<interface> <address> <mac> <static>", as ip shows them.
  std::set<std::string> neighboursOfIp(const std::string& ns, const std::string& vrf) {
    const std::string qualifier = vrf == "default" ? "" : vrf + ":";
    std::set<std::string> all;
    for (const std::string& line :
         lines("ip -n " + ns + " -j neigh show | jq -r '.[] | select(.lladdr) | select(.dst | contains(\":\") | not) | "
                               "\"\\(.dev) \\(.dst) \\(.lladdr) \\(.state | index(\"PERMANENT\") != null)\"'"))
      all.insert(qualifier + line);
    return all;
  }
  std::set<std::string> neighboursOfTables(U32 vrfId) {
    std::set<std::string> all;
    for (const Arp::Table::ArpEntry& e : LinuxTest::readArp(tableRoot)) {
      if (e.vrfId.value() != vrfId) continue;
      std::ostringstream text;
      text << e.intfId.stringValue().view() << " " << e.addr << " " << e.ethAddr << " " << (e.isStatic ? "true" : "false");
      all.insert(text.str());
    }
    return all;
  }

  // A VRF with two links to this namespace, addresses on both sides, and routes of every kind.
  void makeRoutedVrf(const std::string& tag) {
    makeVrf(tag);
    const std::string ns = "ip -n " + netns(tag) + " ";
    for (int i : {0, 1}) {
      const std::string here = "lt" + tag + std::to_string(2 * i), there = "lt" + tag + std::to_string(2 * i + 1);
      const std::string subnet = "10.6" + std::to_string(i) + ".0.";
      must("ip link add " + here + " type veth peer name " + there);
      must("ip link set " + there + " netns " + netns(tag));
      must("ip addr add " + subnet + "1/24 dev " + here);
      must("ip link set " + here + " up");
      must(ns + "addr add " + subnet + "2/24 dev " + there);
      must(ns + "link set " + there + " up");
    }
    const std::string a = "lt" + tag + "1", b = "lt" + tag + "3";
    must(ns + "route add 10.70.0.0/16 nexthop via 10.60.0.1 dev " + a + " nexthop via 10.61.0.1 dev " + b);
    must(ns + "route add 10.71.0.0/16 via 10.60.0.1 metric 30");
    must(ns + "route add 10.72.0.0/16 via 10.60.0.1 metric 30 proto static");
    must(ns + "route add blackhole 10.73.0.0/16");
    must(ns + "route add 10.74.0.5 dev " + a);
    must(ns + "route add default via 10.61.0.1");
    must(ns + "neigh add 10.60.0.7 lladdr 02:00:00:00:00:07 dev " + a + " nud permanent");
    must(ns + "neigh add 10.61.0.8 lladdr 02:00:00:00:00:08 dev " + b + " nud stale");
  }
};

// The VRF's namespace comes after the start (the first dump is the other tests'), and goes at the end.
TEST_F(LinuxTables, RoutesAndNeighboursEqualWhatIpShowsUntilTheVrfGoes) {
  Sources::Linux::TableMirror mirror(tableRoot, "/var/run/netns");
  ASSERT_TRUE(runUntil([&] { return mirror.initialized(); }));
  makeRoutedVrf("a");
  const std::string ns = netns("a"), vrf = this->vrf("a");
  must("ip route add 10.80.0.0/16 via 10.60.0.2");

  EXPECT_TRUE(runUntil([&] { return routesOfTables(vrf) == routesOfIp(ns, vrf); }));
  EXPECT_EQ(routesOfTables(vrf), routesOfIp(ns, vrf));
  EXPECT_TRUE(runUntil([&] { return routesOfTables("default") == routesOfIp("", "default"); }));
  EXPECT_EQ(routesOfTables("default"), routesOfIp("", "default"));
  const auto routes = LinuxTest::readRoutes(tableRoot, vrf);
  EXPECT_EQ(routes.at(Pelt::Prefix("10.71.0.0/16")).fecId, routes.at(Pelt::Prefix("10.72.0.0/16")).fecId)
      << "routes with the same next hops share a FEC";
  EXPECT_EQ(routes.at(Pelt::Prefix("10.60.0.0/24")).preference.value(), 0) << "connected";

  ASSERT_TRUE(runUntil([&] { return LinuxTest::readVrfIds(tableRoot).count(vrf) == 1; }));
  const auto ids = LinuxTest::readVrfIds(tableRoot);
  EXPECT_NE(ids.at(vrf), 0u);
  EXPECT_TRUE(runUntil([&] { return neighboursOfTables(ids.at(vrf)).size() == 2; }));
  EXPECT_EQ(neighboursOfTables(ids.at(vrf)), neighboursOfIp(ns, vrf));

  // The events: routes and neighbours come, change and go.
  const std::string ip = "ip -n " + ns + " ";
  must(ip + "route del 10.70.0.0/16");
  must(ip + "route replace 10.71.0.0/16 via 10.61.0.1 metric 30");
  must(ip + "route add 10.75.0.0/16 nexthop via 10.60.0.1 nexthop via 10.61.0.1");
  must(ip + "neigh del 10.60.0.7 dev lta1");
  must(ip + "neigh add 10.60.0.9 lladdr 02:00:00:00:00:09 dev lta1 nud permanent");
  EXPECT_TRUE(runUntil([&] { return routesOfTables(vrf) == routesOfIp(ns, vrf); }));
  EXPECT_EQ(routesOfTables(vrf), routesOfIp(ns, vrf));
  EXPECT_TRUE(runUntil([&] { return neighboursOfTables(ids.at(vrf)) == neighboursOfIp(ns, vrf); }));
  EXPECT_EQ(neighboursOfTables(ids.at(vrf)), neighboursOfIp(ns, vrf));

  deleteVrf("a");
  EXPECT_TRUE(runUntil([&] { return LinuxTest::readVrfIds(tableRoot).count(vrf) == 0; }));
  EXPECT_TRUE(LinuxTest::readRoutes(tableRoot, vrf).empty());
  EXPECT_TRUE(LinuxTest::readFecs(tableRoot, vrf).empty());
  EXPECT_TRUE(neighboursOfTables(ids.at(vrf)).empty());
}

TEST_F(LinuxTables, RoutesByNexthopObjectFollowTheirObjects) {
  makeRoutedVrf("n");
  const std::string ns = netns("n"), vrf = this->vrf("n"), ip = "ip -n " + ns + " ";
  // Routes carry the object's id alone, and changes of an object are not told route by route.
  must("ip netns exec " + ns + " sysctl -qw net.ipv4.nexthop_compat_mode=0");
  // A link without addresses, whose carrier the test takes away.
  must(ip + "link add ltn5 type veth peer name ltn6");
  must(ip + "link set ltn5 up");
  must(ip + "link set ltn6 up");
  for (const char* command :
       {"nexthop add id 1 via 10.60.0.1 dev ltn1", "nexthop add id 2 via 10.61.0.1 dev ltn3",
        "nexthop add id 5 dev ltn5", "nexthop add id 3 group 1/2/5", "nexthop add id 4 blackhole",
        "route add 10.91.0.0/16 nhid 3 proto bgp", "route add 10.92.0.0/16 nhid 4", "route add 10.93.0.0/16 nhid 5",
        "route add 10.94.0.0/16 nhid 5"})
    must(ip + command);
  Sources::Linux::TableMirror mirror(tableRoot, "/var/run/netns");
  ASSERT_TRUE(runUntil([&] { return mirror.initialized(); }));

  // The route of `prefix` in the tables, "<route type> <hop>@<link>,...", "" when there is none.
  auto routeInTables = [&](const std::string& prefix) {
    for (std::string line : routesOfTables(vrf))
      if (line.starts_with(prefix + " 0 ")) {
        for (auto at = line.find(vrf + ":"); at != std::string::npos; at = line.find(vrf + ":"))
          line.erase(at, vrf.size() + 1);
        return line.substr(prefix.size() + 3);
      }
    return std::string();
  };
  struct Step {
    std::string change;  // an ip command in the VRF's namespace, or none
    std::string prefix;
    std::string route;   // as routeInTables gives it afterwards
  };
  const Step steps[] = {
      {"", "10.91.0.0/16", "19 0.0.0.0@ltn5,10.60.0.1@ltn1,10.61.0.1@ltn3"},
      {"", "10.92.0.0/16", "3 "},
      {"", "10.93.0.0/16", "4 0.0.0.0@ltn5"},
      // A member changes: the group's routes are not sent again.
      {"nexthop replace id 1 via 10.60.0.5 dev ltn1", "10.91.0.0/16", "19 0.0.0.0@ltn5,10.60.0.5@ltn1,10.61.0.1@ltn3"},
      {"route replace 10.93.0.0/16 nhid 2", "10.93.0.0/16", "4 10.61.0.1@ltn3"},
      // The carrier goes: object 5 leaves its group and takes its route, all without a message;
      // 10.93.0.0/16 no longer uses it.
      {"link set ltn6 down", "10.94.0.0/16", ""},
      {"", "10.91.0.0/16", "19 10.60.0.5@ltn1,10.61.0.1@ltn3"},
      // An object deleted takes its routes (10.93.0.0/16) and leaves its group.
      {"nexthop del id 2", "10.91.0.0/16", "19 10.60.0.5@ltn1"},
      {"nexthop add id 2 via 10.61.0.9 dev ltn3", "10.93.0.0/16", ""},
      // The group's last member goes: the group goes, and its routes.
      {"nexthop del id 1", "10.91.0.0/16", ""},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.change + " -> " + step.prefix);
    if (!step.change.empty()) must(ip + step.change);
    EXPECT_TRUE(runUntil([&] { return routesOfTables(vrf) == routesOfIp(ns, vrf); }));
    EXPECT_EQ(routesOfTables(vrf), routesOfIp(ns, vrf));
    EXPECT_EQ(routeInTables(step.prefix), step.route);
  }
}

// A veth into a VRF's namespace with an IPv6 address and a route through the peer: the route, the
// connected prefix and the link-local one land in the VRF's IPv6 tables, and the route goes with it.
TEST_F(LinuxTables, Ipv6RoutesOfTheMainTableFillTheIpv6Tables) {
  makeVrf("a");
  const std::string ip = "ip -n " + netns("a") + " ", vrf = this->vrf("a");
  must("ip link add lt6a0 type veth peer name lt6a1");
  must("ip link set lt6a1 netns " + netns("a"));
  must("ip link set lt6a0 up");
  must(ip + "addr add 2001:db8:60::2/64 dev lt6a1 nodad");
  must(ip + "link set lt6a1 up");
  must(ip + "route add 2001:db8:70::/48 via 2001:db8:60::1 metric 7");
  Sources::Linux::TableMirror mirror(tableRoot, "/var/run/netns");
  ASSERT_TRUE(runUntil([&] { return mirror.initialized(); }));

  const Pelt::Ip6AddrWithMask routed("2001:db8:70::/48"), connected("2001:db8:60::/64"), linkLocal("fe80::/64");
  ASSERT_TRUE(runUntil([&] { return LinuxTest::readRoutes6(tableRoot, vrf).count(routed) > 0; }));
  const auto routes = LinuxTest::readRoutes6(tableRoot, vrf);
  const auto fecs = LinuxTest::readFecs6(tableRoot, vrf);
  EXPECT_EQ(routes.count(connected) + routes.count(linkLocal), 2u);
  const Tarn::Fib::Route6& route = routes.at(routed);
  EXPECT_EQ(route.metric.value(), 7u);
  ASSERT_TRUE(fecs.count(route.fecId.value()));
  const Tarn::Fib::Fec6& fec = fecs.at(route.fecId.value());
  ASSERT_EQ(fec.viaCount, 1u);
  EXPECT_EQ(fec.vias[0].hop, Pelt::Ip6Addr("2001:db8:60::1"));
  EXPECT_EQ(fec.vias[0].intfId.stringValue().view(), vrf + ":lt6a1");
  EXPECT_TRUE(LinuxTest::readRoutes(tableRoot, vrf).empty()) << "no IPv4 route of the namespace's";

  must(ip + "route del 2001:db8:70::/48");
  EXPECT_TRUE(runUntil([&] { return LinuxTest::readRoutes6(tableRoot, vrf).count(routed) == 0; }));

  // By nexthop object alone, as FRR installs routes: the object's IPv6 gateway is the next hop.
  must("ip netns exec " + netns("a") + " sysctl -qw net.ipv4.nexthop_compat_mode=0");
  must(ip + "nexthop add id 61 via 2001:db8:60::1 dev lt6a1");
  must(ip + "route add 2001:db8:70::/48 nhid 61");
  ASSERT_TRUE(runUntil([&] { return LinuxTest::readRoutes6(tableRoot, vrf).count(routed) > 0; }));
  const auto byObject = LinuxTest::readFecs6(tableRoot, vrf).at(LinuxTest::readRoutes6(tableRoot, vrf).at(routed).fecId.value());
  ASSERT_EQ(byObject.viaCount, 1u);
  EXPECT_EQ(byObject.vias[0].hop, Pelt::Ip6Addr("2001:db8:60::1"));
}

TEST_F(LinuxTables, WriterProcessIsStartedAgainAndCatchesUp) {
  makeRoutedVrf("c");
  const std::string ns = netns("c"), vrf = this->vrf("c");
  Morvane::Store store = Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("test")));
  Sources::LinuxSource source(store, Sources::LinuxSource::Options{LINUX_TABLE_WRITER});
  ASSERT_EQ(source.start(), "");
  ASSERT_TRUE(runUntil([&] { return routesOfTables(vrf) == routesOfIp(ns, vrf); }));

  const int first = source.tableWriterPid();
  ASSERT_GT(first, 0);
  ASSERT_EQ(::kill(first, SIGKILL), 0);
  ASSERT_TRUE(runUntil([&] { return source.tableWriterPid() == 0; }));
  EXPECT_EQ(routesOfTables(vrf), routesOfIp(ns, vrf)) << "the tables keep the last state written";
  must("ip -n " + ns + " route add 10.76.0.0/16 via 10.60.0.1");
  ASSERT_TRUE(runUntil([&] { return source.tableWriterPid() != 0; }));
  EXPECT_NE(source.tableWriterPid(), first);
  EXPECT_TRUE(runUntil([&] { return routesOfTables(vrf) == routesOfIp(ns, vrf); }));
  EXPECT_EQ(routesOfTables(vrf), routesOfIp(ns, vrf));
}

}  // namespace
