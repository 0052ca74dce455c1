#include "platform/tarn/FecRouteListSm.h"

#include <vector>

namespace FibUtils {

FecRouteListSm::FecRouteListSm(Quor::Ptr<const Tarn::Fib::RouteStatus> routeStatus,
                               Quor::Ptr<const Tarn::Fib::ForwardingStatus> forwardingStatus,
                               Quor::Ptr<Tarn::Fib::FecRouteList> fecRouteList)
    : routeStatus_(Quor::makePtr<QuorRouteStatus>(this)), forwardingStatus_(std::move(forwardingStatus)),
      fecRouteList_(std::move(fecRouteList)) {
  if (!fecRouteList_) Quor::throwRangeException("null fecRouteList parameter to FibUtils::FecRouteListSm not allowed");
  routeStatus_->notifierIs(routeStatus);
  if (forwardingStatus_ && routeStatus) {
    const Tarn::Fib::RouteStatus* routes = routeStatus.ptr();
    forwardingStatus_->fec().deliveredAfterIs([routes] { return routes->route().follower(); });
  }
  handleRoute();
}

FecRouteListSm::~FecRouteListSm() {
  if (forwardingStatus_) forwardingStatus_->fec().deliveredAfterIs(nullptr);
  routeStatus_->quorDoZombieReactors(true);
  routeStatus_->notifierIs(nullptr);
}

void FecRouteListSm::handleRoute(const Pelt::Prefix& prefix) {
  const Quor::Ptr<const Tarn::Fib::RouteStatus>& status = routeStatus_->notifier();
  if (!status) return;
  Tarn::Fib::RouteStatus::RouteMap::Wrapper route;
  try {
    route = status->route().lookup(prefix);
  } catch (const Tarn::CorruptionDetectedException& e) {
    status->route().corruptionDetected(e.text());
  }
  if (route) {
    fecRouteList_->reserve(status->route().maxSize());
    fecRouteList_->routeIs(prefix, route.value().fecId);
  } else {
    fecRouteList_->routeDel(prefix);
  }
}

void FecRouteListSm::handleRoute() {
  std::unordered_map<Pelt::Prefix, Tarn::Fib::FecId, Tarn::Fib::PrefixHash> present;
  if (const Quor::Ptr<const Tarn::Fib::RouteStatus>& status = routeStatus_->notifier()) {
    const Tarn::Fib::RouteStatus::RouteMap& table = status->route();
    try {
      Tarn::TarnMapIterator it;
      for (auto route = table.first(it); route; route = table.next(route.key(), it))
        present.emplace(route.key(), route.value().fecId);
      if (!present.empty()) fecRouteList_->reserve(table.maxSize());
    } catch (const Tarn::CorruptionDetectedException& e) {
      table.corruptionDetected(e.text());  // the table reads as empty from now on, and so does the list
    }
  }
  std::vector<Pelt::Prefix> gone;
  fecRouteList_->forEachRoute([&](const Pelt::Prefix& prefix, Tarn::Fib::FecId) {
    if (!present.contains(prefix)) gone.push_back(prefix);
  });
  for (const Pelt::Prefix& prefix : gone) fecRouteList_->routeDel(prefix);
  for (const auto& [prefix, fecId] : present) fecRouteList_->routeIs(prefix, fecId);
}

}  // namespace FibUtils
