#pragma once
// Whether the switch routes: IPv4 (Routing::Config) and IPv6 (Routing6::Config) of the default VRF,
// and IPv4 of every other VRF (Routing::VrfConfigDir, one Routing::Config per VRF name).
#include "platform/morvane/StoreEntity.h"

namespace Morvane {

template <class Self>
class RoutingSwitch : public StoreEntity<Self> {
 public:
  class NotifieeConst : public Quor::Notifiee<Self> {
   public:
    virtual void onRouting() {}
  };
  static constexpr std::string_view attributeNames[] = {"routing"};

  using StoreEntity<Self>::StoreEntity;
  bool routing() const noexcept { return routing_; }
  void routingIs(bool routing) { this->template assign<&NotifieeConst::onRouting>("routing", routing_, routing); }

 private:
  bool routing_ = false;
};

}  // namespace Morvane

namespace Routing {

class Config final : public Morvane::RoutingSwitch<Config> {
 public:
  static constexpr const char* typeName = "Routing::Config";
  using RoutingSwitch::RoutingSwitch;
};

class VrfConfigDir final : public Morvane::StoreEntity<VrfConfigDir> {
 public:
  class NotifieeConst : public Quor::Notifiee<VrfConfigDir> {
   public:
    virtual void onVrfConfig(const Quor::Name&) {}
    virtual void onVrfConfigquorImmediate() {}
  };
  static constexpr const char* typeName = "Routing::VrfConfigDir";
  static constexpr std::string_view attributeNames[] = {"vrfConfig"};
  using Members = Morvane::Collection<Quor::Name, Quor::Ptr<Config>>;

  using StoreEntity::StoreEntity;
  // Null when absent.
  Quor::Ptr<const Config> vrfConfig(const Quor::Name& vrf) const { return vrfConfig_.memberOr(vrf, nullptr); }
  Quor::Ptr<Config> vrfConfig(const Quor::Name& vrf) { return vrfConfig_.memberOr(vrf, nullptr); }
  const Members& vrfConfigs() const noexcept { return vrfConfig_; }
  // Enters the member under its own name (the VRF's), replacing another of that name.
  void vrfConfigIs(const Quor::Ptr<Config>& member);
  void vrfConfigDel(const Quor::Name& vrf);
  // "vrfConfig" and a VRF name lead to that VRF's Routing::Config.
  Quor::Ptr<Quor::Entity> childEntity(std::string_view attr, std::string_view key) const override;

 private:
  Members vrfConfig_{this, idOf("vrfConfig")};
};

}  // namespace Routing

namespace Routing6 {

class Config final : public Morvane::RoutingSwitch<Config> {
 public:
  static constexpr const char* typeName = "Routing6::Config";
  using RoutingSwitch::RoutingSwitch;
};

}  // namespace Routing6
