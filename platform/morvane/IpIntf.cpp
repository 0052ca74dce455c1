#include "platform/morvane/IpIntf.h"

namespace Ip {

IpIntfConfig::IpIntfConfig(Pelt::IntfId intfId) : StoreEntity(intfId.stringValue()), intfId_(intfId) {}

void IpIntfConfig::addrWithMaskIs(const Pelt::IpAddrWithMask& addr) {
  assign<&NotifieeConst::onAddrWithMask>("addrWithMask", addrWithMask_, addr);
}

void IpIntfConfig::l3ConfigIs(const Quor::Ptr<L3::Intf::Config>& l3Config) {
  assign<&NotifieeConst::onL3Config>("l3Config", l3Config_, l3Config);
}

IpIntfStatus::IpIntfStatus(Pelt::IntfId intfId, Quor::Ptr<L3::Intf::Status> l3Status)
    : StoreEntity(intfId.stringValue()), intfId_(intfId), l3Status_(std::move(l3Status)) {}

void IpIntfStatus::activeAddrWithMaskIs(const Pelt::IpAddrWithMask& addr) {
  assign<&NotifieeConst::onActiveAddrWithMask>("activeAddrWithMask", activeAddrWithMask_, addr);
}

void Config::ipIntfConfigIs(const Quor::Ptr<IpIntfConfig>& member) {
  nonNull(member, "ipIntfConfig");
  memberIs<&NotifieeConst::onIpIntfConfig>("ipIntfConfig", ipIntfConfig_, member->intfId(), member);
}

void Config::ipIntfConfigDel(Pelt::IntfId id) {
  memberDel<&NotifieeConst::onIpIntfConfig>("ipIntfConfig", ipIntfConfig_, id);
}

void Status::ipIntfStatusIs(const Quor::Ptr<IpIntfStatus>& member) {
  nonNull(member, "ipIntfStatus");
  memberIs<&NotifieeConst::onIpIntfStatus>("ipIntfStatus", ipIntfStatus_, member->intfId(), member);
}

void Status::ipIntfStatusDel(Pelt::IntfId id) {
  memberDel<&NotifieeConst::onIpIntfStatus>("ipIntfStatus", ipIntfStatus_, id);
}

}  // namespace Ip
