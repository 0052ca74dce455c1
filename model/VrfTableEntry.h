#pragma once
// One row of vrfTable: a VRF with references to its live configuration and local status, read on
// every access, and the child that carries its routing side.
#include "model/VrfRoutingStatus.h"
#include "platform/morvane/IpVrf.h"
#include "platform/quor/RbTreeMap.h"

namespace IpSnmp {

class VrfTableEntry : public Quor::PtrInterface, public Quor::RbTreeLink {
 public:
  VrfTableEntry(Snmp::String vrfName, Quor::Ptr<const Ip::VrfConfig> vrfConfig,
                Quor::Ptr<const Ip::VrfStatusLocal> vrfStatusLocal)
      : vrfName_(std::move(vrfName)), vrfConfig_(std::move(vrfConfig)), vrfStatusLocal_(std::move(vrfStatusLocal)) {}

  const Snmp::String& fwkKey() const noexcept { return vrfName_; }
  const Snmp::String& vrfName() const noexcept { return vrfName_; }
  const Quor::Ptr<const Ip::VrfConfig>& vrfConfig() const noexcept { return vrfConfig_; }
  const Quor::Ptr<const Ip::VrfStatusLocal>& vrfStatusLocal() const noexcept { return vrfStatusLocal_; }
  const Quor::Ptr<VrfRoutingStatus>& vrfRoutingStatus() const noexcept { return vrfRoutingStatus_; }

  // The child of that name and configuration: kept when both are equal, else made anew.
  Quor::Ptr<VrfRoutingStatus> vrfRoutingStatusIs(const Quor::Name& name, const Quor::Ptr<const Routing::Config>& config);
  void vrfRoutingStatusDel() { vrfRoutingStatus_ = nullptr; }

  // The default route distinguisher without a configuration.
  Pelt::RouteDistinguisher routeDistinguisher() const {
    return vrfConfig_ ? vrfConfig_->routeDistinguisher() : Pelt::RouteDistinguisher();
  }
  // The zero state without a local status.
  Ip::VrfState vrfState() const { return vrfStatusLocal_ ? vrfStatusLocal_->state() : Ip::VrfState{}; }

 private:
  const Snmp::String vrfName_;
  const Quor::Ptr<const Ip::VrfConfig> vrfConfig_;
  const Quor::Ptr<const Ip::VrfStatusLocal> vrfStatusLocal_;
  Quor::Ptr<VrfRoutingStatus> vrfRoutingStatus_;
};

}  // namespace IpSnmp
