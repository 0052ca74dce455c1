#pragma once
// IpRouteTableSm keeps one VRF's ipCidrRouteTable (its IpForwardMib) in step with that VRF's route
// and forwarding tables in shared memory, without ever holding up the event loop; IpRoute6TableSm,
// the same machine over the IPv6 tables (RouteFamilies.h), keeps the IPv6 rows of inetCidrRouteTable.
//
// It works in two halves. The intake (the reactors on the route table, the forwarding table and the
// interface directory) only notes what to rebuild and arms the clock; it touches no row. A changed
// route marks its prefix in the backlog, a set; a changed FEC queues a walk of the prefixes that
// fecRouteList (which FibUtils::FecRouteListSm keeps as the reverse of the route table) lists under
// it; the machine's first pass is a scan of the whole route table. The pass, doProcessIpRouteBacklog(),
// runs from the clock and rebuilds one prefix at a time: it deletes every row of the prefix and builds
// them again from the route and its FEC, one row per via. It takes the backlog first, in hash order
// from the bookmark and wrapping round, then the FEC walks, then the scan. Before each prefix it looks
// at the time and yields once backlogQuantum has gone by or the loop's turn is spent, leaving the
// bookmark on the next marked prefix and the clock armed for the next opportunity; a prefix is never
// left half rebuilt. Addition, change and deletion are one path, so the intake never needs to know
// what changed. So no notification and no pass holds the loop for more than a slice, whatever the
// number of routes a FEC carries or the table holds when the machine is made: rows fill in over the
// passes after construction, and the scan starts once fecRouteList holds every route, so that a FEC
// change never misses a prefix the scan has already built.
//
// Deliberate, and relied on (each is a tested behaviour):
// - there is no periodic rescan: a changed interface index, or a status that goes away, leaves rows
//   already made as they are;
// - a via on an interface without status is skipped and its prefix waits in intfDep for that
//   interface; a via whose interface has a negative index is skipped and waits for nothing;
// - handleIntfStatus empties the interface's list in every case but marks its prefixes only when the
//   status exists: a prefix whose interface went away is revisited only if something else marks it;
// - two vias with one next hop on interfaces of different index collide on the row key: the first
//   in FEC order keeps the row and the collision is traced;
// - route types 0 to 3 make no rows; a FEC of more than 128 vias is a range failure that leaves the
//   pass with the prefix still in the backlog and the clock idle.
#include <deque>
#include <optional>
#include <unordered_set>

#include "agent/QuorOutputTable.h"
#include "agent/RouteFamilies.h"
#include "platform/morvane/IntfStatus.h"
#include "platform/quor/Clock.h"

namespace IpSnmp {

template <class Family>
class BasicIpRouteTableSm : public Quor::Reactor {
 public:
  using Prefix = typename Family::Prefix;
  using RouteStatus = typename Family::RouteStatus;
  using ForwardingStatus = typename Family::ForwardingStatus;
  using FecRouteListSm = typename Family::FecRouteListSm;
  using FecRouteList = typename FecRouteListSm::FecRouteList;
  using PrefixList = typename Family::PrefixList;
  using Route = typename RouteStatus::Value;
  using Fec = typename ForwardingStatus::Value;

  template <class Notifiee>
  class QuorInput;
  class QuorIntfStatusDir;
  class QuorRouteStatus;
  class QuorForwardingStatus;
  class QuorClock;
  using QuorIpForwardMib = QuorOutputTable<IpForwardMib>;
  // The backlog is a set of prefixes in the order of the prefix hash, as a PrefixList's.
  using Backlog = typename Family::PrefixSet;
  using IntfDep = Quor::HashMap<PrefixList, Pelt::IntfId>;

  static constexpr double defaultBacklogQuantum = 0.01;

  struct Inputs {
    Quor::ValidPtr<IpForwardMib> ipForwardMib;
    Quor::ValidPtr<const Interface::AllIntfStatusDir> intfStatusDir;
    Quor::ValidPtr<const RouteStatus> routeStatus;
    Quor::ValidPtr<const ForwardingStatus> forwardingStatus;
    Quor::ValidPtr<const Quor::Clock> clock;
    friend bool operator==(const Inputs&, const Inputs&) = default;
  };

  // Makes a reactor on every input, then starts the scan of every route present.
  explicit BasicIpRouteTableSm(const Inputs& inputs);
  // Leaves the rows of ipForwardMib in place.
  ~BasicIpRouteTableSm() override;

  Quor::Ptr<IpForwardMib> ipForwardMib() const;
  Quor::Ptr<const Interface::AllIntfStatusDir> intfStatusDir() const;
  Quor::Ptr<const RouteStatus> routeStatus() const;
  Quor::Ptr<const ForwardingStatus> forwardingStatus() const;
  Quor::Ptr<const Quor::Clock> clock() const;
  // The clock reactor, whose timeMin tells the state: +infinity idle, 0.0 scheduled.
  QuorClock* quorClock() const noexcept { return clock_.ptr(); }

  const Quor::Ptr<FecRouteList>& fecRouteList() const noexcept { return fecRouteList_; }
  Quor::ValidPtr<FecRouteList> fecRouteListIs();
  const Quor::Ptr<FecRouteListSm>& fecRouteListSm() const noexcept { return fecRouteListSm_; }
  Quor::ValidPtr<FecRouteListSm> fecRouteListSmIs(const Quor::Ptr<const RouteStatus>& routeStatus,
                                                  const Quor::Ptr<const ForwardingStatus>& forwardingStatus,
                                                  const Quor::Ptr<FecRouteList>& fecRouteList);

  const Backlog& backlog() const noexcept { return backlog_; }
  bool backlog(const Prefix& prefix) const { return backlog_.member(prefix); }
  // Marks the prefix; a prefix already marked stays as it is. The backlog is a set: every writer
  // marks with true, and the bool is not kept.
  void backlogIs(const Prefix& prefix, bool value);
  // Unmarks the prefix; false when it was not marked.
  bool backlogDel(const Prefix& prefix) { return backlog_.deleteMember(prefix); }
  bool backlogDel(const typename Backlog::Iterator& at) { return backlog_.deleteMember(at.key()); }

  const IntfDep& intfDep() const noexcept { return intfDep_; }
  PrefixList* intfDep(const Pelt::IntfId& intfId) const { return intfDep_.member(intfId); }
  // The list of the prefixes that wait for `intfId`, made empty when absent.
  Quor::ValidPtr<PrefixList> intfDepIs(const Pelt::IntfId& intfId);
  Quor::Ptr<PrefixList> intfDepDel(const Pelt::IntfId& intfId) { return intfDep_.deleteMember(intfId); }
  void intfDepDelAll();

  // Whether the first pass has prefixes of the route table left to build.
  bool scanning() const noexcept { return scanning_; }
  // The FECs whose prefixes wait to be rebuilt, oldest change first.
  const std::deque<Tarn::Fib::FecId>& fecWalks() const noexcept { return fecWalks_; }

  const Prefix& bookmark() const noexcept { return bookmark_; }
  void bookmarkIs(const Prefix& prefix) noexcept { bookmark_ = prefix; }
  double backlogQuantum() const noexcept { return backlogQuantum_; }
  void backlogQuantumIs(double seconds) noexcept { backlogQuantum_ = seconds; }

  // Intake: each notes prefixes to rebuild and arms the clock. handleRoute() starts the scan of the
  // whole table, handleFec(fecId) a walk of the FEC's prefixes.
  void handleRoute();
  void handleRoute(const Prefix& prefix);
  void handleFec(const Tarn::Fib::FecId& fecId);
  void handleIntfStatus(Pelt::IntfId intfId);

  // Fills protoMap and makes the FEC-to-routes list with its machine.
  void doInstantiate();
  // Asks the clock for a pass at its next opportunity unless one is pending already.
  void doSetupBacklogTimer();
  // One pass over the backlog, the FEC walks and the scan, bounded by backlogQuantum and the turn.
  void doProcessIpRouteBacklog();

 protected:
  void quorZombieNested(bool flag) override;

 private:
  // Deletes every row of `prefix` and makes one per usable via of its route's FEC; `route` when the
  // caller has just read it.
  void doRebuildPrefix(const Prefix& prefix, const Route* route = nullptr);
  // The next prefix of the FEC walks; none when no walk is left.
  std::optional<Prefix> nextOfFecWalks();
  // Rebuilds the route after the scan's position; false when the scan is over or must wait.
  bool doScanStep();
  Route readRoute(const Prefix& prefix) const;
  Fec readFec(Tarn::Fib::FecId fecId) const;

  Quor::Ptr<QuorIpForwardMib> ipForwardMib_;
  Quor::Ptr<QuorIntfStatusDir> intfStatusDir_;
  Quor::Ptr<QuorRouteStatus> routeStatus_;
  Quor::Ptr<QuorForwardingStatus> forwardingStatus_;
  Quor::Ptr<QuorClock> clock_;
  Quor::Ptr<FecRouteList> fecRouteList_;
  Quor::Ptr<FecRouteListSm> fecRouteListSm_;
  Backlog backlog_;
  std::deque<Tarn::Fib::FecId> fecWalks_;
  std::unordered_set<U64> fecWalking_;  // the FECs of fecWalks_
  bool scanning_ = false;
  Tarn::TarnMapIterator scanAt_;
  std::optional<Prefix> scannedThrough_;  // the last prefix the scan built, none before the first
  Prefix bookmark_;
  double backlogQuantum_ = defaultBacklogQuantum;
  IntfDep intfDep_;
};

// A reactor of the machine on one of its inputs, with the plain back pointer that its handlers take
// to the machine; the machine clears it when it goes.
template <class Family>
template <class Notifiee>
class BasicIpRouteTableSm<Family>::QuorInput : public Notifiee {
 public:
  explicit QuorInput(BasicIpRouteTableSm* sm) : ipRouteTableSm_(sm) {}
  void ipRouteTableSmIs(BasicIpRouteTableSm* sm) noexcept { ipRouteTableSm_ = sm; }

 protected:
  BasicIpRouteTableSm* ipRouteTableSm_;
};

template <class Family>
class BasicIpRouteTableSm<Family>::QuorIntfStatusDir final
    : public QuorInput<Interface::AllIntfStatusDir::NotifieeConst> {
 public:
  using QuorInput<Interface::AllIntfStatusDir::NotifieeConst>::QuorInput;
  void onIntfStatus(const Pelt::IntfId& intfId) override;
  // Binding is no reason to scan: only notifications by interface count.
  void onIntfStatusquorImmediate() override {}
};

template <class Family>
class BasicIpRouteTableSm<Family>::QuorRouteStatus final : public QuorInput<typename RouteStatus::NotifieeConst> {
 public:
  using QuorInput<typename RouteStatus::NotifieeConst>::QuorInput;
  void onRoute(const Prefix& prefix) override;
  // The constructor's pass reads the table; a mount is no reason to scan it again here.
  void onRoutequorImmediate() override {}
};

template <class Family>
class BasicIpRouteTableSm<Family>::QuorForwardingStatus final
    : public QuorInput<typename ForwardingStatus::NotifieeConst> {
 public:
  using QuorInput<typename ForwardingStatus::NotifieeConst>::QuorInput;
  void onFec(const Tarn::Fib::FecId& fecId) override;
  void onFecquorImmediate() override {}
};

template <class Family>
class BasicIpRouteTableSm<Family>::QuorClock final : public QuorInput<Quor::Clock::NotifieeConst> {
 public:
  using QuorInput<Quor::Clock::NotifieeConst>::QuorInput;
  void onTime() override;

 protected:
  // A clock bound after construction runs a pass at once; during construction the back pointer is
  // not set yet, and the pass waits for the clock.
  void onNotifierIs() override;
};

using IpRouteTableSm = BasicIpRouteTableSm<Ipv4Routes>;
using IpRoute6TableSm = BasicIpRouteTableSm<Ipv6Routes>;
extern template class BasicIpRouteTableSm<Ipv4Routes>;
extern template class BasicIpRouteTableSm<Ipv6Routes>;

}  // namespace IpSnmp
