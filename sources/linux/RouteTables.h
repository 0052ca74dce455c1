#pragma once
// The route and forwarding tables of one VRF, written by difference from the routes wanted: IPv4's
// (RouteTables) or IPv6's (Route6Tables), one template.
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
#include "platform/tarn/Mount.h"
#include "sources/linux/GrowingTable.h"

namespace Sources::Linux {

// The tables of each family.
struct Ipv4Tables {
  using RouteCodec = Tarn::Fib::RouteCodec;
  using FecCodec = Tarn::Fib::FecCodec;
  static std::string routePath(const L3::VrfName& vrf) { return Tarn::Fib::routePathOf(vrf); }
  static std::string forwardingPath(const L3::VrfName& vrf) { return Tarn::Fib::forwardingPathOf(vrf); }
};
struct Ipv6Tables {
  using RouteCodec = Tarn::Fib::Route6Codec;
  using FecCodec = Tarn::Fib::Fec6Codec;
  static std::string routePath(const L3::VrfName& vrf) { return Tarn::Fib::route6PathOf(vrf); }
  static std::string forwardingPath(const L3::VrfName& vrf) { return Tarn::Fib::forwarding6PathOf(vrf); }
};

// What a route should be, the FEC aside.
template <class Route, class Via>
struct BasicWantedRoute {
  Route route;  // its fecId is not read
  std::vector<Via> vias;
};
using WantedRoute = BasicWantedRoute<Tarn::Fib::Route, Tarn::Fib::Via>;
using WantedRoute6 = BasicWantedRoute<Tarn::Fib::Route6, Tarn::Fib::Via6>;

template <class Family>
class BasicRouteTables {
 public:
  using Route = typename Family::RouteCodec::Value;
  using Prefix = typename Family::RouteCodec::Key;
  using Fec = typename Family::FecCodec::Value;
  using Via = typename Fec::Via;
  using Wanted = BasicWantedRoute<Route, Via>;

  static constexpr U32 leastRoutes = 16384;
  static constexpr U32 leastFecs = 1024;
  static constexpr U32 leastChunks = 256;

  // Opens (or takes over) the tables of `vrf` under the table root `root`.
  BasicRouteTables(const std::string& root, const L3::VrfName& vrf);

  // Makes the route of `prefix` what `wanted` says; nothing: no route.
  void routeIs(const Prefix& prefix, const std::optional<Wanted>& wanted);
  // The prefixes that the table holds.
  std::vector<Prefix> prefixes() const;
  // Erases the FECs left by a previous writer that no route names any more.
  void sweepStaleFecs();
  void commit();

  std::size_t routes() const noexcept { return routes_.size(); }
  std::size_t fecs() const noexcept { return fecs_.size(); }

 private:
  struct ViaOrder {
    bool operator()(const std::vector<Via>& a, const std::vector<Via>& b) const noexcept;
  };
  using FecKey = std::vector<Via>;
  struct FecUse {
    Tarn::Fib::FecId id;
    U32 users = 0;
  };
  struct Published {
    Route route;
    std::optional<FecKey> fec;  // none for a route left by a previous writer
  };

  Tarn::Fib::FecId acquire(const FecKey& vias);
  void release(const FecKey& vias);
  void putFec(const Fec& fec);
  void growFecs();

  std::string fecPath_;
  GrowingTable<typename Family::RouteCodec> routeTable_;
  std::unique_ptr<Tarn::Fib::BasicFecWriter<typename Family::FecCodec>> fecTable_;
  U32 maxFecs_ = leastFecs;
  U32 maxChunks_ = leastChunks;
  std::map<Prefix, Published> routes_;
  std::map<FecKey, FecUse, ViaOrder> fecs_;
  std::set<U64> staleFecs_;
  U64 nextFecId_ = 1;
};

using RouteTables = BasicRouteTables<Ipv4Tables>;
using Route6Tables = BasicRouteTables<Ipv6Tables>;
extern template class BasicRouteTables<Ipv4Tables>;
extern template class BasicRouteTables<Ipv6Tables>;

}  // namespace Sources::Linux
