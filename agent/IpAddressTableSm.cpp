// The address machine itself: its inputs, the per-interface reactors it keeps for them, the IpMib of
// each VRF that is up, and the passes over all interfaces.
#include "agent/IpAddressTableSm.h"

#include <initializer_list>
#include <type_traits>

#include "agent/AgentTrace.h"

namespace IpSnmp {

// Each input reactor's replay is its first pass: configuration before status, IPv4 before IPv6.
// The reactors are made once every member stands, since their replays fill the members.
IpAddressTableSm::IpAddressTableSm(const Inputs& inputs) : ipMib_(inputs.ipMib) {
  intfStatusDir_ = Quor::reactorOn<QuorIntfStatusDir>(inputs.intfStatusDir, this);
  config_ = Quor::reactorOn<QuorConfig>(inputs.config, this);
  status_ = Quor::reactorOn<QuorStatus>(inputs.status, this);
  config6_ = Quor::reactorOn<QuorConfig6>(inputs.config6, this);
  status6_ = Quor::reactorOn<QuorStatus6>(inputs.status6, this);
}

namespace {

template <class R>
void clearBackPointers(Quor::HashMap<R, Pelt::IntfId>& reactors) {
  for (auto it = reactors.begin(); it; ++it) it->ipAddressTableSmIs(nullptr);
}

template <class Input>
void clearBackPointer(const Quor::Ptr<Input>& reactor) {
  if (reactor) reactor->ipAddressTableSmIs(nullptr);
}

}  // namespace

IpAddressTableSm::~IpAddressTableSm() {
  quorDoZombieReactors(true);
  // A reactor that a notification still holds must not reach back into a machine that is gone.
  clearBackPointer(intfStatusDir_);
  clearBackPointer(config_);
  clearBackPointer(status_);
  clearBackPointer(config6_);
  clearBackPointer(status6_);
  clearBackPointers(ipIntfConfig_);
  clearBackPointers(ipIntfStatus_);
  clearBackPointers(ip6IntfConfig_);
  clearBackPointers(ip6IntfStatus_);
}

Quor::Ptr<const Interface::AllIntfStatusDir> IpAddressTableSm::intfStatusDir() const {
  return intfStatusDir_ ? intfStatusDir_->notifier() : nullptr;
}

void IpAddressTableSm::vrfIpMibIs(const Quor::Ptr<IpMib>& ipMib) {
  if (!ipMib)
    Quor::throwRangeException(
        "null _vrfIpMib parameter to mutator for IpSnmp::IpAddressTableSm::vrfIpMib not allowed\"");
  if (QuorVrfIpMib* holder = vrfIpMib_.member(ipMib->name()))
    holder->ipMibIs(ipMib);
  else
    vrfIpMib_.memberIs(Quor::makePtr<QuorVrfIpMib>(ipMib));
}

Quor::Ptr<IpMib> IpAddressTableSm::vrfIpMibDel(const Quor::Name& name) {
  const L3::VrfName vrf(name);
  for (auto it = ipIntfConfig_.begin(); it; ++it) it->vrfGone(vrf);
  for (auto it = ipIntfStatus_.begin(); it; ++it) it->vrfGone(vrf);
  Quor::Ptr<QuorVrfIpMib> holder = vrfIpMib_.deleteMember(name);
  return holder ? holder->ipMib() : nullptr;
}

IpMib* IpAddressTableSm::vrfIpMib(const Quor::Name& name) const {
  QuorVrfIpMib* holder = vrfIpMib_.member(name);
  return holder ? holder->ipMib().ptr() : nullptr;
}

IpMib* IpAddressTableSm::ipMibOf(const L3::VrfName& vrf) const {
  return vrf.isDefault() ? ipMib_.ptr() : vrfIpMib(vrf.nameValue());
}

template <class R>
Quor::ValidPtr<R> IpAddressTableSm::reactorIs(Reactors<R>& reactors, const Quor::Ptr<const typename R::Entity>& entity) {
  if (!entity) Quor::throwRangeException(AddressSide::nullEntityText(R::Side::member));
  Quor::Ptr<R> reactor = reactors.member(entity->intfId());
  if (reactor) {
    reactor->notifierIs(entity);
  } else {
    reactor = Quor::makePtr<R>(this, entity);
    reactors.memberIs(reactor);
  }
  reactor->quorDoZombieReactors(quorMarkedForDeletion());
  return reactor;
}

template <class R>
Quor::Ptr<const typename R::Entity> IpAddressTableSm::reactorDel(Reactors<R>& reactors, Pelt::IntfId intfId) {
  Quor::Ptr<R> reactor = reactors.deleteMember(intfId);
  if (!reactor) return nullptr;
  reactor->quorDoZombieReactors(true);
  reactor->ipAddressTableSmIs(nullptr);
  Quor::Ptr<const typename R::Entity> entity = reactor->notifier();
  reactor->notifierIs(nullptr);
  return entity;
}

Quor::ValidPtr<IpAddressTableSm::QuorIpIntfConfig> IpAddressTableSm::ipIntfConfigIs(
    const Quor::Ptr<const Ip::IpIntfConfig>& entity) {
  return reactorIs(ipIntfConfig_, entity);
}

Quor::ValidPtr<IpAddressTableSm::QuorIpIntfStatus> IpAddressTableSm::ipIntfStatusIs(
    const Quor::Ptr<const Ip::IpIntfStatus>& entity) {
  return reactorIs(ipIntfStatus_, entity);
}

Quor::ValidPtr<IpAddressTableSm::QuorIp6IntfConfig> IpAddressTableSm::ip6IntfConfigIs(
    const Quor::Ptr<const Ip6::IntfConfig>& entity) {
  return reactorIs(ip6IntfConfig_, entity);
}

Quor::ValidPtr<IpAddressTableSm::QuorIp6IntfStatus> IpAddressTableSm::ip6IntfStatusIs(
    const Quor::Ptr<const Ip6::IntfStatus>& entity) {
  return reactorIs(ip6IntfStatus_, entity);
}

Quor::Ptr<const Ip::IpIntfConfig> IpAddressTableSm::ipIntfConfigDel(Pelt::IntfId intfId) {
  return reactorDel(ipIntfConfig_, intfId);
}

Quor::Ptr<const Ip::IpIntfStatus> IpAddressTableSm::ipIntfStatusDel(Pelt::IntfId intfId) {
  return reactorDel(ipIntfStatus_, intfId);
}

Quor::Ptr<const Ip6::IntfConfig> IpAddressTableSm::ip6IntfConfigDel(Pelt::IntfId intfId) {
  return reactorDel(ip6IntfConfig_, intfId);
}

Quor::Ptr<const Ip6::IntfStatus> IpAddressTableSm::ip6IntfStatusDel(Pelt::IntfId intfId) {
  return reactorDel(ip6IntfStatus_, intfId);
}

template <class Input>
void IpAddressTableSm::followIntf(const Input& input, Pelt::IntfId intfId) {
  auto& reactors = reactorsOf(input);
  using Side = typename std::remove_reference_t<decltype(reactors)>::Member::Side;
  if (auto entity = Side::entity(input, intfId))
    reactorIs(reactors, entity);
  else
    reactorDel(reactors, intfId);
}

template <class Input>
void IpAddressTableSm::reconcileIntfs(const Input& input) {
  auto& reactors = reactorsOf(input);
  using Side = typename std::remove_reference_t<decltype(reactors)>::Member::Side;
  for (const auto& [intfId, entity] : Side::entities(input)) reactorIs(reactors, entity);
  // The walk goes on past a reactor that it removes.
  for (auto it = reactors.begin(); it; ++it)
    if (!Side::entity(input, it.key())) reactorDel(reactors, it.key());
}

template <class Input>
void IpAddressTableSm::QuorIntfInput<Input>::follow(const Pelt::IntfId& intfId) {
  if (ipAddressTableSm_ && this->notifier()) ipAddressTableSm_->followIntf(*this->notifier(), intfId);
}

template <class Input>
void IpAddressTableSm::QuorIntfInput<Input>::reconcile() {
  if (ipAddressTableSm_ && this->notifier()) ipAddressTableSm_->reconcileIntfs(*this->notifier());
}

template class IpAddressTableSm::QuorIntfInput<Ip::Config>;
template class IpAddressTableSm::QuorIntfInput<Ip::Status>;
template class IpAddressTableSm::QuorIntfInput<Ip6::Config>;
template class IpAddressTableSm::QuorIntfInput<Ip6::Status>;

Quor::Ptr<const Interface::IntfStatus> IpAddressTableSm::IntfBinding::statusInDirectory() const {
  Quor::Ptr<const Interface::AllIntfStatusDir> dir = ipAddressTableSm_->intfStatusDir();
  return dir ? dir->intfStatus(intfId_) : nullptr;
}

bool IpAddressTableSm::IntfBinding::intfStatusChanged(const Quor::Ptr<const Interface::IntfStatus>& status) {
  if (status == intfStatus_) return false;
  intfStatus_ = status;
  return true;
}

void IpAddressTableSm::QuorIntfStatusDir::onIntfStatus(const Pelt::IntfId& intfId) {
  if (ipAddressTableSm_) ipAddressTableSm_->handleIntfStatus(intfId);
}

void IpAddressTableSm::handleIntfStatus(Pelt::IntfId intfId) {
  IPSNMP_HANDLER("void IpSnmp::IpAddressTableSm::handleIntfStatus(Pelt::IntfId)");
  QTRACE(agentTracer(), 8, "void IpSnmp::IpAddressTableSm::handleIntfStatus(Pelt::IntfId)" << " for " << intfId);
  Quor::Ptr<const Interface::AllIntfStatusDir> dir = intfStatusDir();
  Quor::Ptr<const Interface::IntfStatus> status = dir ? dir->intfStatus(intfId) : nullptr;
  if (QuorIpIntfConfig* reactor = ipIntfConfig_.member(intfId)) reactor->intfStatusIs(status);
  if (QuorIpIntfStatus* reactor = ipIntfStatus_.member(intfId)) reactor->intfStatusIs(status);
  if (QuorIp6IntfConfig* reactor = ip6IntfConfig_.member(intfId)) reactor->intfStatusIs(status);
  if (QuorIp6IntfStatus* reactor = ip6IntfStatus_.member(intfId)) reactor->intfStatusIs(status);
}

template <class R>
void IpAddressTableSm::letIntoVrf(Reactors<R>& reactors, const L3::VrfName& vrf) {
  for (auto it = reactors.begin(); it; ++it) {
    const auto& entity = it->notifier();
    L3::VrfName intfVrf = entity ? L3::Intf::vrfOf(R::Side::l3(*entity)) : L3::VrfName();
    if (intfVrf == vrf) it->handleVrf(intfVrf);
  }
}

void IpAddressTableSm::handleIntfInVrf(const Quor::Name& name) {
  IPSNMP_HANDLER("void IpSnmp::IpAddressTableSm::handleIntfInVrf(Quor::Name)");
  QTRACE(agentTracer(), 8, "void IpSnmp::IpAddressTableSm::handleIntfInVrf(Quor::Name)" << " for " << name);
  const L3::VrfName vrf(name);
  // IPv6 addresses stand in the default VRF whatever the interface's VRF: they have nothing to move.
  letIntoVrf(ipIntfConfig_, vrf);
  letIntoVrf(ipIntfStatus_, vrf);
}

void IpAddressTableSm::quorZombieNested(bool flag) {
  for (Quor::Reactor* input : std::initializer_list<Quor::Reactor*>{intfStatusDir_.ptr(), config_.ptr(), status_.ptr(),
                                                                     config6_.ptr(), status6_.ptr()})
    if (input) input->quorDoZombieReactors(flag);
  for (auto it = ipIntfConfig_.begin(); it; ++it) it->quorDoZombieReactors(flag);
  for (auto it = ipIntfStatus_.begin(); it; ++it) it->quorDoZombieReactors(flag);
  for (auto it = ip6IntfConfig_.begin(); it; ++it) it->quorDoZombieReactors(flag);
  for (auto it = ip6IntfStatus_.begin(); it; ++it) it->quorDoZombieReactors(flag);
}

std::string AddressSide::handlerSignature(const char* reactor, const char* handler) {
  return std::string("void IpSnmp::IpAddressTableSm::") + reactor + "::" + handler;
}

std::string AddressSide::nullEntityText(const char* member) {
  return std::string("null _") + member + " parameter to mutator for IpSnmp::IpAddressTableSm::" + member +
         " not allowed\"";
}

}  // namespace IpSnmp
