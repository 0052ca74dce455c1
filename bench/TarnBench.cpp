// Costs of the shared-memory tables with records the size of a route: a reader's lookup, a writer
// loading a million records, and the time from a writer's commit of 10k changes until the last key
// reaches the reader's receiver through the event loop. Then the forwarding table: writing and
// reading FECs of 4 vias (one record) and of 128 (a record and 8 chunks), with the shared memory
// that each takes.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <vector>

#include "bench/AllocationCounter.h"
#include "platform/quor/Clock.h"
#include "platform/tarn/FecWriter.h"
#include "platform/tarn/ForwardingStatus.h"
#include "platform/tarn/TableFollower.h"
#include "platform/tarn/TableWriter.h"


namespace {

// The layout of a route record: prefix (address, length), metric, preference, type, FEC id.
struct RouteShaped {
  U32 addr = 0;
  U8 len = 0;
  U8 pad[3] = {};
  U32 metric = 0;
  U8 preference = 0;
  U8 type = 0;
  U16 pad2 = 0;
  U64 fecId = 0;
};
static_assert(sizeof(RouteShaped) == 24);
constexpr const char* routeType = "Bench::RouteShaped";
constexpr U32 million = 1000000;

std::string benchPath(const char* name) {
  return "/dev/shm/tarn-bench-" + std::to_string(::getpid()) + "/" + name;
}

RouteShaped route(U32 i, U32 metric = 1) {
  RouteShaped r;
  r.addr = 0x0a000000u + i;
  r.len = 32;
  r.metric = metric;
  r.fecId = i % 1000;
  return r;
}

Tarn::TableGeometry routeGeometry() { return Tarn::TableGeometry::forRecords(8, sizeof(RouteShaped), million); }

void BM_WriteMillionRoutes(benchmark::State& state) {
  std::string path = benchPath("write");
  for (auto _ : state) {
    Tarn::TableWriter w(path, routeType, routeGeometry(), 0, true);
    for (U32 i = 0; i < million; ++i) {
      RouteShaped r = route(i);
      w.put(&r);
      if (i % 10000 == 9999) w.commit();
    }
    w.commit();
  }
  Tarn::TableGeometry g = routeGeometry();
  state.counters["fileBytesPerRoute"] = double(g.fileSize()) / million;
  state.counters["slotBytes"] = g.slotSize();
  std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}
BENCHMARK(BM_WriteMillionRoutes)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LookupInMillionRoutes(benchmark::State& state) {
  std::string path = benchPath("lookup");
  Tarn::TableWriter w(path, routeType, routeGeometry(), 0, true);
  for (U32 i = 0; i < million; ++i) {
    RouteShaped r = route(i);
    w.put(&r);
  }
  w.commit();
  auto reader = Tarn::TableReader::open(path, routeType, 8, sizeof(RouteShaped));
  std::vector<RouteShaped> keys;
  std::mt19937 random(1);
  for (int i = 0; i < 4096; ++i) keys.push_back(route(random() % million));
  RouteShaped out;
  std::size_t i = 0;
  U64 before = allocationsSoFar();
  for (auto _ : state) {
    bool found = reader->lookup(&keys[i++ & 4095], &out);
    benchmark::DoNotOptimize(found);
    benchmark::DoNotOptimize(out);
  }
  state.counters["allocationsPerLookup"] = double(allocationsSoFar() - before) / double(state.iterations());
  std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}
BENCHMARK(BM_LookupInMillionRoutes);

// Counts keys delivered to it.
class CountingClient : public Tarn::TableFollower::Client {
 public:
  void keyChanged(const std::byte*) override { ++told; }
  void attachedIs(bool) override {}
  void corruptionDetected(const std::string&) override {}
  U64 told = 0;
};

void BM_NotifyBatchOf10k(benchmark::State& state) {
  std::string path = benchPath("notify");
  Tarn::TableWriter w(path, routeType, routeGeometry(), 0, true);
  for (U32 i = 0; i < million; ++i) {
    RouteShaped r = route(i);
    w.put(&r);
  }
  w.commit();
  CountingClient client;
  auto follower = Quor::makePtr<Tarn::TableFollower>(path, routeType, 8, sizeof(RouteShaped));
  follower->attach(&client);
  U32 metric = 1;
  U64 turns = 0;
  for (auto _ : state) {
    ++metric;
    client.told = 0;
    for (U32 i = 0; i < 10000; ++i) {
      RouteShaped r = route(i * 97 % million, metric);
      w.put(&r);
    }
    w.commit();
    while (client.told < 10000) {
      Quor::activityManager()->runOnce(1);
      ++turns;
    }
  }
  state.counters["loopTurnsPerBatch"] = double(turns) / double(state.iterations());
  follower->detach(false);
  std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}
BENCHMARK(BM_NotifyBatchOf10k)->Unit(benchmark::kMillisecond)->Iterations(20);

Tarn::Fib::Fec benchFec(U64 id, U32 vias, U32 write) {
  Tarn::Fib::Fec fec;
  fec.fecId = Tarn::Fib::FecId(id);
  static const Pelt::IntfId intf("Ethernet49/1");
  for (U32 i = 0; i < vias; ++i) fec.viaAdd({Pelt::IpAddr::fromHostOrder(0x0a000000u + write * 256 + i), intf});
  return fec;
}

constexpr U32 benchFecs = 16384;

// Rewrites FECs of state.range(0) vias in a full table, one commit per 64.
void BM_WriteFecs(benchmark::State& state) {
  const U32 vias = static_cast<U32>(state.range(0));
  const U32 fecs = vias > Tarn::Fib::inlineVias ? 1024 : benchFecs;
  const U32 chunks = fecs * Tarn::Fib::chunksFor(vias) + 64;
  std::string path = benchPath("fec");
  Tarn::Fib::FecWriter w(path, fecs, chunks);
  U32 write = 0;
  for (auto _ : state) {
    w.put(benchFec(write % fecs, vias, write));
    if (++write % 64 == 0) w.commit();
  }
  w.commit();
  // Shared memory per FEC: its share of the FEC file and of the chunk file, at the table's full size.
  Tarn::TableGeometry fecFile = Tarn::Fib::fecGeometry(fecs), chunkFile = Tarn::Fib::fecChunkGeometry(chunks);
  state.counters["fecRecordBytes"] = sizeof(Tarn::Fib::FecRecord);
  state.counters["bytesPerFec"] = double(fecFile.fileSize() + (vias > Tarn::Fib::inlineVias ? chunkFile.fileSize() : 0)) / fecs;
  std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}
BENCHMARK(BM_WriteFecs)->Arg(4)->Arg(128);

// Looks FECs of state.range(0) vias up through the forwarding table's view.
void BM_LookupFec(benchmark::State& state) {
  const U32 vias = static_cast<U32>(state.range(0));
  std::string dir = benchPath("fecview");
  {
    Tarn::Fib::FecWriter w(dir + "/fec", 1024, 1024 * 8 + 64);
    for (U32 i = 0; i < 1024; ++i) w.put(benchFec(i, vias, i));
  }
  auto status = Quor::makePtr<Tarn::Fib::ForwardingStatus>(Quor::Name("forwarding/status"));
  status->mount(dir, Tarn::TableType::sharedMemory);
  U64 i = 0, viasRead = 0;
  U64 before = allocationsSoFar();
  for (auto _ : state) {
    auto fec = status->fec().lookup(Tarn::Fib::FecId(i++ & 1023));
    viasRead += fec.value().viaCount;
    benchmark::DoNotOptimize(fec);
  }
  state.counters["viasPerLookup"] = double(viasRead) / double(state.iterations());
  state.counters["allocationsPerLookup"] = double(allocationsSoFar() - before) / double(state.iterations());
  status->unmount();
  std::filesystem::remove_all(std::filesystem::path(dir).parent_path());
}
BENCHMARK(BM_LookupFec)->Arg(4)->Arg(128);

}  // namespace

BENCHMARK_MAIN();
