#include "tests/unit/linux/KernelFixture.h"

#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "platform/tarn/Mount.h"
#include "platform/tarn/TableReader.h"

namespace LinuxTest {

namespace fs = std::filesystem;

bool ownNetworkNamespace() {
  static const bool own = ::geteuid() == 0 && ::unshare(CLONE_NEWNET) == 0;
  return own;
}

std::string sh(const std::string& command, bool* ok) {
  std::string out;
  FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  for (char buf[4096]; pipe && std::fgets(buf, sizeof buf, pipe);) out += buf;
  int status = pipe ? ::pclose(pipe) : -1;
  if (ok) *ok = status == 0;
  return out;
}

void must(const std::string& command) {
  bool ok = false;
  std::string out = sh(command, &ok);
  ASSERT_TRUE(ok) << command << ": " << out;
}

std::vector<std::string> lines(const std::string& command) {
  std::vector<std::string> all;
  std::istringstream in(sh(command));
  for (std::string line; std::getline(in, line);)
    if (!line.empty()) all.push_back(line);
  return all;
}

namespace {

template <class Record, class Visit>
void forEachRecord(const fs::path& file, std::string_view type, U32 keySize, Visit visit) {
  auto reader = Tarn::TableReader::open(file.string(), type, keySize, sizeof(Record));
  if (!reader) return;
  Record record;
  for (U32 slot = reader->nextOccupied(0, &record); slot < reader->capacity();
       slot = reader->nextOccupied(slot + 1, &record))
    visit(record);
}

}  // namespace

template <class Codec>
std::map<typename Codec::Key, typename Codec::Value> readRouteFile(const fs::path& file) {
  std::map<typename Codec::Key, typename Codec::Value> routes;
  forEachRecord<typename Codec::Record>(file, Codec::type, Codec::keySize, [&](const typename Codec::Record& r) {
    const typename Codec::Value route = Codec::decode(r);
    routes[route.prefix] = route;
  });
  return routes;
}

template <class Codec>
std::map<U64, typename Codec::Value> readFecFile(const fs::path& file) {
  Codec codec(file.string());
  std::map<U64, typename Codec::Value> fecs;
  forEachRecord<typename Codec::Record>(file, Codec::type, Codec::keySize, [&](const typename Codec::Record& r) {
    typename Codec::Value fec = Codec::decode(r);
    EXPECT_TRUE(codec.complete(r, &fec)) << "FEC " << r.fecId << " has all its chunks";
    fecs[r.fecId] = fec;
  });
  return fecs;
}

std::map<Pelt::Prefix, Tarn::Fib::Route> readRoutes(const fs::path& root, const std::string& vrf) {
  return readRouteFile<Tarn::Fib::RouteCodec>(root / Tarn::Fib::routePathOf(L3::VrfName(vrf)) / "route");
}

std::map<U64, Tarn::Fib::Fec> readFecs(const fs::path& root, const std::string& vrf) {
  return readFecFile<Tarn::Fib::FecCodec>(root / Tarn::Fib::forwardingPathOf(L3::VrfName(vrf)) / "fec");
}

std::map<Pelt::Ip6AddrWithMask, Tarn::Fib::Route6> readRoutes6(const fs::path& root, const std::string& vrf) {
  return readRouteFile<Tarn::Fib::Route6Codec>(root / Tarn::Fib::route6PathOf(L3::VrfName(vrf)) / "route");
}

std::map<U64, Tarn::Fib::Fec6> readFecs6(const fs::path& root, const std::string& vrf) {
  return readFecFile<Tarn::Fib::Fec6Codec>(root / Tarn::Fib::forwarding6PathOf(L3::VrfName(vrf)) / "fec");
}

std::vector<Arp::Table::ArpEntry> readArp(const fs::path& root) {
  using Codec = Arp::Table::ArpCodec;
  std::vector<Arp::Table::ArpEntry> entries;
  forEachRecord<Codec::Record>(root / Arp::Table::statusPath / "arpEntry", Codec::type, Codec::keySize,
                               [&](const Codec::Record& r) { entries.push_back(Codec::decode(r)); });
  return entries;
}

std::map<std::string, U32> readVrfIds(const fs::path& root) {
  using Codec = Vrf::VrfIdMap::VrfEntryCodec;
  std::map<std::string, U32> ids;
  forEachRecord<Codec::Record>(root / Vrf::VrfIdMap::statusPath / "vrfEntry", Codec::type, Codec::keySize,
                               [&](const Codec::Record& r) {
                                 Vrf::VrfIdMap::VrfEntry entry = Codec::decode(r);
                                 ids[entry.vrfName().stringValue().str()] = entry.vrfId().value();
                               });
  return ids;
}

void KernelTest::SetUp() {
  if (!ownNetworkNamespace()) GTEST_SKIP() << "needs root to make network namespaces";
  tableRoot = fs::temp_directory_path() / ("linux-tables-" + std::to_string(::getpid()) + "-" +
                                           testing::UnitTest::GetInstance()->current_test_info()->name());
  fs::remove_all(tableRoot);
  fs::create_directories(tableRoot);
  ::setenv("TARN_ROOT", tableRoot.c_str(), 1);
  must("ip link set lo up");
}

void KernelTest::TearDown() {
  for (const std::string& tag : made) sh("ip netns del " + netns(tag));
  made.clear();
  if (!tableRoot.empty()) fs::remove_all(tableRoot);
}

std::string KernelTest::vrf(const std::string& tag) const { return "lt" + std::to_string(::getpid()) + tag; }

void KernelTest::makeVrf(const std::string& tag) {
  must("ip netns add " + netns(tag));
  made.push_back(tag);
  must("ip -n " + netns(tag) + " link set lo up");
}

void KernelTest::deleteVrf(const std::string& tag) {
  must("ip netns del " + netns(tag));
  std::erase(made, tag);
}

}  // namespace LinuxTest
