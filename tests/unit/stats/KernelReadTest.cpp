// Reading the kernel's counter files: the IPv4 read by position, the IPv6 read by name through the
// perfect hash, the freshness rule, the last record kept through failures, and the counters computed
// from the record in unsigned arithmetic. The files are fixtures copied to the paths that
// PROC_NET_SNMP, PROC_NET_NETSTAT and PROC_NET_SNMP6 name for this whole process. (The read inside a
// VRF's namespace is the integration tests', against real namespaces.)
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "platform/quor/Clock.h"
#include "stats/SwFwdStats.h"
#include "tests/support/TestSupport.h"

namespace {

namespace fs = std::filesystem;
using Ip::SwFwdStatsData;

// A directory of its own for the counter files of this process, named in the environment before
// any test reads.
class ProcNetFiles : public testing::Environment {
 public:
  static inline std::unique_ptr<TestSupport::TempDir> dir;
  void SetUp() override {
    dir = std::make_unique<TestSupport::TempDir>();
    ::setenv("PROC_NET_SNMP", (*dir / "snmp").c_str(), 1);
    ::setenv("PROC_NET_NETSTAT", (*dir / "netstat").c_str(), 1);
    ::setenv("PROC_NET_SNMP6", (*dir / "snmp6").c_str(), 1);
  }
  void TearDown() override { dir.reset(); }
};
[[maybe_unused]] testing::Environment* const procNetFiles = testing::AddGlobalTestEnvironment(new ProcNetFiles);

double clockTime = 1000.0;
double testClock() { return clockTime; }

// The IPv4 record of the kernel fixtures: the 17 snmp columns 101 to 117 in the file's order, the
// first six IpExt columns 201 to 206. The octet columns of netstat (9001...) are not read.
const char* const ipv4Record =
    "Value('Ip::SwFwdStatsData', ** {'inReceives': 101, 'inHdrErrors': 102, 'inAddrErrors': 103, "
    "'forwDatagrams': 104, 'inUnknownProtos': 105, 'inDiscards': 106, 'inDelivers': 107, 'outRequests': 108, "
    "'outDiscards': 109, 'outNoRoutes': 110, 'reasmTimeout': 111, 'reasmReqds': 112, 'reasmOKs': 113, "
    "'reasmFails': 114, 'fragOKs': 115, 'fragFails': 116, 'fragCreates': 117, 'inNoRoutes': 201, "
    "'inTruncatedPkts': 202, 'inMcastPkts': 203, 'outMcastPkts': 204, 'inBcastPkts': 205, 'outBcastPkts': 206})";

SwFwdStatsData record(const char* text) { return Quor::strepToValue<SwFwdStatsData>(Quor::String8(text)); }

// The IPv6 record of the kernel fixture: the 25 named attributes 301 to 325 in their order.
SwFwdStatsData ipv6Record() {
  SwFwdStatsData data;
  U64 n = 300;
#define NUMBER(attr, Attr) data.attr##Is(++n);
  IP_SW_FWD_STATS_NAMED_IN_SNMP6(NUMBER)
#undef NUMBER
  return data;
}

class KernelRead : public testing::Test {
 protected:
  KernelRead() {
    clockTime = 1000.0;
    Quor::nowSourceIs(testClock);
  }
  ~KernelRead() override {
    Quor::nowSourceIs(nullptr);
    for (const char* file : {"snmp", "netstat", "snmp6"}) fs::remove(path(file));
  }

  static std::string path(const std::string& file) { return *ProcNetFiles::dir / file; }
  // Puts the fixture in place of the counter file `file` ("snmp", "netstat" or "snmp6").
  static void install(const std::string& file, const std::string& fixture) {
    fs::copy_file(std::string(STATS_FIXTURES) + "/" + fixture, path(file), fs::copy_options::overwrite_existing);
  }
  static void installIpv4(const std::string& snmp, const std::string& netstat) {
    install("snmp", snmp);
    install("netstat", netstat);
  }
  // Lets the held record go stale.
  static void later() { clockTime += 1.0; }
  // A fresh entity of `version` that has read the files as they are.
  static Quor::Ptr<Ip::SwFwdStats> read(Ip::IpVersion version) {
    Quor::Ptr<Ip::SwFwdStats> stats = Ip::swFwdStatsFactory(version, Quor::Name("default"));
    stats->doFreshen();
    return stats;
  }

  Quor::Ptr<Ip::SwFwdStats> ipv4 = Ip::swFwdStatsFactory(Ip::ipVersion4, Quor::Name("default"));
  Quor::Ptr<Ip::SwFwdStats> ipv6 = Ip::swFwdStatsFactory(Ip::ipVersion6, Quor::Name("default"));
};

// The kernel's layouts before and since OutTransmits and a header whose length alone is right are
// read; a header one column short or long of either is refused.
TEST_F(KernelRead, Ipv4ReadTakesColumnsByPositionInTheKnownLayoutsOnly) {
  const std::pair<const char*, bool> layouts[] = {
      {"snmp-kernel-224", true},  {"snmp-kernel-237", true},  {"snmp-header-224-any-text", true},
      {"snmp-header-223", false}, {"snmp-header-225", false}, {"snmp-header-236", false},
      {"snmp-header-238", false}};
  for (const auto& [snmp, known] : layouts) {
    installIpv4(snmp, "netstat-kernel");
    auto stats = read(Ip::ipVersion4);
    EXPECT_EQ(stats->data() == record(ipv4Record), known) << snmp;
    EXPECT_EQ(!stats->data(), !known) << snmp;
    EXPECT_EQ(stats->lastUpdate(), known ? 1000.0 : 0.0) << snmp;
  }
  installIpv4("snmp-kernel-237", "netstat-lookalike-tags");
  EXPECT_EQ(read(Ip::ipVersion4)->data(), record(ipv4Record)) << "netstat lines that only look like the IpExt tag";
}

TEST_F(KernelRead, FailuresBeforeTheCommitKeepTheLastRecordAndAreRetriedAtTheNextCall) {
  installIpv4("snmp-kernel-237", "netstat-kernel");
  install("snmp6", "snmp6-kernel");
  ipv4->doRead();
  ipv6->doRead();
  const SwFwdStatsData first = ipv4->data();
  ASSERT_EQ(first, record(ipv4Record));
  later();
  install("snmp", "snmp-header-225");
  EXPECT_EQ(ipv4->inReceives(), 101u) << "a header of another length";
  install("snmp", "snmp-kernel-237-later");
  fs::remove(path("netstat"));
  EXPECT_EQ(ipv4->inReceives(), 101u) << "the snmp values already parsed are dropped";
  fs::remove(path("snmp"));
  fs::remove(path("snmp6"));
  EXPECT_EQ(ipv4->inReceives(), 101u);
  EXPECT_EQ(ipv6->inReceives(), 301u);
  EXPECT_EQ(ipv4->data(), first);
  EXPECT_EQ(ipv4->lastUpdate(), 1000.0);
  EXPECT_EQ(ipv6->lastUpdate(), 1000.0);
  installIpv4("snmp-kernel-237-later", "netstat-kernel-later");
  EXPECT_EQ(ipv4->inReceives(), 501u) << "no back-off, not even at the same instant";
}

TEST_F(KernelRead, Ipv6ReadFillsEveryNamedStatAndNoOther) {
  install("snmp6", "snmp6-kernel");
  EXPECT_EQ(read(Ip::ipVersion6)->data(), ipv6Record()) << "each of the 65 other stats of the file is skipped";
  // Names of a keyword's length or hash, and of no keyword.
  install("snmp6", "snmp6-unknown-stats");
  SwFwdStatsData onlyInReceives;
  onlyInReceives.inReceivesIs(6);
  EXPECT_EQ(read(Ip::ipVersion6)->data(), onlyInReceives);
}

TEST_F(KernelRead, RecordWithinHalfASecondIsNotReadAgain) {
  installIpv4("snmp-kernel-237", "netstat-kernel");
  EXPECT_EQ(ipv4->inReceives(), 101u);
  installIpv4("snmp-kernel-237-later", "netstat-kernel-later");
  clockTime = 1000.5;
  EXPECT_EQ(ipv4->fragReqds(), 115u + 116u) << "at exactly 0.5 seconds the record is still fresh";
  EXPECT_EQ(ipv4->inForwDatagrams(), 201u + 104u);
  EXPECT_EQ(ipv4->outTransmits(), 0ull + 104 + 108 + 117 - 110 - 116 - 115 - 109) << "wraps instead of clamping";
  EXPECT_EQ(ipv4->lastUpdate(), 1000.0);
  clockTime = 1000.5001;
  EXPECT_EQ(ipv4->inReceives(), 501u);
  EXPECT_EQ(ipv4->outBcastPkts(), 606u);
  EXPECT_EQ(ipv4->lastUpdate(), 1000.5001);
}

}  // namespace
