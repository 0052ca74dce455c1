#pragma once
// The L3 side of an interface: the VRF it is in, once as configured (L3::Intf::Config) and once as
// in effect (L3::Intf::Status). An interface without an L3 object is in no VRF: its VRF reads as
// the empty name, which is not the default VRF.
#include "platform/morvane/StoreEntity.h"
#include "platform/pelt/VrfName.h"

namespace Morvane {

template <class Self>
class L3IntfVrf : public StoreEntity<Self> {
 public:
  class NotifieeConst : public Quor::Notifiee<Self> {
   public:
    virtual void onVrf() {}
  };
  static constexpr std::string_view attributeNames[] = {"vrf"};

  using StoreEntity<Self>::StoreEntity;
  const L3::VrfName& vrf() const noexcept { return vrf_; }
  void vrfIs(const L3::VrfName& vrf) { this->template assign<&NotifieeConst::onVrf>("vrf", vrf_, vrf); }

 private:
  L3::VrfName vrf_;
};

}  // namespace Morvane

namespace L3::Intf {

class Config final : public Morvane::L3IntfVrf<Config> {
 public:
  static constexpr const char* typeName = "L3::Intf::Config";
  using L3IntfVrf::L3IntfVrf;
};

class Status final : public Morvane::L3IntfVrf<Status> {
 public:
  static constexpr const char* typeName = "L3::Intf::Status";
  using L3IntfVrf::L3IntfVrf;
};

// The VRF of an interface's L3 object; the empty name when it has none.
inline VrfName vrfOf(const Quor::Ptr<const Config>& l3) { return l3 ? l3->vrf() : VrfName(); }
inline VrfName vrfOf(const Quor::Ptr<const Status>& l3) { return l3 ? l3->vrf() : VrfName(); }

}  // namespace L3::Intf
