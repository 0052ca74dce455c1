#include "platform/tarn/FecRouteListSm.h"

namespace FibUtils {

template <class RouteStatus, class ForwardingStatus>
BasicFecRouteListSm<RouteStatus, ForwardingStatus>::BasicFecRouteListSm(Quor::Ptr<const RouteStatus> routeStatus,
                                                        Quor::Ptr<const ForwardingStatus> forwardingStatus,
                                                        Quor::Ptr<FecRouteList> fecRouteList,
                                                        Quor::Ptr<const Quor::Clock> clock)
    : routeStatus_(Quor::makePtr<QuorRouteStatus>(this)), forwardingStatus_(std::move(forwardingStatus)),
      fecRouteList_(std::move(fecRouteList)),
      fill_(Quor::makePtr<Quor::SlicedPass>([this] { return doFillStep(); })) {
  if (!fecRouteList_) Quor::throwRangeException("null fecRouteList parameter to FibUtils::FecRouteListSm not allowed");
  fill_->clockIs(clock ? clock : Quor::Ptr<const Quor::Clock>(Quor::activityManager()->clock()));
  routeStatus_->notifierIs(routeStatus);
  if (forwardingStatus_ && routeStatus) {
    const RouteStatus* routes = routeStatus.ptr();
    forwardingStatus_->fec().deliveredAfterIs([routes] { return routes->route().follower(); });
  }
  handleRoute();
}

template <class RouteStatus, class ForwardingStatus>
BasicFecRouteListSm<RouteStatus, ForwardingStatus>::~BasicFecRouteListSm() {
  fill_->stop();
  if (forwardingStatus_) forwardingStatus_->fec().deliveredAfterIs(nullptr);
  routeStatus_->quorDoZombieReactors(true);
  routeStatus_->notifierIs(nullptr);
}

template <class RouteStatus, class ForwardingStatus>
void BasicFecRouteListSm<RouteStatus, ForwardingStatus>::handleRoute(const Prefix& prefix) {
  const Quor::Ptr<const RouteStatus>& status = routeStatus_->notifier();
  if (!status) return;
  typename RouteStatus::RouteMap::Wrapper route;
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

template <class RouteStatus, class ForwardingStatus>
void BasicFecRouteListSm<RouteStatus, ForwardingStatus>::handleRoute() {
  fecRouteList_->clear();
  fillAt_ = {};
  filledThrough_.reset();
  fill_->start();
}

template <class RouteStatus, class ForwardingStatus>
bool BasicFecRouteListSm<RouteStatus, ForwardingStatus>::doFillStep() {
  const Quor::Ptr<const RouteStatus>& status = routeStatus_->notifier();
  if (!status) return false;
  const typename RouteStatus::RouteMap& table = status->route();
  try {
    auto route = filledThrough_ ? table.next(*filledThrough_, fillAt_) : table.first(fillAt_);
    if (!route) return false;
    if (!filledThrough_) fecRouteList_->reserve(table.maxSize());
    filledThrough_ = route.key();
    fecRouteList_->routeIs(route.key(), route.value().fecId);
    return true;
  } catch (const Tarn::CorruptionDetectedException& e) {
    table.corruptionDetected(e.text());  // the table reads as empty from now on, and so does the list
    fecRouteList_->clear();
    return false;
  }
}

template class BasicFecRouteListSm<Tarn::Fib::RouteStatus, Tarn::Fib::ForwardingStatus>;
template class BasicFecRouteListSm<Tarn::Fib::Route6Status, Tarn::Fib::Forwarding6Status>;

}  // namespace FibUtils
