// The cost of what a GETNEXT does to a MIB container: one ordered lookup of the successor of a key,
// and copies of keys, which share their bytes instead of copying them.
#include <benchmark/benchmark.h>

#include <map>

#include "bench/AllocationCounter.h"
#include "model/IpForwardMib.h"
#include "model/InetAddress.h"

namespace {

using IpSnmp::IpCidrRouteTableIndex;

IpCidrRouteTableIndex routeKey(U32 n) {
  return IpCidrRouteTableIndex(Pelt::IpAddr::fromHostOrder(0x0A000000u + (n << 8)), Pelt::IpAddr(255, 255, 255, 0), 0,
                               Pelt::IpAddr(192, 0, 2, 1));
}

// A route table of `rows` rows, built once per size.
const IpSnmp::IpForwardMib& routes(U32 rows) {
  static std::map<U32, Quor::Ptr<IpSnmp::IpForwardMib>> built;
  auto& mib = built[rows];
  if (!mib) {
    mib = Quor::makePtr<IpSnmp::IpForwardMib>(Quor::Name("ipforwardmib"));
    for (U32 n = 0; n < rows; ++n)
      mib->newIpCidrRouteTable(routeKey(n), 1, Routing::RouteMetric(0), Routing::RoutePreference(0),
                               Routing::Fib::RouteType(8));
  }
  return *mib;
}

// The successor of a key, as the frame finds it for each GETNEXT, with the iterator the loop context holds.
void FindNextRoute(benchmark::State& state) {
  const U32 rows = static_cast<U32>(state.range(0));
  const auto& mib = routes(rows);
  U32 n = 0;
  const U64 before = allocationsSoFar();
  for (auto _ : state) {
    auto it = mib.ipCidrRouteTable().findNext(routeKey(n));
    benchmark::DoNotOptimize(it.ptr());
    n = (n + 7919) % rows;
  }
  state.counters["allocationsPerLookup"] = double(allocationsSoFar() - before) / double(state.iterations());
}
BENCHMARK(FindNextRoute)->Arg(1000)->Arg(1000000);

// A copy of an address key: one reference more on its shared bytes.
void CopyAddressKey(benchmark::State& state) {
  const IpSnmp::InetAddress key = IpSnmp::inetAddress(Pelt::Ip6Addr(0x20010db8u, 0, 0, 1));
  const U64 before = allocationsSoFar();
  for (auto _ : state) {
    IpSnmp::InetAddress copy = key;
    benchmark::DoNotOptimize(copy.bytes.buffer());
  }
  state.counters["allocationsPerCopy"] = double(allocationsSoFar() - before) / double(state.iterations());
}
BENCHMARK(CopyAddressKey);

}  // namespace
