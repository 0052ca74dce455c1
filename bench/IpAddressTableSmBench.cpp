// The address machine at the scale of a large switch: N interfaces, each with one IPv4 and one IPv6
// address, both configured and in effect (four occurrences per interface). Measures the first pass
// of a new machine, a flap of every interface's status (gone, then back as a new status object),
// and the teardown that removes every occurrence. Each should grow linearly with N.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "agent/IpAddressTableSm.h"

namespace {

using namespace IpSnmp;

struct Store {
  explicit Store(int interfaces) {
    for (int i = 0; i < interfaces; ++i) {
      const Pelt::IntfId id("Ethernet" + std::to_string(i + 1));
      ids.push_back(id);
      const Pelt::IpAddrWithMask v4(Pelt::IpAddr(10, U8(i >> 16), U8(i >> 8), U8(i)), 32);
      const Ip6::AddressInfo v6(Pelt::Ip6AddrWithMask(Pelt::Ip6Addr(0x20010db8, U32(i), 0, 1), 64));

      auto l3Config = Quor::makePtr<L3::Intf::Config>(id.stringValue());
      l3Config->vrfIs("default");
      auto ipConfig = Quor::makePtr<Ip::IpIntfConfig>(id);
      ipConfig->addrWithMaskIs(v4);
      ipConfig->l3ConfigIs(l3Config);
      config->ipIntfConfigIs(ipConfig);

      auto l3Status = Quor::makePtr<L3::Intf::Status>(id.stringValue());
      l3Status->vrfIs("default");
      auto ipStatus = Quor::makePtr<Ip::IpIntfStatus>(id, l3Status);
      ipStatus->activeAddrWithMaskIs(v4);
      status->ipIntfStatusIs(ipStatus);

      auto ip6Config = Quor::makePtr<Ip6::IntfConfig>(id);
      ip6Config->addrIs(v6);
      config6->intfIs(ip6Config);
      auto ip6Status = Quor::makePtr<Ip6::IntfStatus>(id);
      ip6Status->addrIs(v6);
      status6->intfIs(ip6Status);

      intfUp(i);
    }
  }
  void intfUp(int i) {
    intfStatusDir->intfStatusIs(Quor::makePtr<Interface::IntfStatus>(ids[i], Quor::Name("ethernet"), i + 1));
  }
  Quor::Ptr<IpAddressTableSm> machine(const Quor::Ptr<IpMib>& ipMib) const {
    return Quor::makePtr<IpAddressTableSm>(IpAddressTableSm::Inputs{intfStatusDir, ipMib, config, status, config6, status6});
  }

  std::vector<Pelt::IntfId> ids;
  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir = Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("all"));
  Quor::Ptr<Ip::Config> config = Quor::makePtr<Ip::Config>(Quor::Name("config"));
  Quor::Ptr<Ip::Status> status = Quor::makePtr<Ip::Status>(Quor::Name("status"));
  Quor::Ptr<Ip6::Config> config6 = Quor::makePtr<Ip6::Config>(Quor::Name("config6"));
  Quor::Ptr<Ip6::Status> status6 = Quor::makePtr<Ip6::Status>(Quor::Name("status6"));
};

Quor::Ptr<IpMib> newIpMib() { return Quor::makePtr<IpMib>(Quor::Name("ipmib")); }

bool allRows(benchmark::State& state, const IpMib& mib) {
  const std::size_t expected = 2 * static_cast<std::size_t>(state.range(0));
  if (mib.ipAddressTable().members() == expected) return true;
  state.SkipWithError("the tables do not hold every address");
  return false;
}

void BM_FirstPass(benchmark::State& state) {
  const Store store(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    auto ipMib = newIpMib();
    state.ResumeTiming();
    auto sm = store.machine(ipMib);
    state.PauseTiming();
    if (!allRows(state, *ipMib)) break;
    sm = nullptr;
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
}

void BM_IntfStatusFlap(benchmark::State& state) {
  Store store(static_cast<int>(state.range(0)));
  auto ipMib = newIpMib();
  auto sm = store.machine(ipMib);
  for (auto _ : state) {
    for (const Pelt::IntfId& id : store.ids) store.intfStatusDir->intfStatusDel(id);
    for (int i = 0; i < state.range(0); ++i) store.intfUp(i);
  }
  allRows(state, *ipMib);
  state.SetComplexityN(state.range(0));
}

void BM_Teardown(benchmark::State& state) {
  const Store store(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    auto ipMib = newIpMib();
    auto sm = store.machine(ipMib);
    state.ResumeTiming();
    sm = nullptr;
    state.PauseTiming();
    if (ipMib->ipAddressTable().members() != 0) state.SkipWithError("rows left behind");
    ipMib = nullptr;
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
}

BENCHMARK(BM_FirstPass)->Arg(2500)->Arg(5000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(BM_IntfStatusFlap)->Arg(2500)->Arg(5000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(BM_Teardown)->Arg(2500)->Arg(5000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace
