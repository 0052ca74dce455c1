#pragma once
// FibUtils::FecRouteListSm (FecRoute6ListSm for IPv6) keeps a Tarn::Fib::FecRouteList equal to the
// reverse of one VRF's route table: each route notification moves its prefix to the list of the FEC that the route names now,
// or out of the list when the route is gone.
//
// Its first pass over the route table, and the pass after a mount or unmount changed the whole
// table, list the table's routes in slices from the clock (a million routes take about a second of
// slices), never inside one notification: until filled() the list may lack routes that the pass has
// not reached yet, while every route notification is applied at once in the meantime. A reader that
// must not miss a route keeps its own pass over those routes until the list is filled.
//
// Ordering. The route and forwarding tables notify separately. Whoever reacts to onFec(fecId) reads
// the list, so the list must already hold the route changes that the writer made before that FEC
// change. In-process tables notify inside each write, so that holds by itself; for table files the
// machine orders the forwarding table's deliveries after the route table's (TableFollower): a round
// of FEC notifications waits until every route change logged when it began has been delivered, and
// with it has reached this machine. One list machine per forwarding table.
#include "platform/quor/SlicedPass.h"
#include "platform/tarn/FecRouteList.h"
#include "platform/tarn/ForwardingStatus.h"
#include "platform/tarn/RouteStatus.h"

namespace FibUtils {

template <class RouteStatus, class ForwardingStatus>
class BasicFecRouteListSm : public Quor::PtrInterface {
 public:
  using Prefix = typename RouteStatus::Prefix;
  using FecRouteList = Tarn::Fib::BasicFecRouteList<Prefix>;

  // Follows `routeStatus` and starts filling `fecRouteList` from it on `clock` (by default the
  // activity manager's); `forwardingStatus` (may be null) is the table whose notifications are
  // ordered after the routes'.
  BasicFecRouteListSm(Quor::Ptr<const RouteStatus> routeStatus, Quor::Ptr<const ForwardingStatus> forwardingStatus,
                      Quor::Ptr<FecRouteList> fecRouteList, Quor::Ptr<const Quor::Clock> clock = nullptr);
  ~BasicFecRouteListSm() override;

  // Lists `prefix` under the FEC its route names now.
  void handleRoute(const Prefix& prefix);
  // The full pass over the route table: the list starts empty and fills in slices.
  void handleRoute();
  // Whether the list holds every route of the table (the last full pass has ended).
  bool filled() const noexcept { return !fill_->pending(); }

  const Quor::Ptr<FecRouteList>& fecRouteList() const noexcept { return fecRouteList_; }

 private:
  class QuorRouteStatus : public RouteStatus::NotifieeConst {
   public:
    explicit QuorRouteStatus(BasicFecRouteListSm* sm) : sm_(sm) {}
    void onRoute(const Prefix& prefix) override { sm_->handleRoute(prefix); }
    void onRoutequorImmediate() override { sm_->handleRoute(); }

   private:
    BasicFecRouteListSm* sm_;
  };
  // Lists the route after the pass's position; false when the table has no more.
  bool doFillStep();

  Quor::Ptr<QuorRouteStatus> routeStatus_;
  Quor::Ptr<const ForwardingStatus> forwardingStatus_;
  Quor::Ptr<FecRouteList> fecRouteList_;
  Quor::Ptr<Quor::SlicedPass> fill_;
  // Where the full pass stands: the last route it listed, none before the first.
  Tarn::TarnMapIterator fillAt_;
  std::optional<Prefix> filledThrough_;
};

using FecRouteListSm = BasicFecRouteListSm<Tarn::Fib::RouteStatus, Tarn::Fib::ForwardingStatus>;
using FecRoute6ListSm = BasicFecRouteListSm<Tarn::Fib::Route6Status, Tarn::Fib::Forwarding6Status>;
extern template class BasicFecRouteListSm<Tarn::Fib::RouteStatus, Tarn::Fib::ForwardingStatus>;
extern template class BasicFecRouteListSm<Tarn::Fib::Route6Status, Tarn::Fib::Forwarding6Status>;

}  // namespace FibUtils
