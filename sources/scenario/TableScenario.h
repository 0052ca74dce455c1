#pragma once
// The shared-memory tables as a scenario gives them: routes and FECs per VRF, the ARP entries of all
// VRFs, and the VRF-id map. Entries come in runs, so that a million routes cost one line: a route,
// FEC or neighbour written out in the file is a run of one. A section that the scenario leaves out
// (std::nullopt) is a table that it does not manage (see docs/scenario.md).
#include <map>
#include <optional>
#include <tuple>
#include <vector>

#include "platform/pelt/VrfName.h"
#include "platform/tarn/ArpEntry.h"
#include "platform/tarn/FibFec.h"
#include "platform/tarn/FibRoute.h"
#include "sources/scenario/RunIndex.h"

namespace Sources {

// `count` routes from `first` on, each the next block of the same length, using `fecs` in turn.
struct RouteRun {
  Pelt::Prefix first;
  U32 count = 1;
  std::vector<Tarn::Fib::FecId> fecs;
  Routing::RouteMetric metric;
  Routing::RoutePreference preference{1};
  Routing::Fib::RouteType type = Routing::Fib::routeTypeConnected;
  friend bool operator==(const RouteRun&, const RouteRun&) = default;
};

// `count` FECs with the ids from `first` on; the i-th of the run (from 0) has `vias` with every next
// hop other than 0.0.0.0 moved up by i.
struct FecRun {
  U64 first = 0;
  U32 count = 1;
  std::vector<Tarn::Fib::Via> vias;
  friend bool operator==(const FecRun&, const FecRun&) = default;
};

// The IPv4 FECs and routes come in runs; the IPv6 ones, which fill tables of their own, are each
// written out.
struct FibScenario {
  std::vector<FecRun> fecs;
  std::vector<RouteRun> routes;
  std::vector<Tarn::Fib::Fec6> fecs6;
  std::vector<Tarn::Fib::Route6> routes6;
  friend bool operator==(const FibScenario&, const FibScenario&) = default;
};

// `count` neighbours of one VRF id on one interface, the addresses and MAC addresses counting up
// from `first` and `mac`.
struct ArpRun {
  Vrf::VrfIdMap::VrfId vrfId;
  Pelt::IntfId intfId;
  Pelt::IpGenAddr first;
  U32 count = 1;
  Pelt::EthAddr mac;
  bool isStatic = false;
  friend bool operator==(const ArpRun&, const ArpRun&) = default;
};

struct TablesScenario {
  std::optional<std::map<L3::VrfName, FibScenario>> fib;
  std::optional<std::vector<ArpRun>> arp;
  std::optional<std::map<Vrf::VrfIdMap::VrfId, L3::VrfName>> vrfIds;
  friend bool operator==(const TablesScenario&, const TablesScenario&) = default;
};

// The i-th member of a run.
Tarn::Fib::Route routeOf(const RouteRun& run, U64 i);
void fecOf(const FecRun& run, U64 i, Tarn::Fib::Fec* fec);
Arp::Table::ArpEntry arpEntryOf(const ArpRun& run, U64 i);

// The routes and FECs of one VRF by key. `overlap()` names two runs, as their positions in the
// scenario's lists, that give the same key; the lookups need runs that do not overlap.
class FibIndex {
 public:
  explicit FibIndex(const FibScenario& fib);
  std::optional<std::pair<std::size_t, std::size_t>> routeOverlap() const { return routeOverlap_; }
  std::optional<std::pair<std::size_t, std::size_t>> fecOverlap() const { return fecOverlap_; }

  std::optional<Tarn::Fib::Route> route(const Pelt::Prefix& prefix) const;
  // Fills `fec`; false when the scenario has no FEC of that id.
  bool fec(Tarn::Fib::FecId id, Tarn::Fib::Fec* fec) const;

 private:
  const FibScenario& fib_;
  RunIndex routes_;
  RunIndex fecs_;
  std::optional<std::pair<std::size_t, std::size_t>> routeOverlap_;
  std::optional<std::pair<std::size_t, std::size_t>> fecOverlap_;
};

// The ARP entries by key, as FibIndex.
class ArpIndex {
 public:
  explicit ArpIndex(const std::vector<ArpRun>& runs);
  std::optional<std::pair<std::size_t, std::size_t>> overlap() const { return overlap_; }
  std::optional<Arp::Table::ArpEntry> entry(const Arp::Table::ArpKey& key) const;

 private:
  // Where an address falls in the index: its VRF, interface, version and high bits are the group,
  // numbered as they come.
  using GroupKey = std::tuple<U32, Pelt::IntfId, int, U64>;
  static GroupKey groupKeyOf(const Arp::Table::ArpKey& key);

  const std::vector<ArpRun>& runs_;
  std::map<GroupKey, U64> groups_;
  RunIndex index_;
  std::optional<std::pair<std::size_t, std::size_t>> overlap_;
};

// Counting up in the wider types, for the runs: the address `n` after `addr` (in the low 64 bits
// for IPv6), and the MAC address `n` after `mac`.
Pelt::IpGenAddr addrPlus(const Pelt::IpGenAddr& addr, U64 n);
Pelt::EthAddr macPlus(const Pelt::EthAddr& mac, U64 n);
U64 macValue(const Pelt::EthAddr& mac);
// The low 64 bits of an IPv6 address, or the IPv4 address, as a number.
U64 addrLow(const Pelt::IpGenAddr& addr);

}  // namespace Sources
