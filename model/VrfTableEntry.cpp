#include "model/VrfTableEntry.h"

namespace IpSnmp {

Quor::Ptr<VrfRoutingStatus> VrfTableEntry::vrfRoutingStatusIs(const Quor::Name& name,
                                                              const Quor::Ptr<const Routing::Config>& config) {
  if (vrfRoutingStatus_ && vrfRoutingStatus_->name() == name && vrfRoutingStatus_->vrfConfig() == config)
    return vrfRoutingStatus_;
  vrfRoutingStatus_ = Quor::makePtr<VrfRoutingStatus>(name, config);
  return vrfRoutingStatus_;
}

}  // namespace IpSnmp
