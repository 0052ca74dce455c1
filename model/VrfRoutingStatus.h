#pragma once
// The routing side of one VRF as oskelVrfTable shows it: a child entity of the VRF's row that holds
// the VRF's routing configuration and reads it on every access.
#include "platform/morvane/RoutingConfig.h"

namespace IpSnmp {

class VrfRoutingStatus : public Quor::Entity {
 public:
  class NotifieeConst : public Quor::Notifiee<VrfRoutingStatus> {};

  VrfRoutingStatus(Quor::Name name, Quor::Ptr<const Routing::Config> vrfConfig)
      : Entity(std::move(name)), vrfConfig_(std::move(vrfConfig)) {}
  const char* fwkType() const override { return "IpSnmp::VrfRoutingStatus"; }

  const Quor::Ptr<const Routing::Config>& vrfConfig() const noexcept { return vrfConfig_; }
  // Whether IPv4 routing is on; false without a configuration.
  bool ipv4() const { return vrfConfig_ && vrfConfig_->routing(); }

 private:
  const Quor::Ptr<const Routing::Config> vrfConfig_;
};

}  // namespace IpSnmp
