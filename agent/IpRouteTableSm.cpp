// The route machine: its inputs, the intake that marks prefixes, and the time-sliced pass that
// rebuilds their rows.
#include "agent/IpRouteTableSm.h"

#include <initializer_list>
#include <limits>
#include <type_traits>
#include <utility>

#include "agent/AgentTrace.h"
#include "model/ProtocolMap.h"

namespace IpSnmp {

namespace {

template <class Reactor>
auto notifierOf(const Quor::Ptr<Reactor>& reactor) -> std::remove_cvref_t<decltype(reactor->notifier())> {
  return reactor ? reactor->notifier() : nullptr;
}

// The route types that have a protocol of their own in the MIB; every other type reads as "other".
constexpr std::pair<Routing::Fib::RouteType, IpRouteProtocol> routeProtocols[] = {
    {Routing::Fib::routeTypeStaticConfig, ipRouteProtocolNetmgmt},
    {Routing::Fib::routeTypeRip, ipRouteProtocolRip},
    {Routing::Fib::routeTypeConnected, ipRouteProtocolLocal},
    {Routing::Fib::routeTypeOspfIntraArea, ipRouteProtocolOspf},
    {Routing::Fib::routeTypeOspfInterArea, ipRouteProtocolOspf},
    {Routing::Fib::routeTypeOspfExternalType1, ipRouteProtocolOspf},
    {Routing::Fib::routeTypeOspfExternalType2, ipRouteProtocolOspf},
    {Routing::Fib::routeTypeOspfNssaType1, ipRouteProtocolOspf},
    {Routing::Fib::routeTypeOspfNssaType2, ipRouteProtocolOspf},
    {Routing::Fib::routeTypeIbgp, ipRouteProtocolBgp},
    {Routing::Fib::routeTypeEbgp, ipRouteProtocolBgp},
};

// Types 0 to 3 are forwarding-only kinds (invalid, receive, broadcast receive, dropped).
bool suitableForFib(Routing::Fib::RouteType type) { return type < 0 || type > Routing::Fib::routeTypeDropped; }

}  // namespace

template <class Family>
BasicIpRouteTableSm<Family>::BasicIpRouteTableSm(const Inputs& inputs)
    : ipForwardMib_(Quor::makePtr<QuorIpForwardMib>(inputs.ipForwardMib)),
      intfStatusDir_(Quor::reactorOn<QuorIntfStatusDir>(inputs.intfStatusDir, this)),
      routeStatus_(Quor::reactorOn<QuorRouteStatus>(inputs.routeStatus, this)),
      forwardingStatus_(Quor::reactorOn<QuorForwardingStatus>(inputs.forwardingStatus, this)),
      // Scheduled from the start: the first pass runs as soon as the event loop next runs the clock.
      clock_(Quor::makePtr<QuorClock>(nullptr)) {
  clock_->timeMinIs(0.0);
  clock_->notifierIs(inputs.clock.ptr());
  doInstantiate();
  handleRoute();
  clock_->ipRouteTableSmIs(this);
}

template <class Family>
BasicIpRouteTableSm<Family>::~BasicIpRouteTableSm() {
  quorDoZombieReactors(true);
  // A reactor that a notification still holds must not reach back into a machine that is gone.
  if (intfStatusDir_) intfStatusDir_->ipRouteTableSmIs(nullptr);
  if (routeStatus_) routeStatus_->ipRouteTableSmIs(nullptr);
  if (forwardingStatus_) forwardingStatus_->ipRouteTableSmIs(nullptr);
  if (clock_) clock_->ipRouteTableSmIs(nullptr);
  fecRouteListSm_ = nullptr;
  fecRouteList_ = nullptr;
  intfDepDelAll();
}

template <class Family>
Quor::Ptr<IpForwardMib> BasicIpRouteTableSm<Family>::ipForwardMib() const { return ipForwardMib_ ? ipForwardMib_->table() : nullptr; }
template <class Family>
Quor::Ptr<const Interface::AllIntfStatusDir> BasicIpRouteTableSm<Family>::intfStatusDir() const { return notifierOf(intfStatusDir_); }
template <class Family>
auto BasicIpRouteTableSm<Family>::routeStatus() const -> Quor::Ptr<const RouteStatus> { return notifierOf(routeStatus_); }
template <class Family>
auto BasicIpRouteTableSm<Family>::forwardingStatus() const -> Quor::Ptr<const ForwardingStatus> {
  return notifierOf(forwardingStatus_);
}
template <class Family>
Quor::Ptr<const Quor::Clock> BasicIpRouteTableSm<Family>::clock() const { return notifierOf(clock_); }

template <class Family>
auto BasicIpRouteTableSm<Family>::fecRouteListIs() -> Quor::ValidPtr<FecRouteList> {
  if (!fecRouteList_) fecRouteList_ = Quor::makePtr<FecRouteList>();
  return fecRouteList_;
}

template <class Family>
auto BasicIpRouteTableSm<Family>::fecRouteListSmIs(const Quor::Ptr<const RouteStatus>& routeStatus,
                                                   const Quor::Ptr<const ForwardingStatus>& forwardingStatus,
                                                   const Quor::Ptr<FecRouteList>& fecRouteList)
    -> Quor::ValidPtr<FecRouteListSm> {
  fecRouteListSm_ = Quor::makePtr<FecRouteListSm>(routeStatus, forwardingStatus, fecRouteList, clock());
  return fecRouteListSm_;
}

template <class Family>
void BasicIpRouteTableSm<Family>::backlogIs(const Prefix& prefix, bool) {
  backlog_.memberIs(prefix);
}

template <class Family>
auto BasicIpRouteTableSm<Family>::intfDepIs(const Pelt::IntfId& intfId) -> Quor::ValidPtr<PrefixList> {
  if (PrefixList* member = intfDep_.member(intfId)) return member;
  auto member = Quor::makePtr<PrefixList>(intfId);
  intfDep_.memberIs(member);
  return member;
}

template <class Family>
void BasicIpRouteTableSm<Family>::intfDepDelAll() {
  for (auto it = intfDep_.begin(); it; ++it) intfDepDel(it.key());
}

template <class Family>
void BasicIpRouteTableSm<Family>::handleRoute() {
  IPSNMP_HANDLER("void IpSnmp::IpRouteTableSm::handleRoute()");
  QTRACE(agentTracer(), 8, "void IpSnmp::IpRouteTableSm::handleRoute()" << " initially");
  scanning_ = true;
  scanAt_ = {};
  scannedThrough_.reset();
  doSetupBacklogTimer();
}

template <class Family>
bool BasicIpRouteTableSm<Family>::doScanStep() {
  // Until the list holds every route, a FEC change could miss a prefix built here.
  if (!scanning_ || !fecRouteListSm_->filled()) return false;
  const typename RouteStatus::RouteMap& routes = routeStatus()->route();
  typename RouteStatus::RouteMap::Wrapper route;
  try {
    route = scannedThrough_ ? routes.next(*scannedThrough_, scanAt_) : routes.first(scanAt_);
  } catch (const Tarn::CorruptionDetectedException& e) {
    routes.corruptionDetected(e.text());  // what was built so far stays; the table now reads as empty
  }
  if (!route) {
    scanning_ = false;
    return false;
  }
  scannedThrough_ = route.key();
  QTRACE(agentTracer(), 8, "void IpSnmp::IpRouteTableSm::handleRoute()" << " initially for " << route.key());
  doRebuildPrefix(route.key(), &route.value());
  return true;
}

template <class Family>
void BasicIpRouteTableSm<Family>::handleRoute(const Prefix& prefix) {
  IPSNMP_HANDLER("void IpSnmp::IpRouteTableSm::handleRoute(const Pelt::Prefix&)");
  QTRACE(agentTracer(), 8, "void IpSnmp::IpRouteTableSm::handleRoute(const Pelt::Prefix&)" << " for " << prefix);
  backlogIs(prefix, true);
  doSetupBacklogTimer();
}

// A walk already under way for this FEC starts again from its first prefix: the change it follows
// may have come after the walk passed some of them.
template <class Family>
void BasicIpRouteTableSm<Family>::handleFec(const Tarn::Fib::FecId& fecId) {
  IPSNMP_HANDLER("void IpSnmp::IpRouteTableSm::handleFec(const Tarn::Fib::FecId&)");
  QTRACE(agentTracer(), 8, "void IpSnmp::IpRouteTableSm::handleFec(const Tarn::Fib::FecId&)" << " for " << fecId);
  if (!fecRouteList_->walkFrom(fecId)) return;
  if (fecWalking_.insert(fecId.value()).second) fecWalks_.push_back(fecId);
  doSetupBacklogTimer();
}

template <class Family>
auto BasicIpRouteTableSm<Family>::nextOfFecWalks() -> std::optional<Prefix> {
  while (!fecWalks_.empty()) {
    const Tarn::Fib::FecId fecId = fecWalks_.front();
    if (std::optional<Prefix> prefix = fecRouteList_->walkNext(fecId)) {
      QTRACE(agentTracer(), 9, "adding " << *prefix << " to backlog for " << fecId);
      return prefix;
    }
    fecWalking_.erase(fecId.value());
    fecWalks_.pop_front();
  }
  return std::nullopt;
}

template <class Family>
void BasicIpRouteTableSm<Family>::handleIntfStatus(Pelt::IntfId intfId) {
  IPSNMP_HANDLER("void IpSnmp::IpRouteTableSm::handleIntfStatus(Pelt::IntfId)");
  QTRACE(agentTracer(), 8, "void IpSnmp::IpRouteTableSm::handleIntfStatus(Pelt::IntfId)" << " for " << intfId);
  Quor::Ptr<PrefixList> waiting = intfDep_.member(intfId);
  if (!waiting) {
    QTRACE(agentTracer(), 8, "no prefixes for " << intfId);
    return;
  }
  const Quor::Ptr<const Interface::AllIntfStatusDir> statuses = intfStatusDir();
  const bool present = statuses && statuses->intfStatus(intfId) != nullptr;
  for (auto it = waiting->prefixes().begin(); it; ++it) {
    if (present) {
      QTRACE(agentTracer(), 9, "adding " << it.key() << " to backlog due to " << intfId);
      backlogIs(it.key(), true);
    }
    waiting->prefixDel(it.key());
  }
  if (present) doSetupBacklogTimer();
}

template <class Family>
void BasicIpRouteTableSm<Family>::doInstantiate() {
  for (const auto& [type, protocol] : routeProtocols) protoMap.protocolIs(type, protocol);
  fecRouteListSmIs(routeStatus(), forwardingStatus(), fecRouteListIs());
}

template <class Family>
void BasicIpRouteTableSm<Family>::doSetupBacklogTimer() {
  if (clock_->timeMin() > std::numeric_limits<double>::max()) clock_->timeMinIs(0.0);
}

// The backlog first, then the FEC walks, then the scan; the time is looked at before each prefix.
template <class Family>
void BasicIpRouteTableSm<Family>::doProcessIpRouteBacklog() {
  IPSNMP_HANDLER("void IpSnmp::IpRouteTableSm::doProcessIpRouteBacklog()");
  QTRACE(agentTracer(), 8, "void IpSnmp::IpRouteTableSm::doProcessIpRouteBacklog()");
  const double deadline = Quor::sliceDeadline(backlogQuantum_);
  double wakeup = Quor::never;
  typename Backlog::Iterator it = backlog_.startAtHash(bookmark_);
  QTRACE(agentTracer(), 2, "Starting backlog processing");
  auto timeUp = [&] {
    if (Quor::now() <= deadline) return false;
    wakeup = 0.0;
    QTRACE(agentTracer(), 2, "Backlog processing yielding");
    return true;
  };
  for (;;) {
    // The end of the map is not the end of the pass: the members ahead of the bookmark come next.
    if (!it) it = backlog_.begin();
    if (it) {
      const Prefix prefix = it.key();
      if (timeUp()) {
        bookmarkIs(prefix);
        break;
      }
      doRebuildPrefix(prefix);
      backlogDel(it);
      ++it;
      continue;
    }
    if (!fecWalks_.empty() || scanning_) {
      if (timeUp()) break;
      if (std::optional<Prefix> prefix = nextOfFecWalks()) {
        doRebuildPrefix(*prefix);
        continue;
      }
      if (doScanStep()) continue;
      if (scanning_) {  // the list is still filling: the scan goes on at the next opportunity
        wakeup = 0.0;
        break;
      }
    }
    QTRACE(agentTracer(), 2, "Backlog processing done");
    break;
  }
  clock_->timeMinIs(wakeup);
}

template <class Family>
void BasicIpRouteTableSm<Family>::doRebuildPrefix(const Prefix& prefix, const Route* known) {
  IpForwardMib& table = *ipForwardMib();
  Family::rowsDel(table, prefix);

  const Route route = known ? *known : readRoute(prefix);
  if (route == Route()) {
    QTRACE(agentTracer(), 6, prefix << " has no route");
    return;
  }
  const Fec fec = readFec(route.fecId);
  if (fec == Fec()) {
    QTRACE(agentTracer(), 6, prefix << " has a route but can't find fec " << route.fecId);
    return;
  }
  if (!suitableForFib(route.routeType)) {
    QTRACE(agentTracer(), 8, "Route is of type " << route.routeType << ", not suitable for fib");
    return;
  }
  const Interface::AllIntfStatusDir& intfStatuses = *intfStatusDir();
  // ViaIndex raises the range failure for a count beyond the 128 vias that a FEC can hold.
  for (U32 i = 0; i < fec.viaCount; ++i) {
    const auto& via = fec.via(Tarn::Fib::ViaIndex(i));
    if (!via.intfId && via.hop == decltype(via.hop)()) continue;  // says nothing
    S32 ifIndex = 0;
    if (via.intfId) {
      Quor::Ptr<const Interface::IntfStatus> status = intfStatuses.intfStatus(via.intfId);
      if (!status) {
        QTRACE(agentTracer(), 8,
               "Can't find intfStatus for " << via.intfId << ", adding " << prefix << " to intf dep list");
        intfDepIs(via.intfId)->prefixIs(prefix, true);
        continue;
      }
      ifIndex = intfIfIndex(status);
      if (ifIndex < 0) {
        QTRACE(agentTracer(), 8, via.intfId << " has ifIndex " << ifIndex << ", skipping");
        continue;
      }
    }
    try {
      Family::rowIs(table, prefix, via, static_cast<U32>(ifIndex), route);
    } catch (const Quor::NameInUseException&) {
      QTRACE(agentTracer(), 8, "Route already in ipCidrRouteTable: " << prefix << " via " << via);
    }
  }
}

template <class Family>
auto BasicIpRouteTableSm<Family>::readRoute(const Prefix& prefix) const -> Route {
  const Quor::Ptr<const RouteStatus> status = routeStatus();
  if (!status) return Route();
  const typename RouteStatus::RouteMap& routes = status->route();
  try {
    return routes.lookup(prefix).value();
  } catch (const Tarn::CorruptionDetectedException& e) {
    routes.corruptionDetected(e.text());
    return Route();
  }
}

template <class Family>
auto BasicIpRouteTableSm<Family>::readFec(Tarn::Fib::FecId fecId) const -> Fec {
  const Quor::Ptr<const ForwardingStatus> status = forwardingStatus();
  if (!status) return Fec();
  const typename ForwardingStatus::FecMap& fecs = status->fec();
  try {
    return fecs.lookup(fecId).value();
  } catch (const Tarn::CorruptionDetectedException& e) {
    fecs.corruptionDetected(e.text());
    return Fec();
  }
}

template <class Family>
void BasicIpRouteTableSm<Family>::quorZombieNested(bool flag) {
  for (Quor::Reactor* input : std::initializer_list<Quor::Reactor*>{ipForwardMib_.ptr(), intfStatusDir_.ptr(),
                                                                     routeStatus_.ptr(), forwardingStatus_.ptr(),
                                                                     clock_.ptr()})
    if (input) input->quorDoZombieReactors(flag);
}

template <class Family>
void BasicIpRouteTableSm<Family>::QuorIntfStatusDir::onIntfStatus(const Pelt::IntfId& intfId) {
  if (this->ipRouteTableSm_) this->ipRouteTableSm_->handleIntfStatus(intfId);
}

template <class Family>
void BasicIpRouteTableSm<Family>::QuorRouteStatus::onRoute(const Prefix& prefix) {
  if (this->ipRouteTableSm_) this->ipRouteTableSm_->handleRoute(prefix);
}

template <class Family>
void BasicIpRouteTableSm<Family>::QuorForwardingStatus::onFec(const Tarn::Fib::FecId& fecId) {
  if (this->ipRouteTableSm_) this->ipRouteTableSm_->handleFec(fecId);
}

template <class Family>
void BasicIpRouteTableSm<Family>::QuorClock::onTime() {
  if (this->ipRouteTableSm_) this->ipRouteTableSm_->doProcessIpRouteBacklog();
}

template <class Family>
void BasicIpRouteTableSm<Family>::QuorClock::onNotifierIs() {
  if (this->ipRouteTableSm_) this->ipRouteTableSm_->doProcessIpRouteBacklog();
}

template class BasicIpRouteTableSm<Ipv4Routes>;
template class BasicIpRouteTableSm<Ipv6Routes>;

}  // namespace IpSnmp
