// The cost per varbind of a bulk walk of ipCidrRouteTable, through the agent library's own request
// processing (the GETBULK requests of snmpbulkwalk, max-repetitions 10, without UDP and BER). With the
// hint, every request finds its row with one ordered lookup, so the cost per varbind barely grows with
// the table; without it, every request scans from the first row, and a walk costs O(rows^2).
//
// Each iteration walks a window of the table's bulk walk, starting at an instance spread over all
// columns and rows, and wraps to the first instance at the end of the table; items are varbinds.
#include <benchmark/benchmark.h>

#include <memory>

#include "AgentRequests.h"
#include "MibTree.h"
#include "frontend/IpForward.h"
#include "frontend/IteratorHint.h"
#include "model/Mask.h"
#include "platform/snmp/ContextTeardown.h"

namespace {

using TableTest::Oid;

constexpr int maxRepetitions = 10;  // snmpbulkwalk's default
constexpr std::size_t windowVarbinds = 32000;
const Oid table = TableTest::oidOf("1.3.6.1.2.1.4.24.4");

// The `row`-th route: the host route 10.0.0.0 + row via 192.0.2.1.
Pelt::IpAddr destOf(std::size_t row) { return Pelt::IpAddr::fromHostOrder((10u << 24) + static_cast<U32>(row)); }

// The routes of one size, registered in the default context; rebuilt when another size is asked.
struct Routes {
  explicit Routes(std::size_t count) : rows(count) {
    const Pelt::IpAddr mask = IpSnmp::maskOfLength(32);
    const Pelt::IpAddr nextHop(192, 0, 2, 1);
    for (std::size_t row = 0; row < count; ++row)
      tree.ipForwardMib->newIpCidrRouteTable({destOf(row), mask, 0, nextHop}, 1, Routing::RouteMetric(1),
                                             Routing::RoutePreference(1), Routing::Fib::routeTypeStaticConfig);
    init_IpForward("");
  }
  ~Routes() { Snmp::unregisterHandlersOfThisLibrary(); }
  TableTest::MibTree tree;
  std::size_t rows;
};

std::unique_ptr<Routes> routes;

const Routes& routesOf(std::size_t rows) {
  if (!routes || routes->rows != rows) {
    routes.reset();
    routes = std::make_unique<Routes>(rows);
  }
  return *routes;
}

// The instance of `column` of the `row`-th route.
Oid instance(unsigned column, std::size_t row) {
  U8 dest[4];
  destOf(row).copyToBuffer(dest);
  Oid name = table;
  name.insert(name.end(), {1, column, dest[0], dest[1], dest[2], dest[3], 255, 255, 255, 255, 0, 192, 0, 2, 1});
  return name;
}

void walkWindows(benchmark::State& state, bool hints) {
  const std::size_t rows = static_cast<std::size_t>(state.range(0));
  routesOf(rows);
  iteratorHintsEnabledIs(hints);
  const TableTest::AgentRequests agent;
  std::size_t varbinds = 0;
  std::size_t window = 0;
  for (auto _ : state) {
    Oid position = instance(1 + window % 16, (window * 7919) % rows);
    ++window;
    std::size_t seen = 0;
    while (seen < windowVarbinds) {
      TableTest::Response response = agent.getBulk(position, maxRepetitions);
      bool wrapped = response.varbinds.empty();
      for (const TableTest::Varbind& v : response.varbinds) {
        if (!TableTest::isBelow(v.name, table)) {
          wrapped = true;
          break;
        }
        position = v.name;
        ++seen;
      }
      if (wrapped) position = table;
    }
    varbinds += seen;
  }
  iteratorHintsEnabledIs(true);
  state.SetItemsProcessed(static_cast<int64_t>(varbinds));
  state.counters["time_per_varbind"] =
      benchmark::Counter(static_cast<double>(varbinds), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void RouteTableBulkWalk(benchmark::State& state) { walkWindows(state, true); }
void RouteTableBulkWalkWithoutHint(benchmark::State& state) { walkWindows(state, false); }

}  // namespace

BENCHMARK(RouteTableBulkWalk)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(RouteTableBulkWalkWithoutHint)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(5);

int main(int argc, char** argv) {
  init_agent("ipsnmp-bench");
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  routes.reset();
  shutdown_agent();
  return 0;
}
