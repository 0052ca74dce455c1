#pragma once
// Tarn::Fib::RouteStatus and Tarn::Fib::Route6Status: one VRF's IPv4 or IPv6 route table, prefix to
// route, as an entity whose reactors hear onRoute(prefix) for each prefix whose route may have changed.
#include "platform/tarn/FibRoute.h"
#include "platform/tarn/TableStatus.h"

namespace Tarn::Fib {

template <class Codec>
class BasicRouteStatus : public TableStatus<BasicRouteStatus<Codec>, Codec> {
 public:
  using Prefix = typename Codec::Key;
  class NotifieeConst : public Quor::Notifiee<BasicRouteStatus> {
   public:
    virtual void onRoute(const Prefix&) {}
    virtual void onRoutequorImmediate() {}
  };
  using RouteMap = typename TableStatus<BasicRouteStatus, Codec>::Map;
  static constexpr const char* typeName = Codec::statusType;
  static constexpr const char* attributeName = "route";
  static constexpr auto onKey = &NotifieeConst::onRoute;
  static constexpr auto onAll = &NotifieeConst::onRoutequorImmediate;

  using TableStatus<BasicRouteStatus, Codec>::TableStatus;
  const RouteMap& route() const noexcept { return this->view(); }
};

using RouteStatus = BasicRouteStatus<RouteCodec>;
using Route6Status = BasicRouteStatus<Route6Codec>;

}  // namespace Tarn::Fib
