#include "platform/tarn/FecRouteList.h"

namespace Tarn::Fib {

Quor::Ptr<const FecRoutes> FecRouteList::fecRoutes(FecId fecId) const {
  auto it = members_.find(fecId.value());
  return it == members_.end() ? nullptr : Quor::Ptr<const FecRoutes>(it->second);
}

const FecId* FecRouteList::fecOf(const Pelt::Prefix& prefix) const {
  auto it = listedUnder_.find(prefix);
  return it == listedUnder_.end() ? nullptr : &it->second->fecId_;
}

void FecRouteList::routeIs(const Pelt::Prefix& prefix, FecId fecId) {
  if (const FecId* listed = fecOf(prefix); listed && *listed == fecId) return;
  routeDel(prefix);
  Quor::Ptr<FecRoutes>& member = members_[fecId.value()];
  if (!member) member = Quor::makePtr<FecRoutes>(fecId);
  member.ptr()->route_.insert(prefix);
  listedUnder_.emplace(prefix, member.ptr());
}

void FecRouteList::routeDel(const Pelt::Prefix& prefix) {
  auto listed = listedUnder_.find(prefix);
  if (listed == listedUnder_.end()) return;
  FecRoutes& member = *listed->second;
  listedUnder_.erase(listed);
  member.route_.erase(prefix);
  if (member.route_.empty()) members_.erase(member.fecId_.value());  // the last reference but a reader's
}

}  // namespace Tarn::Fib
