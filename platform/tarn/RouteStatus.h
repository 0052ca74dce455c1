#pragma once
// Tarn::Fib::RouteStatus: one VRF's route table, prefix to route, as an entity whose reactors hear
// onRoute(prefix) for each prefix whose route may have changed. Notifications of the table file
// arrive from the event loop (see TableFollower); those of an in-process table inside the write.
#include "platform/quor/Entity.h"
#include "platform/tarn/FibRoute.h"
#include "platform/tarn/TarnMap.h"

namespace Tarn::Fib {

class RouteStatus : public Quor::Entity {
 public:
  class NotifieeConst : public Quor::Notifiee<RouteStatus> {
   public:
    virtual void onRoute(const Pelt::Prefix&) {}
    virtual void onRoutequorImmediate() {}
  };
  using RouteMap = TarnMap<Pelt::Prefix, Route>;

  explicit RouteStatus(Quor::Name name);
  const RouteMap& route() const noexcept { return route_; }
  RouteMap& route() noexcept { return route_; }
  // Maps the table file at `path` behind `route`.
  void routeFileIs(const std::string& path);

  const char* fwkType() const override { return "Tarn::Fib::RouteStatus"; }
  Quor::String8 attributeString(Quor::AttributeId id) const override;
  Quor::AttributeId attributeId(const Quor::String8& name) const override;

 private:
  RouteMap route_;
};

}  // namespace Tarn::Fib
