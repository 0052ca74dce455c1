#include "platform/morvane/RoutingConfig.h"

namespace Routing {

void VrfConfigDir::vrfConfigIs(const Quor::Ptr<Config>& member) {
  nonNull(member, "vrfConfig");
  memberIs<&NotifieeConst::onVrfConfig>("vrfConfig", vrfConfig_, member->name(), member);
}

void VrfConfigDir::vrfConfigDel(const Quor::Name& vrf) {
  memberDel<&NotifieeConst::onVrfConfig>("vrfConfig", vrfConfig_, vrf);
}

Quor::Ptr<Quor::Entity> VrfConfigDir::childEntity(std::string_view attr, std::string_view key) const {
  if (attr != "vrfConfig") return nullptr;
  return vrfConfig_.memberOr(Quor::Name(key), nullptr);
}

}  // namespace Routing
