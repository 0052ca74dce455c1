// The IPv6 reactors of the address machine, one template for the configuration and the status side.
//
// Every address of the interface's collection counts, always in the default VRF's IpMib. Notifications
// come by address; a new status runs over the whole collection and adds each address again without
// deleting first, and oldAddr remembers what was passed on so that the reactor's removal can take it
// back.
#include "agent/AgentTrace.h"
#include "agent/IpAddressTableSm.h"

namespace IpSnmp {

template <class S>
IpAddressTableSm::QuorIp6Intf<S>::QuorIp6Intf(IpAddressTableSm* sm, const Quor::Ptr<const Entity>& entity)
    : IntfBinding(sm, entity->intfId()) {
  this->notifierIs(entity);
  handleAddr();  // every address ends at "no intfStatus"
  intfStatusIs(statusInDirectory());
  handleAddr();
}

template <class S>
void IpAddressTableSm::QuorIp6Intf<S>::intfStatusIs(const Quor::Ptr<const Interface::IntfStatus>& status) {
  if (intfStatusChanged(status)) handleAddr();
}

template <class S>
void IpAddressTableSm::QuorIp6Intf<S>::handleAddr(const Pelt::Ip6AddrWithMask& key) {
  IPSNMP_SIDE_HANDLER(S, "handleAddr(const Pelt::Ip6AddrWithMask&)");
  QTRACE(agentTracer(), 8, signature << " for " << intfId_ << ", " << key);
  if (!ipAddressTableSm_) return;
  if (!intfStatus()) {
    QTRACE(agentTracer(), 8, "no intfStatus");
    return;
  }
  // Before the look at the entity, so that a link-local address is ignored when it leaves as well.
  if (key.addr().isLinkLocal()) {
    QTRACE(agentTracer(), 1, "Ignoring link-local address " << key);
    return;
  }
  const Ip6::AddressInfo info = this->notifier()->addr(key);
  if (info == Ip6::AddressInfo()) {
    ipAddressTableSm_->doDelAddr6(intfId_, S::source, key);
    oldAddrDel(key);
    return;
  }
  ipAddressTableSm_->doAddAddr6(intfId_, S::source, ifIndex(), key);
  oldAddrIs(info);
}

template <class S>
void IpAddressTableSm::QuorIp6Intf<S>::handleAddr() {
  IPSNMP_SIDE_HANDLER(S, "handleAddr()");
  QTRACE(agentTracer(), 8, signature << " for " << intfId_);
  if (!this->notifier()) return;
  // Over the entity, not oldAddr: an address that left while there was no status is not visited.
  for (const auto& [key, info] : this->notifier()->addrs()) handleAddr(key);
}

template <class S>
void IpAddressTableSm::QuorIp6Intf<S>::oldAddrIs(const Ip6::AddressInfo& info) {
  if (QuorOldAddr* old = oldAddr_.member(info.key()))
    old->infoIs(info);
  else
    oldAddr_.memberIs(Quor::makePtr<QuorOldAddr>(info));
}

template <class S>
void IpAddressTableSm::QuorIp6Intf<S>::handleDel() {
  IPSNMP_SIDE_HANDLER(S, "handleDel()");
  QTRACE(agentTracer(), 8, signature << " for " << intfId_);
  if (!ipAddressTableSm_ || !intfStatus()) return;
  for (auto it = oldAddr_.begin(); it; ++it) ipAddressTableSm_->doDelAddr6(intfId_, S::source, it.key());
}

template class IpAddressTableSm::QuorIp6Intf<AddressSide::Ip6Config>;
template class IpAddressTableSm::QuorIp6Intf<AddressSide::Ip6Status>;

}  // namespace IpSnmp
