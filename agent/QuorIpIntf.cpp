// The IPv4 reactors of the address machine, one template for the configuration and the status side.
//
// The address is deleted and added in the VRF that the store names, and handleVrf moves it from
// currentVrf, the VRF whose table holds it, to a new one. The two sides differ only in what
// AddressSide gives them; the difference in handleVrf's early exit is deliberate.
#include "agent/AgentTrace.h"
#include "agent/IpAddressTableSm.h"

namespace IpSnmp {

template <class S>
IpAddressTableSm::QuorIpIntf<S>::QuorIpIntf(IpAddressTableSm* sm, const Quor::Ptr<const Entity>& entity)
    : IntfBinding(sm, entity->intfId()) {
  this->notifierIs(entity);  // its replay, handleAddr, finds no status yet
  intfStatusIs(statusInDirectory());
  handleAddr();
  l3Is(S::l3(*entity));
}

template <class S>
void IpAddressTableSm::QuorIpIntf<S>::onNotifierIs() {
  handleAddr();
  if constexpr (S::l3FollowsEntity) {
    if (l3_) l3Is(S::l3(*this->notifier()));
  }
}

template <class S>
void IpAddressTableSm::QuorIpIntf<S>::intfStatusIs(const Quor::Ptr<const Interface::IntfStatus>& status) {
  if (intfStatusChanged(status)) handleAddr();
}

template <class S>
void IpAddressTableSm::QuorIpIntf<S>::l3Is(const Quor::Ptr<const typename S::L3Entity>& l3) {
  if (!l3_) l3_ = Quor::makePtr<QuorL3>(this);
  l3_->notifierIs(l3);
}

template <class S>
L3::VrfName IpAddressTableSm::QuorIpIntf<S>::storeVrf() const {
  return this->notifier() ? L3::Intf::vrfOf(S::l3(*this->notifier())) : L3::VrfName();
}

template <class S>
Pelt::IpAddrWithMask IpAddressTableSm::QuorIpIntf<S>::address() const {
  return this->notifier() ? S::address(*this->notifier()) : Pelt::IpAddrWithMask();
}

template <class S>
void IpAddressTableSm::QuorIpIntf<S>::handleAddr() {
  IPSNMP_SIDE_HANDLER(S, "handleAddr()");
  QTRACE(agentTracer(), 8, signature << " for " << intfId_);
  if (!ipAddressTableSm_) return;
  if (!intfStatus()) {
    QTRACE(agentTracer(), 8, "no intfStatus");
    return;
  }
  const L3::VrfName vrf = storeVrf();
  if (!oldAddr_.addr().isZero()) ipAddressTableSm_->doDelAddr(intfId_, S::source, vrf, oldAddr_);
  const Pelt::IpAddrWithMask current = address();
  ipAddressTableSm_->doAddAddr(intfId_, S::source, ifIndex(), vrf, current);
  oldAddr_ = current;
}

template <class S>
void IpAddressTableSm::QuorIpIntf<S>::handleL3Vrf() {
  handleVrf(L3::Intf::vrfOf(l3_->notifier()));
}

template <class S>
void IpAddressTableSm::QuorIpIntf<S>::handleVrf(const L3::VrfName& vrf) {
  IPSNMP_SIDE_HANDLER(S, "handleVrf(L3::VrfName)");
  QTRACE(agentTracer(), 8, signature << " for " << intfId_ << " in " << vrf);
  if (!ipAddressTableSm_) return;
  if (!intfStatus()) {
    QTRACE(agentTracer(), 8, "no intfStatus");
    return;
  }
  if (S::staysFor(vrf, currentVrf_)) return;
  const S32 index = ifIndex();
  const Pelt::IpAddrWithMask current = address();
  if (!currentVrf_.empty()) {
    if (!ipAddressTableSm_->ipMibOf(currentVrf_)) {
      QTRACE(agentTracer(), 8, "no ipmib in currentVrf " << currentVrf_);
      return;
    }
    if (!current.addr().isZero()) ipAddressTableSm_->doDelAddr(intfId_, S::source, currentVrf_, current);
    currentVrf_ = L3::VrfName();
  }
  if (!ipAddressTableSm_->ipMibOf(vrf)) {
    // The interface waits with an empty currentVrf until handleIntfInVrf lets it in.
    QTRACE(agentTracer(), 8, "no ipmib in vrf " << vrf);
    return;
  }
  ipAddressTableSm_->doAddAddr(intfId_, S::source, index, vrf, current);
  currentVrf_ = vrf;
}

template <class S>
void IpAddressTableSm::QuorIpIntf<S>::handleDel() {
  IPSNMP_SIDE_HANDLER(S, "handleDel()");
  QTRACE(agentTracer(), 8, signature << " for " << intfId_);
  // Without a status nothing is deleted: rows added before the status went stay behind.
  if (!ipAddressTableSm_ || !intfStatus()) return;
  ipAddressTableSm_->doDelAddr(intfId_, S::source, storeVrf(), oldAddr_);
}

template class IpAddressTableSm::QuorIpIntf<AddressSide::Ip4Config>;
template class IpAddressTableSm::QuorIpIntf<AddressSide::Ip4Status>;

}  // namespace IpSnmp
