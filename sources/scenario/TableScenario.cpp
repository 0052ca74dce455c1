#include "sources/scenario/TableScenario.h"

namespace Sources {

namespace {

U64 stepOf(U8 len) { return U64(1) << (32 - len); }

// Routes of one length lie on the lattice of its block size; the offset from it is part of the group.
U64 routeGroup(const Pelt::Prefix& prefix) {
  return U64(prefix.len()) << 32 | prefix.addr().hostOrder() % stepOf(prefix.len());
}

U64 high64(const Pelt::Ip6Addr& addr) {
  U64 value = 0;
  for (unsigned i = 0; i < 8; ++i) value = value << 8 | addr.bytes()[i];
  return value;
}

}  // namespace

U64 addrLow(const Pelt::IpGenAddr& addr) {
  if (addr.version() != Ip::ipVersion6) return addr.v4Addr().hostOrder();
  U64 value = 0;
  for (unsigned i = 8; i < 16; ++i) value = value << 8 | addr.v6Addr().bytes()[i];
  return value;
}

Pelt::IpGenAddr addrPlus(const Pelt::IpGenAddr& addr, U64 n) {
  if (addr.version() != Ip::ipVersion6)
    return Pelt::IpAddr::fromHostOrder(static_cast<U32>(addr.v4Addr().hostOrder() + n));
  std::array<U8, 16> bytes = addr.v6Addr().bytes();
  U64 low = addrLow(addr) + n;
  for (unsigned i = 16; i-- > 8; low >>= 8) bytes[i] = static_cast<U8>(low);
  return Pelt::Ip6Addr::fromBytes(bytes.data());
}

U64 macValue(const Pelt::EthAddr& mac) { return U64(mac.word(0)) << 32 | U64(mac.word(1)) << 16 | mac.word(2); }

Pelt::EthAddr macPlus(const Pelt::EthAddr& mac, U64 n) {
  U64 value = macValue(mac) + n;
  return Pelt::EthAddr(static_cast<U16>(value >> 32), static_cast<U16>(value >> 16), static_cast<U16>(value));
}

Tarn::Fib::Route routeOf(const RouteRun& run, U64 i) {
  Tarn::Fib::Route route;
  const U8 len = run.first.len();
  route.prefix = Pelt::Prefix(Pelt::IpAddr::fromHostOrder(static_cast<U32>(run.first.addr().hostOrder() + i * stepOf(len))), len);
  route.metric = run.metric;
  route.preference = run.preference;
  route.routeType = run.type;
  route.fecId = run.fecs[i % run.fecs.size()];
  return route;
}

void fecOf(const FecRun& run, U64 i, Tarn::Fib::Fec* fec) {
  *fec = Tarn::Fib::Fec();
  fec->fecId = Tarn::Fib::FecId(run.first + i);
  for (Tarn::Fib::Via via : run.vias) {
    if (!via.hop.isZero()) via.hop = Pelt::IpAddr::fromHostOrder(static_cast<U32>(via.hop.hostOrder() + i));
    fec->viaAdd(via);
  }
}

Arp::Table::ArpEntry arpEntryOf(const ArpRun& run, U64 i) {
  return Arp::Table::ArpEntry{run.vrfId, run.intfId, addrPlus(run.first, i), macPlus(run.mac, i), run.isStatic};
}

FibIndex::FibIndex(const FibScenario& fib) : fib_(fib) {
  for (std::size_t i = 0; i < fib.routes.size(); ++i) {
    const Pelt::Prefix& first = fib.routes[i].first;
    routes_.add(routeGroup(first), first.addr().hostOrder(), stepOf(first.len()), fib.routes[i].count, i);
  }
  for (std::size_t i = 0; i < fib.fecs.size(); ++i) fecs_.add(0, fib.fecs[i].first, 1, fib.fecs[i].count, i);
  routeOverlap_ = routes_.seal();
  fecOverlap_ = fecs_.seal();
}

std::optional<Tarn::Fib::Route> FibIndex::route(const Pelt::Prefix& prefix) const {
  auto found = routes_.find(routeGroup(prefix), prefix.addr().hostOrder());
  if (!found) return std::nullopt;
  return routeOf(fib_.routes[found->first], found->second);
}

bool FibIndex::fec(Tarn::Fib::FecId id, Tarn::Fib::Fec* fec) const {
  auto found = fecs_.find(0, id.value());
  if (found) fecOf(fib_.fecs[found->first], found->second, fec);
  return found.has_value();
}

ArpIndex::ArpIndex(const std::vector<ArpRun>& runs) : runs_(runs) {
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const ArpRun& run = runs[i];
    auto [group, added] = groups_.emplace(groupKeyOf({run.vrfId, run.intfId, run.first}), groups_.size());
    index_.add(group->second, addrLow(run.first), 1, run.count, i);
  }
  overlap_ = index_.seal();
}

ArpIndex::GroupKey ArpIndex::groupKeyOf(const Arp::Table::ArpKey& key) {
  const bool v6 = key.addr.version() == Ip::ipVersion6;
  return {key.vrfId.value(), key.intfId, int(key.addr.version()), v6 ? high64(key.addr.v6Addr()) : U64(0)};
}

std::optional<Arp::Table::ArpEntry> ArpIndex::entry(const Arp::Table::ArpKey& key) const {
  auto group = groups_.find(groupKeyOf(key));
  if (group == groups_.end()) return std::nullopt;
  auto found = index_.find(group->second, addrLow(key.addr));
  if (!found) return std::nullopt;
  return arpEntryOf(runs_[found->first], found->second);
}

}  // namespace Sources
