#pragma once
// The route and forwarding tables of one VRF, written by difference from the routes wanted.
//
// Routes with the same next hops share one FEC: a FEC is written before the first route that names
// it and erased after the last one has let it go, so that a reader never finds a route whose FEC is
// missing. FEC ids are never reused within a writer's life, and a writer starts above every id in
// the file that it takes over; the FECs of its predecessor are erased once the first full
// synchronisation has rewritten every route (see sweepStaleFecs).
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/pelt/VrfName.h"
#include "platform/tarn/FecWriter.h"
#include "platform/tarn/FibFec.h"
#include "sources/linux/GrowingTable.h"

namespace Sources::Linux {

// What a route should be, the FEC aside.
struct WantedRoute {
  Tarn::Fib::Route route;  // its fecId is not read
  std::vector<Tarn::Fib::Via> vias;
};

class RouteTables {
 public:
  static constexpr U32 leastRoutes = 16384;
  static constexpr U32 leastFecs = 1024;
  static constexpr U32 leastChunks = 256;

  // Opens (or takes over) the tables of `vrf` under the table root `root`.
  RouteTables(const std::string& root, const L3::VrfName& vrf);

  // Makes the route of `prefix` what `wanted` says; nothing: no route.
  void routeIs(const Pelt::Prefix& prefix, const std::optional<WantedRoute>& wanted);
  // The prefixes that the table holds.
  std::vector<Pelt::Prefix> prefixes() const;
  // Erases the FECs left by a previous writer that no route names any more.
  void sweepStaleFecs();
  void commit();

  std::size_t routes() const noexcept { return routes_.size(); }
  std::size_t fecs() const noexcept { return fecs_.size(); }

 private:
  struct ViaOrder {
    bool operator()(const std::vector<Tarn::Fib::Via>& a, const std::vector<Tarn::Fib::Via>& b) const noexcept;
  };
  using FecKey = std::vector<Tarn::Fib::Via>;
  struct FecUse {
    Tarn::Fib::FecId id;
    U32 users = 0;
  };
  struct Published {
    Tarn::Fib::Route route;
    std::optional<FecKey> fec;  // none for a route left by a previous writer
  };

  Tarn::Fib::FecId acquire(const FecKey& vias);
  void release(const FecKey& vias);
  void putFec(const Tarn::Fib::Fec& fec);
  void growFecs();

  std::string fecPath_;
  GrowingTable<Tarn::Fib::RouteCodec> routeTable_;
  std::unique_ptr<Tarn::Fib::FecWriter> fecTable_;
  U32 maxFecs_ = leastFecs;
  U32 maxChunks_ = leastChunks;
  std::map<Pelt::Prefix, Published> routes_;
  std::map<FecKey, FecUse, ViaOrder> fecs_;
  std::set<U64> staleFecs_;
  U64 nextFecId_ = 1;
};

}  // namespace Sources::Linux
