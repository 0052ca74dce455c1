// Reading the kernel's counter files: the IPv4 read by position, the IPv6 read by name, the
// freshness rule, and what each failure commits or keeps. The files are fixtures copied to the
// paths that PROC_NET_SNMP, PROC_NET_NETSTAT and PROC_NET_SNMP6 name for this whole process.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "platform/quor/Clock.h"
#include "platform/quor/Trace.h"
#include "stats/SwFwdStats.h"

namespace {

namespace fs = std::filesystem;
using Ip::SwFwdStatsData;

// A directory of its own for the counter files of this process, named in the environment before
// any test reads.
class ProcNetFiles : public testing::Environment {
 public:
  static inline std::string dir;
  void SetUp() override {
    char name[] = "/tmp/stats-tests-XXXXXX";
    ASSERT_NE(::mkdtemp(name), nullptr);
    dir = name;
    ::setenv("PROC_NET_SNMP", (dir + "/snmp").c_str(), 1);
    ::setenv("PROC_NET_NETSTAT", (dir + "/netstat").c_str(), 1);
    ::setenv("PROC_NET_SNMP6", (dir + "/snmp6").c_str(), 1);
  }
  void TearDown() override { fs::remove_all(dir); }
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
    Quor::coverageStream_ = &traces;
  }
  ~KernelRead() override {
    Quor::coverageStream_ = nullptr;
    Quor::nowSourceIs(nullptr);
    for (const char* file : {"snmp", "netstat", "snmp6"}) fs::remove(path(file));
  }

  static std::string path(const std::string& file) { return ProcNetFiles::dir + "/" + file; }
  // Puts the fixture in place of the counter file `file` ("snmp", "netstat" or "snmp6").
  static void install(const std::string& file, const std::string& fixture) {
    fs::copy_file(std::string(STATS_FIXTURES) + "/" + fixture, path(file), fs::copy_options::overwrite_existing);
  }
  void installIpv4(const std::string& snmp, const std::string& netstat) {
    install("snmp", snmp);
    install("netstat", netstat);
  }
  // Lets the held record go stale.
  static void later() { clockTime += 1.0; }
  int traced(const std::string& line) const {
    int count = 0;
    std::istringstream in(traces.str());
    for (std::string l; std::getline(in, l);) count += l == line;
    return count;
  }

  std::ostringstream traces;
  Quor::Ptr<Ip::SwFwdStats> ipv4 = Ip::swFwdStatsFactory(Ip::ipVersion4, Quor::Name("default"));
  Quor::Ptr<Ip::SwFwdStats> ipv6 = Ip::swFwdStatsFactory(Ip::ipVersion6, Quor::Name("default"));
};

class KnownHeader : public KernelRead, public testing::WithParamInterface<const char*> {};

TEST_P(KnownHeader, Ipv4ReadTakesColumnsByPosition) {
  installIpv4(GetParam(), "netstat-kernel");
  EXPECT_EQ(ipv4->inReceives(), 101u);
  EXPECT_EQ(ipv4->data(), record(ipv4Record));
  EXPECT_EQ(ipv4->lastUpdate(), 1000.0);
  EXPECT_EQ(ipv4->inOctets(), 0u) << "netstat's octet columns are not read";
  EXPECT_EQ(ipv4->outMcastOctets(), 0u);
  EXPECT_EQ(traces.str(), "") << "a good IPv4 read traces nothing";
}

// The kernel's layouts before and since OutTransmits, and a header whose length alone is right.
INSTANTIATE_TEST_SUITE_P(KernelLayouts, KnownHeader,
                         testing::Values("snmp-kernel-224", "snmp-kernel-237", "snmp-header-224-any-text"));

class UnknownHeader : public KernelRead, public testing::WithParamInterface<std::pair<const char*, int>> {};

TEST_P(UnknownHeader, Ipv4ReadRefusesTheFileAndTriesAgainNextCall) {
  installIpv4(GetParam().first, "netstat-kernel");
  EXPECT_EQ(ipv4->inReceives(), 0u);
  EXPECT_EQ(ipv4->fragCreates(), 0u);
  EXPECT_TRUE(!ipv4->data());
  EXPECT_EQ(ipv4->lastUpdate(), 0.0);
  EXPECT_EQ(traced("IpSwFwdStats/0 Header is " + std::to_string(GetParam().second)), 2);
}

INSTANTIATE_TEST_SUITE_P(OtherLengths, UnknownHeader,
                         testing::Values(std::pair{"snmp-header-223", 223}, std::pair{"snmp-header-225", 225},
                                         std::pair{"snmp-header-236", 236}, std::pair{"snmp-header-238", 238}));

TEST_F(KernelRead, Ipv4FailuresBeforeTheCommitKeepTheLastRecord) {
  installIpv4("snmp-kernel-237", "netstat-kernel");
  ipv4->doRead();
  const SwFwdStatsData first = ipv4->data();
  ASSERT_EQ(first, record(ipv4Record));

  later();
  install("snmp", "snmp-header-225");
  EXPECT_EQ(ipv4->inReceives(), 101u);
  EXPECT_EQ(traced("IpSwFwdStats/0 Header is 225"), 1);

  install("snmp", "snmp-kernel-237-later");
  fs::remove(path("netstat"));
  EXPECT_EQ(ipv4->inReceives(), 101u) << "the snmp values already parsed are dropped";
  EXPECT_EQ(traced("IpSwFwdStats/0 Failed to open " + path("netstat")), 1);

  fs::remove(path("snmp"));
  EXPECT_EQ(ipv4->inReceives(), 101u);
  EXPECT_EQ(traced("IpSwFwdStats/0 Failed to open " + path("snmp")), 1);
  EXPECT_EQ(ipv4->data(), first);
  EXPECT_EQ(ipv4->lastUpdate(), 1000.0);
}

class NoIpExtValues : public KernelRead, public testing::WithParamInterface<const char*> {};

TEST_P(NoIpExtValues, Ipv4ReadCommitsTheSnmpColumnsAndKeepsTheNetstatOnes) {
  installIpv4("snmp-kernel-237", "netstat-kernel");
  ipv4->doRead();
  later();
  installIpv4("snmp-kernel-237-later", GetParam());
  EXPECT_EQ(ipv4->inReceives(), 501u);
  EXPECT_EQ(ipv4->fragCreates(), 517u);
  EXPECT_EQ(ipv4->inNoRoutes(), 201u);
  EXPECT_EQ(ipv4->outBcastPkts(), 206u);
  EXPECT_EQ(ipv4->lastUpdate(), 1001.0);
  EXPECT_EQ(traces.str(), "");
}

// One IpExt line only, or a line beginning with a blank, which fails the scan before the values.
INSTANTIATE_TEST_SUITE_P(ScanEnds, NoIpExtValues,
                         testing::Values("netstat-one-ipext-line", "netstat-line-starts-with-blank"));

TEST_F(KernelRead, Ipv4ScanMatchesOnlyTheExactTag) {
  installIpv4("snmp-kernel-237", "netstat-lookalike-tags");
  ipv4->doRead();
  EXPECT_EQ(ipv4->data(), record(ipv4Record)) << "IpExtended:, IpExt:: and ipext: are not the tag";
}

TEST_F(KernelRead, Ipv4ValuesLineCutShortRepeatsItsLastNumber) {
  installIpv4("snmp-values-cut-short", "netstat-kernel");
  EXPECT_EQ(ipv4->forwDatagrams(), 104u);
  EXPECT_EQ(ipv4->inUnknownProtos(), 105u);
  EXPECT_EQ(ipv4->inDiscards(), 105u);
  EXPECT_EQ(ipv4->fragCreates(), 105u);
  EXPECT_EQ(ipv4->inNoRoutes(), 201u) << "netstat is still read";
  EXPECT_EQ(ipv4->lastUpdate(), 1000.0);
}

TEST_F(KernelRead, Ipv4ValueThatIsNotANumberCommitsWhatWasParsed) {
  installIpv4("snmp-value-not-a-number", "netstat-value-not-a-number");
  EXPECT_EQ(ipv4->forwDatagrams(), 104u);
  EXPECT_EQ(ipv4->inUnknownProtos(), 0u);
  EXPECT_EQ(ipv4->fragCreates(), 0u);
  EXPECT_EQ(ipv4->inTruncatedPkts(), 202u);
  EXPECT_EQ(ipv4->inMcastPkts(), 0u);
  EXPECT_EQ(ipv4->outBcastPkts(), 0u);
  EXPECT_EQ(ipv4->lastUpdate(), 1000.0);
}

TEST_F(KernelRead, Ipv4ReadOfAVrfWithoutNamespaceReadsWhereTheProcessIs) {
  const fs::path own = fs::read_symlink("/proc/self/ns/net");
  installIpv4("snmp-kernel-237", "netstat-kernel");
  Quor::Ptr<Ip::SwFwdStats> red = Ip::swFwdStatsFactory(Ip::ipVersion4, Quor::Name("red"));
  EXPECT_EQ(red->inReceives(), 101u) << "the outcome of the switch is not examined";
  EXPECT_NE(traces.str().find("ns-red"), std::string::npos) << "the namespace of VRF red is ns-red: " << traces.str();
  EXPECT_EQ(fs::read_symlink("/proc/self/ns/net"), own);
}

TEST_F(KernelRead, UnknownIpVersionReadsNothing) {
  installIpv4("snmp-kernel-237", "netstat-kernel");
  install("snmp6", "snmp6-kernel");
  Quor::Ptr<Ip::SwFwdStats> unknown = Ip::swFwdStatsFactory(Ip::ipVersionUnknown, Quor::Name("default"));
  EXPECT_EQ(unknown->inReceives(), 0u);
  EXPECT_EQ(unknown->lastUpdate(), 0.0);
  EXPECT_EQ(traces.str(), "");
}

TEST_F(KernelRead, Ipv6ReadFillsEveryNamedStat) {
  install("snmp6", "snmp6-kernel");
  EXPECT_EQ(ipv6->inReceives(), 301u);
  EXPECT_EQ(ipv6->data(), ipv6Record());
  EXPECT_EQ(ipv6->inBcastPkts(), 0u) << "no IPv6 stat leads to the broadcast counters";
  EXPECT_EQ(ipv6->lastUpdate(), 1000.0);
  EXPECT_EQ(traced("IpSwFwdStats/1 stat is Ip6InReceives, value is 301"), 1);
  EXPECT_EQ(traced("IpSwFwdStats/8 setting forwDatagrams (counter for stat string Ip6OutForwDatagrams) to 305"), 1);
  EXPECT_EQ(traced("IpSwFwdStats/8 no counter found for stat string Ip6InTooBigErrors"), 1);
  EXPECT_EQ(traced("IpSwFwdStats/8 no counter found for stat string "), 1) << "the pass at the end of the file";
}

TEST_F(KernelRead, Ipv6UnknownStatsAreSkipped) {
  install("snmp6", "snmp6-unknown-stats");
  EXPECT_EQ(ipv6->inReceives(), 6u);
  EXPECT_EQ(ipv6->inMcastOctets(), 0u);
  EXPECT_EQ(ipv6->inAddrErrors(), 0u);
  EXPECT_EQ(ipv6->outMcastOctets(), 0u);
  for (const char* stat : {"Ip6InFoo9", "Ip6InUnknownProtos20", "Ip6InBcastOctets", "Ip6OutTransmits", "Icmp6OutEchos"})
    EXPECT_EQ(traced(std::string("IpSwFwdStats/8 no counter found for stat string ") + stat), 1) << stat;
}

TEST_F(KernelRead, Ipv6NameWithoutBlankRunsIntoTheNextLine) {
  install("snmp6", "snmp6-kernel");
  ipv6->doRead();
  later();
  install("snmp6", "snmp6-name-without-blank");
  EXPECT_EQ(ipv6->outRequests(), 14u);
  EXPECT_EQ(ipv6->inReceives(), 301u) << "neither of the first two lines found its counter";
  EXPECT_EQ(ipv6->inDelivers(), 308u);
  EXPECT_EQ(traced("IpSwFwdStats/1 stat is Ip6InReceives\t12"), 1);
  EXPECT_EQ(traced("Ip6InDelivers, value is 13"), 1);
}

TEST_F(KernelRead, Ipv6BadValueEndsTheReadAfterItsLine) {
  install("snmp6", "snmp6-kernel");
  ipv6->doRead();
  later();
  install("snmp6", "snmp6-value-not-a-number");
  EXPECT_EQ(ipv6->inReceives(), 12u);
  EXPECT_EQ(ipv6->inDelivers(), 0u) << "the failed extraction is still written";
  EXPECT_EQ(ipv6->outRequests(), 309u) << "the line behind it is not read";
  EXPECT_EQ(ipv6->lastUpdate(), 1001.0);
}

TEST_F(KernelRead, Ipv6MissingFileKeepsTheLastRecord) {
  install("snmp6", "snmp6-kernel");
  ipv6->doRead();
  later();
  fs::remove(path("snmp6"));
  EXPECT_EQ(ipv6->inReceives(), 301u);
  EXPECT_EQ(ipv6->lastUpdate(), 1000.0);
  EXPECT_EQ(traced("IpSwFwdStats/0 Failed to open " + path("snmp6")), 1);
}

TEST_F(KernelRead, Ipv6ReadNeverSwitchesNamespace) {
  install("snmp6", "snmp6-kernel");
  Quor::Ptr<Ip::SwFwdStats> red = Ip::swFwdStatsFactory(Ip::ipVersion6, Quor::Name("red"));
  EXPECT_EQ(red->inReceives(), 301u);
  EXPECT_EQ(traces.str().find("network namespace"), std::string::npos);
}

TEST_F(KernelRead, RecordWithinHalfASecondIsNotReadAgain) {
  installIpv4("snmp-kernel-237", "netstat-kernel");
  EXPECT_EQ(ipv4->inReceives(), 101u);
  installIpv4("snmp-kernel-237-later", "netstat-kernel-later");
  clockTime = 1000.3;
  EXPECT_EQ(ipv4->inReceives(), 101u);
  EXPECT_EQ(ipv4->outBcastPkts(), 206u);
  clockTime = 1000.5;
  EXPECT_EQ(ipv4->fragReqds(), 115u + 116u) << "at exactly 0.5 seconds the record is still fresh";
  EXPECT_EQ(ipv4->lastUpdate(), 1000.0);
  clockTime = 1000.5001;
  EXPECT_EQ(ipv4->inReceives(), 501u);
  EXPECT_EQ(ipv4->outBcastPkts(), 606u);
  EXPECT_EQ(ipv4->lastUpdate(), 1000.5001);
}

TEST_F(KernelRead, FailedReadIsRetriedAtEveryCall) {
  EXPECT_EQ(ipv4->inReceives(), 0u);
  EXPECT_EQ(ipv4->inDelivers(), 0u);
  EXPECT_EQ(traced("IpSwFwdStats/0 Failed to open " + path("snmp")), 2);
  installIpv4("snmp-kernel-237", "netstat-kernel");
  EXPECT_EQ(ipv4->inReceives(), 101u) << "no back-off, not even at the same instant";
}

TEST_F(KernelRead, FilePathIsFixedForTheLifeOfTheProcess) {
  installIpv4("snmp-kernel-237", "netstat-kernel");
  EXPECT_EQ(ipv4->inReceives(), 101u);
  ::setenv("PROC_NET_SNMP", STATS_FIXTURES "/snmp-kernel-237-later", 1);
  later();
  EXPECT_EQ(ipv4->inReceives(), 101u);
  ::setenv("PROC_NET_SNMP", path("snmp").c_str(), 1);
}

}  // namespace
