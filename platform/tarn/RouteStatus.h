#pragma once
// Tarn::Fib::RouteStatus: one VRF's route table, prefix to route, as an entity whose reactors hear
// onRoute(prefix) for each prefix whose route may have changed.
#include "platform/tarn/FibRoute.h"
#include "platform/tarn/TableStatus.h"

namespace Tarn::Fib {

class RouteStatus : public TableStatus<RouteStatus, RouteCodec> {
 public:
  class NotifieeConst : public Quor::Notifiee<RouteStatus> {
   public:
    virtual void onRoute(const Pelt::Prefix&) {}
    virtual void onRoutequorImmediate() {}
  };
  using RouteMap = Map;
  static constexpr const char* typeName = "Tarn::Fib::RouteStatus";
  static constexpr const char* attributeName = "route";
  static constexpr auto onKey = &NotifieeConst::onRoute;
  static constexpr auto onAll = &NotifieeConst::onRoutequorImmediate;

  using TableStatus::TableStatus;
  const RouteMap& route() const noexcept { return view(); }
};

}  // namespace Tarn::Fib
