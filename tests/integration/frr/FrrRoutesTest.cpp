// A real routing daemon feeding the agent that mirrors the kernel. This test process is the machine:
// it moves into a network namespace of its own, where the agent runs with `--source linux` and FRR's
// zebra and bgpd take thousands of prefixes (one of them over two links, ECMP) from the bgpd of a
// second namespace; a third namespace, ns-<vrf>, is a VRF whose zebra and staticd install static
// routes. zebra installs every route by nexthop object, so the routes carry their next hops inline
// only under net.ipv4.nexthop_compat_mode 1: the test runs with 1 and with 0. In the default
// context and the VRF's, ipCidrRouteTable has one row per next hop of each route that ip shows, with
// ip's next hop, interface index and the protocol of the route's origin (bgp 14 for BGP), and a
// prefix withdrawn by the announcing side leaves the table within a second.
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <tuple>

#include "AgentTest.h"
#include "FrrRouter.h"

namespace IntegrationTest {
namespace {

const std::string ipCidrRouteNumber = ".1.3.6.1.2.1.4.24.3.0";
const std::string ipCidrRouteIfIndex = ".1.3.6.1.2.1.4.24.4.1.5";
const std::string ipCidrRouteProto = ".1.3.6.1.2.1.4.24.4.1.7";
constexpr int ipRouteProtocolBgp = 14;
constexpr int ipRouteProtocolNetmgmt = 3;

// Prefixes announced besides the ECMP one, the ECMP one, and one of them that is withdrawn.
constexpr int announced = 4000;
std::string announcedPrefix(int i) {
  return "10." + std::to_string(128 + i / 256) + "." + std::to_string(i % 256) + ".0/24";
}
const std::string ecmpPrefix = "10.99.0.0/24";
const std::string withdrawnPrefix = announcedPrefix(5);

std::string sh(const std::string& command, bool* ok = nullptr) {
  CommandResult run = runCommand({"sh", "-c", command});
  if (ok) *ok = run.exitStatus == 0;
  return run.output;
}

void must(const std::string& command) {
  bool ok = false;
  std::string out = sh(command, &ok);
  ASSERT_TRUE(ok) << command << ": " << out;
}

// ipCidrRouteProto of a kernel route protocol, as the agent must map it.
int mibProtocolOf(const std::string& kernelProtocol) {
  static const std::map<std::string, int> protocols{
      {"2", 2},                        // kernel: the connected routes of addresses, local
      {"3", ipRouteProtocolNetmgmt},   // boot (ip route add)
      {"4", ipRouteProtocolNetmgmt},   // static
      {"196", ipRouteProtocolNetmgmt},  // FRR's staticd
      {"186", ipRouteProtocolBgp},
  };
  auto it = protocols.find(kernelProtocol);
  return it == protocols.end() ? -1 : it->second;
}

// The rows that ip shows in namespace `ns` ("" for this one): one per next hop of each unicast route
// of the main table, "<prefix> <next hop> <ifIndex> <ipCidrRouteProto>". The next hops of a route
// by nexthop object are the object's, or its group members'.
std::set<std::string> rowsOfIp(const std::string& ns) {
  const std::string ip = ns.empty() ? "ip" : "ip -n " + ns;
  const std::string lines = sh(
      "nh=$(" + ip + " -j nexthop show); links=$(" + ip + " -j link show); " + ip +
      " -N -j route show | jq -r --argjson nh \"${nh:-[]}\" --argjson links \"$links\" '"
      "($nh | map({key: (.id | tostring), value: .}) | from_entries) as $objects | "
      "($links | map({key: .ifname, value: .ifindex}) | from_entries) as $index | "
      ".[] | select((.type // \"unicast\") == \"unicast\") | "
      "(if .nhid then ($objects[.nhid | tostring] | if .group then [.group[] | $objects[.id | tostring]] "
      "else [.] end) else (.nexthops // [.]) end) as $hops | "
      "(.dst | if . == \"default\" then \"0.0.0.0/0\" elif contains(\"/\") then . else . + \"/32\" end) as $dst | "
      "(.protocol // \"3\") as $protocol | "
      "$hops[] | select(.dev) | \"\\($dst) \\(.gateway // \"0.0.0.0\") \\($index[.dev]) \\($protocol)\"'");
  std::set<std::string> rows;
  std::istringstream in(lines);
  for (std::string dst, hop, ifIndex, protocol; in >> dst >> hop >> ifIndex >> protocol;)
    rows.insert(dst + " " + hop + " " + ifIndex + " " + std::to_string(mibProtocolOf(protocol)));
  return rows;
}

// The rows that the agent serves to `who`, in the same form.
std::set<std::string> rowsOfAgent(const AgentUnderTest& agent, const Credentials& who) {
  // An index is dest (4), mask (4), tos, next hop (4).
  auto byIndex = [&](const std::string& column) {
    std::map<std::string, std::string> values;
    for (const Varbind& vb : agent.tools().bulkWalk(who, column).varbinds)
      if (vb.oid.starts_with(column + ".")) values[vb.oid.substr(column.size() + 1)] = vb.value;
    return values;
  };
  const auto protocols = byIndex(ipCidrRouteProto);
  std::set<std::string> rows;
  for (const auto& [index, ifIndex] : byIndex(ipCidrRouteIfIndex)) {
    unsigned parts[13] = {};
    std::istringstream in(index);
    for (unsigned& part : parts) {
      in >> part;
      in.ignore(1);
    }
    const unsigned length = std::popcount(parts[4] << 24 | parts[5] << 16 | parts[6] << 8 | parts[7]);
    std::ostringstream row;
    row << parts[0] << "." << parts[1] << "." << parts[2] << "." << parts[3] << "/" << length << " " << parts[9] << "."
        << parts[10] << "." << parts[11] << "." << parts[12] << " " << ifIndex << " "
        << (protocols.count(index) ? protocols.at(index) : "none");
    rows.insert(row.str());
  }
  return rows;
}

// What one set has that the other has not, a few lines of each, for a failure.
std::string differences(const std::set<std::string>& agent, const std::set<std::string>& ip) {
  std::ostringstream out;
  int shown = 0;
  for (const auto& [rows, other, tag] : {std::tuple{&agent, &ip, "only served: "}, {&ip, &agent, "only in ip: "}})
    for (const std::string& row : *rows)
      if (!other->count(row) && shown++ < 20) out << tag << row << "\n";
  return out.str();
}

std::size_t countOf(const std::set<std::string>& rows, const std::function<bool(const std::string&)>& matches) {
  return static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), matches));
}

class FrrRoutes : public AgentTestOf<testing::TestWithParam<int>> {
 protected:
  void SetUp() override {
    AgentTestOf::SetUp();
    if (IsSkipped()) return;
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, for network namespaces and FRR";
    if (!FrrRouter::installed()) GTEST_SKIP() << "FRR is not installed (scripts/install-deps installs Debian's frr)";
    FrrRouter::sweepLeftovers();
    ASSERT_EQ(::unshare(CLONE_NEWNET), 0) << "a network namespace of this process's own";
    must("ip link set lo up");
    compatModeIs("");
    for (const std::string& ns : {announcer, namespaceOfVrf}) {
      must("ip netns add " + ns);
      made.push_back(ns);
      must("ip -n " + ns + " link set lo up");
    }
    compatModeIs(namespaceOfVrf);
  }
  void TearDown() override {
    if (HasFailure())
      for (const auto& router : {&receiving, &announcing, &vrfRouter})
        if (*router) std::cerr << (*router)->logs();
    AgentTestOf::TearDown();
    agent.reset();
    receiving.reset();
    announcing.reset();
    vrfRouter.reset();
    for (const std::string& ns : made) sh("ip netns del " + ns);
  }

  void compatModeIs(const std::string& ns) {
    must((ns.empty() ? "" : "ip netns exec " + ns + " ") + "sysctl -qw net.ipv4.nexthop_compat_mode=" +
         std::to_string(GetParam()));
  }

  // The VRF's zebra and staticd with their static routes: one next hop, two (ECMP), a blackhole and
  // an interface, on a veth pair of the VRF's own.
  void startVrfRouter() {
    const std::string ip = "ip -n " + namespaceOfVrf + " ";
    must(ip + "link add vx1 type veth peer name vx2");
    must(ip + "addr add 10.202.1.1/24 dev vx1");
    must(ip + "addr add 10.202.2.1/24 dev vx2");
    must(ip + "link set vx1 up");
    must(ip + "link set vx2 up");
    vrfRouter = std::make_unique<FrrRouter>(namespaceOfVrf, "vrf");
    ASSERT_TRUE(vrfRouter->start("zebra", ""));
    ASSERT_TRUE(vrfRouter->start("staticd",
                                 "ip route 10.210.0.0/16 10.202.1.9\n"
                                 "ip route 10.211.0.0/16 10.202.1.9\n"
                                 "ip route 10.211.0.0/16 10.202.2.9\n"
                                 "ip route 10.212.0.0/16 blackhole\n"
                                 "ip route 10.213.0.0/16 vx2\n"));
  }

  // Two links between this namespace and the announcer's; the announcer's bgpd (AS 65001, no zebra:
  // it installs nothing) announces every prefix over the first, and the ECMP one over both.
  void startBgp() {
    for (const std::string link : {"1", "2"}) {
      must("ip link add fr" + link + " type veth peer name fa" + link + " netns " + announcer);
      must("ip addr add 10.201." + link + ".2/30 dev fr" + link);
      must("ip -n " + announcer + " addr add 10.201." + link + ".1/30 dev fa" + link);
      must("ip link set fr" + link + " up");
      must("ip -n " + announcer + " link set fa" + link + " up");
    }
    std::ostringstream networks;
    networks << "  network " << ecmpPrefix << "\n";
    for (int i = 0; i < announced; ++i) networks << "  network " << announcedPrefix(i) << "\n";
    const std::string session = " timers bgp 1 3\n coalesce-time 10\n no bgp ebgp-requires-policy\n";
    announcing = std::make_unique<FrrRouter>(announcer, "announcer");
    ASSERT_TRUE(announcing->start("bgpd",
                                  "router bgp 65001\n bgp router-id 10.201.1.1\n" + session +
                                      " no bgp network import-check\n"
                                      " neighbor 10.201.1.2 remote-as 65002\n neighbor 10.201.1.2 timers connect 1\n"
                                      " neighbor 10.201.2.2 remote-as 65002\n neighbor 10.201.2.2 timers connect 1\n"
                                      " address-family ipv4 unicast\n" + networks.str() +
                                      "  neighbor 10.201.1.2 activate\n  neighbor 10.201.2.2 activate\n"
                                      "  neighbor 10.201.2.2 prefix-list ecmp-only out\n"
                                      " exit-address-family\n"
                                      "ip prefix-list ecmp-only seq 5 permit " + ecmpPrefix + "\n",
                                  {"--no_zebra"}));
    receiving = std::make_unique<FrrRouter>("", "receiver");
    ASSERT_TRUE(receiving->start("zebra", ""));
    ASSERT_TRUE(receiving->start("bgpd", "router bgp 65002\n bgp router-id 10.201.1.2\n" + session +
                                             " neighbor 10.201.1.1 remote-as 65001\n neighbor 10.201.1.1 timers connect 1\n"
                                             " neighbor 10.201.2.1 remote-as 65001\n neighbor 10.201.2.1 timers connect 1\n"
                                             " address-family ipv4 unicast\n  maximum-paths 2\n"
                                             "  neighbor 10.201.1.1 activate\n  neighbor 10.201.2.1 activate\n"
                                             " exit-address-family\n"));
  }

  // Whether the agent serves to `who` the rows that ip shows in `ns`; on the last try, why not.
  bool servesWhatIpShows(const Credentials& who, const std::string& ns, bool last = false) {
    const auto served = rowsOfAgent(*agent, who), shown = rowsOfIp(ns);
    if (last) ADD_FAILURE() << "the agent serves " << served.size() << " rows, ip shows " << shown.size() << "\n"
                            << differences(served, shown);
    return served == shown;
  }
  void expectServesWhatIpShows(const Credentials& who, const std::string& ns) {
    if (!eventually([&] { return servesWhatIpShows(who, ns); }, 30)) servesWhatIpShows(who, ns, true);
  }

  const std::string vrf = "frr" + std::to_string(::getpid());
  const std::string namespaceOfVrf = "ns-" + vrf;
  const std::string announcer = vrf + "a";
  std::vector<std::string> made;
  std::unique_ptr<FrrRouter> receiving, announcing, vrfRouter;
};

TEST_P(FrrRoutes, BgpAndStaticRoutesByNexthopObjectAreServedAsIpShowsThem) {
  // The VRF's routes are there before the agent starts, and reach it through the first dump; the BGP
  // routes come after, as events.
  ASSERT_NO_FATAL_FAILURE(startVrfRouter());
  agent = std::make_unique<AgentUnderTest>("", "", agentModeOfEnvironment(),
                                           std::vector<std::string>{"--source", "linux"});
  ASSERT_TRUE(agent->ready()) << agent->diagnostics();
  ASSERT_NO_FATAL_FAILURE(startBgp());
  auto isBgp = [](const std::string& row) { return row.ends_with(" " + std::to_string(ipRouteProtocolBgp)); };
  auto isEcmp = [](const std::string& row) { return row.starts_with(ecmpPrefix + " "); };
  ASSERT_TRUE(eventually([&] { return countOf(rowsOfIp(""), isBgp) == announced + 2; }, 60))
      << "zebra installs every prefix, the ECMP one with two next hops: " << countOf(rowsOfIp(""), isBgp);

  const Credentials defaultContext = Credentials::v2c("public"), vrfContext = Credentials::v3(vrf);
  expectServesWhatIpShows(defaultContext, "");
  const auto served = rowsOfAgent(*agent, defaultContext);
  EXPECT_EQ(countOf(served, isBgp), announced + 2u);
  EXPECT_EQ(countOf(served, isEcmp), 2u) << "one row per next hop of the ECMP prefix";
  EXPECT_EQ(agent->tools().getOne(defaultContext, ipCidrRouteNumber).value_or(Varbind{}).value,
            std::to_string(served.size()));

  expectServesWhatIpShows(vrfContext, namespaceOfVrf);
  const auto ofVrf = rowsOfAgent(*agent, vrfContext);
  EXPECT_EQ(countOf(ofVrf, [](const std::string& row) { return row.starts_with("10.211.0.0/16 "); }), 2u);
  EXPECT_EQ(countOf(ofVrf, [](const std::string& row) { return row.ends_with(" 3"); }), 4u)
      << "staticd's routes are netmgmt, the blackhole has no row";

  // The announcer withdraws a prefix: its row leaves within a second.
  const std::string row = ipCidrRouteIfIndex + ".10.128.5.0.255.255.255.0.0.10.201.1.1";
  ASSERT_EQ(agent->tools().getOne(defaultContext, row).value_or(Varbind{}).type, "INTEGER");
  const auto withdrawn = std::chrono::steady_clock::now();
  ASSERT_EQ(announcing->vtysh("bgpd", {"configure terminal", "router bgp 65001", "address-family ipv4 unicast",
                                       "no network " + withdrawnPrefix})
                .exitStatus,
            0);
  ASSERT_TRUE(eventually([&] { return agent->tools().getOne(defaultContext, row).value_or(Varbind{}).type == "noSuchInstance"; }, 10));
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - withdrawn).count();
  std::cout << withdrawnPrefix << " left ipCidrRouteTable " << seconds << " s after its withdrawal\n";
  EXPECT_LT(seconds, 1.0);
  expectServesWhatIpShows(defaultContext, "");
}

INSTANTIATE_TEST_SUITE_P(NexthopCompatMode, FrrRoutes, testing::Values(1, 0),
                         [](const testing::TestParamInfo<int>& mode) { return "mode" + std::to_string(mode.param); });

}  // namespace
}  // namespace IntegrationTest
