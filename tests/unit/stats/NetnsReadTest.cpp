// The IPv4 read of a VRF inside the VRF's network namespace, against a real namespace that the test
// makes (and removes) with ip(8). Skipped where namespaces cannot be made.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "stats/SwFwdStats.h"

namespace {

namespace fs = std::filesystem;

bool run(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

// InReceives and OutRequests of the "Ip:" values line of a /proc/net/snmp text.
std::pair<U64, U64> ipCounters(std::istream& snmp) {
  std::string header, tag;
  std::getline(snmp, header);
  U64 forwarding = 0, ttl = 0, inReceives = 0, skip = 0, outRequests = 0;
  snmp >> tag >> forwarding >> ttl >> inReceives;
  for (int column = 0; column < 5; ++column) snmp >> skip;
  snmp >> outRequests;
  return {inReceives, outRequests};
}

std::pair<U64, U64> ipCountersOfNamespace(const std::string& ns) {
  std::string text;
  FILE* pipe = ::popen(("ip netns exec " + ns + " cat /proc/net/snmp").c_str(), "r");
  for (char buf[512]; pipe && std::fgets(buf, sizeof buf, pipe);) text += buf;
  if (pipe) ::pclose(pipe);
  std::istringstream in(text);
  return ipCounters(in);
}

class VrfNamespace : public testing::Test {
 protected:
  void SetUp() override {
    if (::geteuid() != 0 || !run("ip netns add " + ns())) GTEST_SKIP() << "cannot make a network namespace here";
    made = true;
    // Some loopback traffic, so the namespace's counters are not those of a fresh one alone.
    ASSERT_TRUE(run("ip -n " + ns() + " link set lo up"));
    run("ip netns exec " + ns() + " bash -c 'for i in 1 2 3 4 5; do echo x >/dev/udp/127.0.0.1/9; done'");
  }
  void TearDown() override {
    if (made) run("ip netns del " + ns());
  }
  std::string ns() const { return "ns-" + vrf; }

  const std::string vrf = "statstest" + std::to_string(::getpid());
  bool made = false;
};

TEST_F(VrfNamespace, Ipv4ReadSeesTheVrfsCountersAndReturnsHome) {
  const fs::path own = fs::read_symlink("/proc/self/ns/net");
  const auto [nsReceives, nsRequests] = ipCountersOfNamespace(ns());
  ASSERT_GT(nsReceives, 0u);
  std::ifstream ownSnmp("/proc/net/snmp");
  const U64 ownReceives = ipCounters(ownSnmp).first;
  ASSERT_NE(ownReceives, nsReceives) << "the two namespaces must be told apart";

  Quor::Ptr<Ip::SwFwdStats> stats = Ip::swFwdStatsFactory(Ip::ipVersion4, Quor::Name(vrf));
  EXPECT_EQ(stats->inReceives(), nsReceives);
  EXPECT_EQ(stats->outRequests(), nsRequests);
  EXPECT_EQ(fs::read_symlink("/proc/self/ns/net"), own) << "the read leaves the namespace again";

  Quor::Ptr<Ip::SwFwdStats> home = Ip::swFwdStatsFactory(Ip::ipVersion4, Quor::Name("default"));
  EXPECT_GE(home->inReceives(), ownReceives);
  EXPECT_NE(home->inReceives(), nsReceives);
}

}  // namespace
