// The route and ARP machines at the scale of a large switch, reading shared-memory table files as in
// use. Each case runs once and reports its figures as counters:
// - a million routes over 65536 FECs (a quarter of them with two vias), already in the tables when
//   the machine is made: the CPU of all passes per route, and the longest and 99th-percentile pass;
// - the same million written while the machine runs, 20000 routes per loop turn, notifications
//   delivered by the event loop between passes;
// - one FEC under 100000 routes, flapped 100 times: notifications, marks and rebuilds per flap;
// - 100000 ARP entries loaded by populate() when the machine learns its VRF id.
#include <benchmark/benchmark.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "agent/ArpTableSm.h"
#include "agent/IpRouteTableSm.h"
#include "platform/tarn/FecWriter.h"
#include "platform/tarn/RecordWriter.h"

namespace {

using namespace IpSnmp;

double threadCpuSeconds() {
  timespec t{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

constexpr U32 interfaces = 64;

Pelt::IntfId intfOf(U32 i) { return Pelt::IntfId("Ethernet" + std::to_string(i % interfaces + 1)); }

Tarn::Fib::Fec fecOf(U64 id, U32 vias, U32 variant = 0) {
  Tarn::Fib::Fec fec;
  fec.fecId = Tarn::Fib::FecId(id);
  for (U32 v = 0; v < vias; ++v)
    fec.viaAdd({Pelt::IpAddr::fromHostOrder(0x0a000000u + U32(id) * 4 + v + variant * 0x01000000u), intfOf(U32(id) + v)});
  return fec;
}

Tarn::Fib::Route routeOf(U32 i, U64 fecId) {
  Tarn::Fib::Route route;
  route.prefix = Pelt::Prefix(Pelt::IpAddr::fromHostOrder(0x0b000000u + (i << 8)), 24);
  route.metric = Routing::RouteMetric(i % 100);
  route.preference = Routing::RoutePreference(110);
  route.routeType = Routing::Fib::routeTypeOspfIntraArea;
  route.fecId = Tarn::Fib::FecId(fecId);
  return route;
}

// One VRF's route and forwarding table files, mounted, with the interfaces, the table the machine
// fills and a clock of the machine's own, so that a pass can be timed on its own.
struct RouteWorld {
  explicit RouteWorld(U32 maxRoutes, U32 maxFecs)
      : dir("/dev/shm/route-sm-bench-" + std::to_string(::getpid())),
        routeWriter(dir + "/route", maxRoutes),
        fecWriter(dir + "/fec", maxFecs, maxFecs / 4 + 64) {
    for (U32 i = 0; i < interfaces; ++i)
      intfStatusDir->intfStatusIs(Quor::makePtr<Interface::IntfStatus>(intfOf(i), Quor::Name("ethernet"), S32(i + 1)));
  }
  ~RouteWorld() {
    sm = nullptr;
    routes->unmount();
    fecs->unmount();
    std::filesystem::remove_all(dir);
  }
  void mount() {
    routes->mount(dir, Tarn::TableType::sharedMemory);
    fecs->mount(dir, Tarn::TableType::sharedMemory);
  }
  void start() { sm = Quor::makePtr<IpRouteTableSm>(IpRouteTableSm::Inputs{ipForwardMib, intfStatusDir, routes, fecs, clock}); }
  bool idle() const { return sm->quorClock()->timeMin() == Quor::never; }

  // Runs one pass and records its wall and CPU time.
  void pass() {
    const double wall = Quor::now(), cpu = threadCpuSeconds();
    clock->runDue();
    passWall.push_back(Quor::now() - wall);
    passCpu.push_back(threadCpuSeconds() - cpu);
  }
  // Delivers what the tables have notified; records the CPU of the intake.
  void deliver() {
    const double cpu = threadCpuSeconds();
    Quor::activityManager()->runOnce(0);
    intakeCpu += threadCpuSeconds() - cpu;
  }
  void passesStartAnew() {
    passWall.clear();
    passCpu.clear();
    intakeCpu = 0;
  }
  // Pass times in wall clock (what holds up the event loop, including time the thread was not
  // scheduled on a busy machine) and in the thread's CPU.
  void report(benchmark::State& state, double routeCount) const {
    state.counters["passes"] = double(passWall.size());
    state.counters["passCpuPerRouteUs"] = sum(passCpu) / routeCount * 1e6;
    state.counters["intakeCpuPerRouteUs"] = intakeCpu / routeCount * 1e6;
    state.counters["maxPassMs"] = quantile(passWall, 1.0) * 1e3;
    state.counters["p99PassMs"] = quantile(passWall, 0.99) * 1e3;
    state.counters["maxPassCpuMs"] = quantile(passCpu, 1.0) * 1e3;
    state.counters["p99PassCpuMs"] = quantile(passCpu, 0.99) * 1e3;
  }
  static double sum(const std::vector<double>& values) {
    double total = 0;
    for (double v : values) total += v;
    return total;
  }
  static double quantile(std::vector<double> values, double q) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, std::size_t(double(values.size()) * q))];
  }

  std::string dir;
  Tarn::RecordWriter<Tarn::Fib::RouteCodec> routeWriter;
  Tarn::Fib::FecWriter fecWriter;
  Quor::Ptr<Tarn::Fib::RouteStatus> routes = Quor::makePtr<Tarn::Fib::RouteStatus>(Quor::Name("routing/vrf/status/default"));
  Quor::Ptr<Tarn::Fib::ForwardingStatus> fecs =
      Quor::makePtr<Tarn::Fib::ForwardingStatus>(Quor::Name("forwarding/vrf/status/default"));
  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir = Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("all"));
  Quor::Ptr<IpForwardMib> ipForwardMib = Quor::makePtr<IpForwardMib>(Quor::Name("ipforwardmib"));
  Quor::Ptr<Quor::Clock> clock = Quor::makePtr<Quor::Clock>(Quor::Name("route clock"));
  Quor::Ptr<IpRouteTableSm> sm;
  std::vector<double> passWall;
  std::vector<double> passCpu;
  double intakeCpu = 0;
};

constexpr U32 million = 1000000;
constexpr U32 fecCount = 65536;

void writeFecs(RouteWorld& world) {
  for (U32 f = 0; f < fecCount; ++f) world.fecWriter.put(fecOf(f + 1, f % 4 == 0 ? 2 : 1));
  world.fecWriter.commit();
}

void BM_MillionRoutesPresentAtStart(benchmark::State& state) {
  for (auto _ : state) {
    RouteWorld world(million, fecCount);
    writeFecs(world);
    for (U32 i = 0; i < million; ++i) world.routeWriter.put(routeOf(i, i % fecCount + 1));
    world.routeWriter.commit();
    world.mount();

    const double cpu = threadCpuSeconds();
    world.start();
    state.counters["constructionS"] = threadCpuSeconds() - cpu;
    while (!world.idle()) world.pass();
    state.counters["rows"] = double(world.ipForwardMib->ipCidrRouteTables());
    world.report(state, million);
    if (std::getenv("ROUTE_SM_BENCH_EXIT_LOADED")) std::_Exit(0);  // heaptrack then reports what is held
  }
}
BENCHMARK(BM_MillionRoutesPresentAtStart)->Unit(benchmark::kSecond)->Iterations(1);

void BM_MillionRoutesWrittenWhileRunning(benchmark::State& state) {
  constexpr U32 perTurn = 20000;
  for (auto _ : state) {
    RouteWorld world(million, fecCount);
    writeFecs(world);
    world.mount();
    world.start();
    U32 written = 0;
    std::size_t expectedRows = 0;
    // Each turn: the writer commits a batch, the loop delivers, the clock runs the machine's pass;
    // until every row is there.
    for (int turn = 0; turn < 100000; ++turn) {
      for (U32 end = std::min(million, written + perTurn); written < end; ++written) {
        const U64 fecId = written % fecCount + 1;
        world.routeWriter.put(routeOf(written, fecId));
        expectedRows += (fecId - 1) % 4 == 0 ? 2 : 1;
      }
      world.routeWriter.commit();
      world.deliver();
      world.pass();
      if (written == million && world.idle() && world.ipForwardMib->ipCidrRouteTables() == expectedRows) break;
    }
    state.counters["rows"] = double(world.ipForwardMib->ipCidrRouteTables());
    state.counters["expectedRows"] = double(expectedRows);
    world.report(state, million);
  }
}
BENCHMARK(BM_MillionRoutesWrittenWhileRunning)->Unit(benchmark::kSecond)->Iterations(1);

// Counts the notifications of a table's FECs.
class FecNotifications : public Tarn::Fib::ForwardingStatus::NotifieeConst {
 public:
  void onFec(const Tarn::Fib::FecId&) override { ++count; }
  U64 count = 0;
};

// Counts the rows that the machine adds.
class RowsAdded : public IpForwardMib::NotifieeConst {
 public:
  void onIpCidrRouteTable(const IpCidrRouteTableIndex& key) override { count += notifier()->ipCidrRouteTable(key) != nullptr; }
  U64 count = 0;
};

void BM_OneFecUnder100kRoutesFlaps100Times(benchmark::State& state) {
  constexpr U32 routeCount = 100000;
  constexpr U32 flaps = 100;
  for (auto _ : state) {
    RouteWorld world(routeCount, 16);
    world.fecWriter.put(fecOf(1, 2));
    world.fecWriter.commit();
    for (U32 i = 0; i < routeCount; ++i) world.routeWriter.put(routeOf(i, 1));
    world.routeWriter.commit();
    world.mount();
    world.start();
    while (!world.idle()) world.pass();
    auto notifications = Quor::makePtr<FecNotifications>();
    notifications->notifierIs(world.fecs);
    auto rowsAdded = Quor::makePtr<RowsAdded>();
    rowsAdded->notifierIs(world.ipForwardMib);
    world.passesStartAnew();

    U64 marks = 0;
    for (U32 flap = 1; flap <= flaps; ++flap) {
      world.fecWriter.put(fecOf(1, 2, flap % 2));  // the next hops change and change back
      world.fecWriter.commit();
      for (int turn = 0; turn < 1000 && world.idle(); ++turn) world.deliver();
      for (int turn = 0; turn < 10; ++turn) world.deliver();  // any repeated notification of the key
      marks += world.sm->backlog().members();
      while (!world.idle()) world.pass();
    }
    state.counters["fecNotificationsPerFlap"] = double(notifications->count) / flaps;
    state.counters["marksPerPrefixPerFlap"] = double(marks) / flaps / routeCount;
    state.counters["rebuildsPerPrefixPerFlap"] = double(rowsAdded->count) / 2 / flaps / routeCount;
    state.counters["intakeCpuPerFlapMs"] = world.intakeCpu / flaps * 1e3;
    state.counters["passCpuPerFlapMs"] = RouteWorld::sum(world.passCpu) / flaps * 1e3;
    world.report(state, double(routeCount) * flaps);
    notifications->notifierIs(nullptr);
    rowsAdded->notifierIs(nullptr);
  }
}
BENCHMARK(BM_OneFecUnder100kRoutesFlaps100Times)->Unit(benchmark::kSecond)->Iterations(1);

void BM_Populate100kArpEntries(benchmark::State& state) {
  constexpr U32 entries = 100000;
  const std::string dir = "/dev/shm/arp-sm-bench-" + std::to_string(::getpid());
  std::filesystem::create_directories(dir);
  {
    Tarn::RecordWriter<Arp::Table::ArpCodec> writer(dir + "/arpEntry", 2 * entries);
    for (U32 i = 0; i < entries; ++i) {
      Arp::Table::ArpEntry entry;
      entry.vrfId = Vrf::VrfIdMap::VrfId(7);
      entry.intfId = Pelt::IntfId("Ethernet" + std::to_string(i % 1000 + 1));
      entry.addr = Pelt::IpAddr::fromHostOrder(0x0a000000u + i);
      entry.ethAddr = Pelt::EthAddr(0x001c, 0x7300, U16(i));
      writer.put(entry);
    }
    writer.commit();
  }
  auto arpTarn = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
  arpTarn->mount(dir, Tarn::TableType::sharedMemory);
  auto intfStatusDir = Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("all"));
  for (U32 i = 0; i < 1000; ++i)
    intfStatusDir->intfStatusIs(Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId("Ethernet" + std::to_string(i + 1)),
                                                                     Quor::Name("ethernet"), S32(i + 1)));
  double rows = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto ipMib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
    auto sm = Quor::makePtr<ArpTableSm>(ArpTableSm::Inputs{intfStatusDir, ipMib, arpTarn, Vrf::VrfIdMap::unknownVrfId});
    state.ResumeTiming();
    sm->arpTarnVrfIdIs(Vrf::VrfIdMap::VrfId(7));
    state.PauseTiming();
    rows = double(ipMib->arpTable().members());
    sm = nullptr;
    ipMib = nullptr;
    state.ResumeTiming();
  }
  state.counters["rows"] = rows;
  arpTarn->unmount();
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_Populate100kArpEntries)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
