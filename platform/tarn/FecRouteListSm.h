#pragma once
// FibUtils::FecRouteListSm keeps a Tarn::Fib::FecRouteList equal to the reverse of one VRF's route
// table: each route notification moves its prefix to the list of the FEC that the route names now,
// or out of the list when the route is gone.
//
// Ordering. The route and forwarding tables notify separately. Whoever reacts to onFec(fecId) reads
// the list, so the list must already hold the route changes that the writer made before that FEC
// change. In-process tables notify inside each write, so that holds by itself; for table files the
// machine orders the forwarding table's deliveries after the route table's (TableFollower): a round
// of FEC notifications waits until every route change logged when it began has been delivered, and
// with it has reached this machine. One list machine per forwarding table.
#include "platform/tarn/FecRouteList.h"
#include "platform/tarn/ForwardingStatus.h"
#include "platform/tarn/RouteStatus.h"

namespace FibUtils {

class FecRouteListSm : public Quor::PtrInterface {
 public:
  // Follows `routeStatus` and fills `fecRouteList` from it at once; `forwardingStatus` (may be null)
  // is the table whose notifications are ordered after the routes'.
  FecRouteListSm(Quor::Ptr<const Tarn::Fib::RouteStatus> routeStatus,
                 Quor::Ptr<const Tarn::Fib::ForwardingStatus> forwardingStatus,
                 Quor::Ptr<Tarn::Fib::FecRouteList> fecRouteList);
  ~FecRouteListSm() override;

  // Lists `prefix` under the FEC its route names now.
  void handleRoute(const Pelt::Prefix& prefix);
  // The full pass over the route table.
  void handleRoute();

  const Quor::Ptr<Tarn::Fib::FecRouteList>& fecRouteList() const noexcept { return fecRouteList_; }

 private:
  class QuorRouteStatus : public Tarn::Fib::RouteStatus::NotifieeConst {
   public:
    explicit QuorRouteStatus(FecRouteListSm* sm) : sm_(sm) {}
    void onRoute(const Pelt::Prefix& prefix) override { sm_->handleRoute(prefix); }
    void onRoutequorImmediate() override { sm_->handleRoute(); }

   private:
    FecRouteListSm* sm_;
  };

  Quor::Ptr<QuorRouteStatus> routeStatus_;
  Quor::Ptr<const Tarn::Fib::ForwardingStatus> forwardingStatus_;
  Quor::Ptr<Tarn::Fib::FecRouteList> fecRouteList_;
};

}  // namespace FibUtils
