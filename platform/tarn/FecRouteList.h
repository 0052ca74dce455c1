#pragma once
// The reverse of a route table: for each FEC id, the prefixes whose routes name that FEC, so that a
// change of a FEC finds the routes it affects. FibUtils::FecRouteListSm keeps it up to date.
//
// Iterators of a member's route collection are those of std::unordered_set: the list changes only
// when a route notification reaches the machine, never while a reader walks a member; a member taken
// out of the list stays readable through the pointer its reader holds.
#include <cstddef>
#include <unordered_map>
#include <unordered_set>

#include "platform/pelt/Prefix.h"
#include "platform/quor/Ptr.h"
#include "platform/tarn/FibRoute.h"

namespace Tarn::Fib {

struct PrefixHash {
  std::size_t operator()(const Pelt::Prefix& prefix) const noexcept { return prefix.hash(); }
};

// The prefixes whose routes name one FEC.
class FecRoutes : public Quor::PtrInterface {
 public:
  using Routes = std::unordered_set<Pelt::Prefix, PrefixHash>;
  explicit FecRoutes(FecId fecId) : fecId_(fecId) {}
  FecId fecId() const noexcept { return fecId_; }
  const Routes& route() const noexcept { return route_; }

 private:
  friend class FecRouteList;
  FecId fecId_;
  Routes route_;
};

class FecRouteList : public Quor::PtrInterface {
 public:
  // The member of `fecId`, null when no route names that FEC.
  Quor::Ptr<const FecRoutes> fecRoutes(FecId fecId) const;
  // FECs that some route names.
  std::size_t members() const noexcept { return members_.size(); }
  // Lists `prefix` under `fecId`, and under no other FEC.
  void routeIs(const Pelt::Prefix& prefix, FecId fecId);
  // Lists `prefix` nowhere.
  void routeDel(const Pelt::Prefix& prefix);
  // The FEC `prefix` is listed under, null when none.
  const FecId* fecOf(const Pelt::Prefix& prefix) const;
  // Room for `routes` listed prefixes: a list that grows with its route table one prefix at a time
  // would otherwise rehash every prefix at once each time it doubles, a stall of its own at 1M routes.
  void reserve(std::size_t routes) { listedUnder_.reserve(routes); }
  // Visits every listed prefix with its FEC.
  template <class Visit>
  void forEachRoute(Visit&& visit) const {
    for (const auto& [prefix, member] : listedUnder_) visit(prefix, member->fecId());
  }

 private:
  std::unordered_map<U64, Quor::Ptr<FecRoutes>> members_;
  std::unordered_map<Pelt::Prefix, FecRoutes*, PrefixHash> listedUnder_;  // members owned by members_
};

}  // namespace Tarn::Fib
