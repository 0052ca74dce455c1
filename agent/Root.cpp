#include "agent/Root.h"

namespace IpSnmp {

Root::~Root() {
  ipAddressTableSmDel();
  arpTableSmDel();
  ipRouteTableSmDel();
  vrfIfTableSmDel();
  vrfRootSmDel();
  if (vrfRootDir_) vrfRootDir_->parentIs(nullptr);
  vrfRootDirDel();
}

Quor::ValidPtr<IpAddressTableSm> Root::ipAddressTableSmIs(
    const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir, const Quor::Ptr<IpMib>& ipMib,
    const Quor::Ptr<const Ip::Config>& config, const Quor::Ptr<const Ip::Status>& status,
    const Quor::Ptr<const Ip6::Config>& config6, const Quor::Ptr<const Ip6::Status>& status6) {
  return ipAddressTableSm_.machineIs(intfStatusDir, ipMib, config, status, config6, status6);
}

Quor::ValidPtr<ArpTableSm> Root::arpTableSmIs(const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
                                              const Quor::Ptr<IpMib>& ipMib,
                                              const Quor::Ptr<const Arp::Table::Status>& arpTarn,
                                              Vrf::VrfIdMap::VrfId arpTarnVrfId) {
  return arpTableSm_.machineIs(intfStatusDir, ipMib, arpTarn, arpTarnVrfId);
}

Quor::ValidPtr<IpRouteTableSm> Root::ipRouteTableSmIs(
    const Quor::Ptr<IpForwardMib>& ipForwardMib, const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
    const Quor::Ptr<const Tarn::Fib::RouteStatus>& routeStatus,
    const Quor::Ptr<const Tarn::Fib::ForwardingStatus>& forwardingStatus, const Quor::Ptr<const Quor::Clock>& clock) {
  return ipRouteTableSm_.machineIs(ipForwardMib, intfStatusDir, routeStatus, forwardingStatus, clock);
}

Quor::ValidPtr<VrfIfTableSm> Root::vrfIfTableSmIs(const Quor::Ptr<IpVrfMib>& ipVrfMib,
                                                  const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
                                                  const Quor::Ptr<const Ip::Config>& config) {
  return vrfIfTableSm_.machineIs(ipVrfMib, intfStatusDir, config);
}

Quor::ValidPtr<VrfRootDir> Root::vrfRootDirIs(const Quor::Name& name) {
  if (vrfRootDir_ && vrfRootDir_->name() == name) return vrfRootDir_;
  if (vrfRootDir_) vrfRootDir_->parentIs(nullptr);
  vrfRootDir_ = vrfRootDirFactory(name);
  vrfRootDir_->parentIs(this);
  return vrfRootDir_;
}

Quor::ValidPtr<VrfRootSm> Root::vrfRootSmIs(
    const Quor::Ptr<IpAddressTableSm>& ipAddressTableSm, const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
    const Quor::Ptr<const Routing::VrfConfigDir>& routingVrfConfigDir, const Quor::Ptr<const Quor::Dir>& routingVrfInfoDir,
    const Quor::Ptr<VrfMibsDir>& vrfMibsDir, const Quor::Ptr<VrfRootDir>& vrfRootDir,
    const Quor::Ptr<const Ip::AllVrfStatusLocal>& allVrfStatusLocal, const Quor::Ptr<const Ip::AllVrfConfig>& allVrfConfig,
    const Quor::Ptr<const Snmp::Status>& snmpStatus, const Quor::Ptr<IpVrfMib>& ipVrfMib,
    const Quor::Ptr<const Morvane::EntityManager>& entityManager, const Quor::Ptr<const Arp::Table::Status>& arpTarn,
    const Quor::Ptr<const Vrf::VrfIdMap::Status>& arpTarnVrfIdMap, const Quor::Ptr<ArpTableSm>& defaultVrfArpTableSm,
    SnmpContexts* snmpContexts) {
  return vrfRootSm_.machineIs(ipAddressTableSm, intfStatusDir, routingVrfConfigDir, routingVrfInfoDir, vrfMibsDir,
                              vrfRootDir, allVrfStatusLocal, allVrfConfig, snmpStatus, ipVrfMib, entityManager, arpTarn,
                              arpTarnVrfIdMap, defaultVrfArpTableSm, snmpContexts);
}

Quor::Ptr<Root> rootFactory(const Quor::Name& name) { return Quor::makePtr<Root>(name); }

}  // namespace IpSnmp
