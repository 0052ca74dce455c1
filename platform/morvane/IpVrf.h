#pragma once
// The VRFs as the IP side sees them: their configuration (Ip::AllVrfConfig of Ip::VrfConfig) and
// their local status (Ip::AllVrfStatusLocal of Ip::VrfStatusLocal), each keyed by VRF name. Neither
// lists the default VRF.
#include "platform/morvane/StoreEntity.h"
#include "platform/pelt/RouteDistinguisher.h"
#include "platform/pelt/VrfName.h"
#include "platform/pelt/VrfState.h"

namespace Ip {

class VrfConfig final : public Morvane::StoreEntity<VrfConfig> {
 public:
  class NotifieeConst : public Quor::Notifiee<VrfConfig> {
   public:
    virtual void onRouteDistinguisher() {}
  };
  static constexpr const char* typeName = "Ip::VrfConfig";
  static constexpr std::string_view attributeNames[] = {"vrfName", "routeDistinguisher"};

  explicit VrfConfig(const L3::VrfName& vrfName) : StoreEntity(vrfName.nameValue()), vrfName_(vrfName) {}

  const L3::VrfName& vrfName() const noexcept { return vrfName_; }
  const Pelt::RouteDistinguisher& routeDistinguisher() const noexcept { return routeDistinguisher_; }
  void routeDistinguisherIs(const Pelt::RouteDistinguisher& rd);

 private:
  L3::VrfName vrfName_;
  Pelt::RouteDistinguisher routeDistinguisher_;
};

class VrfStatusLocal final : public Morvane::StoreEntity<VrfStatusLocal> {
 public:
  class NotifieeConst : public Quor::Notifiee<VrfStatusLocal> {
   public:
    virtual void onState() {}
    virtual void onNetworkNamespace() {}
    virtual void onNsInode() {}
    virtual void onNsInodeValid() {}
  };
  static constexpr const char* typeName = "Ip::VrfStatusLocal";
  static constexpr std::string_view attributeNames[] = {"vrfName", "state", "networkNamespace", "nsInode",
                                                        "nsInodeValid"};

  explicit VrfStatusLocal(const L3::VrfName& vrfName) : StoreEntity(vrfName.nameValue()), vrfName_(vrfName) {}

  const L3::VrfName& vrfName() const noexcept { return vrfName_; }
  VrfState state() const noexcept { return state_; }
  void stateIs(VrfState state);
  // The name of the VRF's Linux network namespace, as under /var/run/netns.
  const Quor::String8& networkNamespace() const noexcept { return networkNamespace_; }
  void networkNamespaceIs(const Quor::String8& ns);
  // The inode of the namespace, meaningful when nsInodeValid.
  U64 nsInode() const noexcept { return nsInode_; }
  void nsInodeIs(U64 inode);
  bool nsInodeValid() const noexcept { return nsInodeValid_; }
  void nsInodeValidIs(bool valid);

 private:
  L3::VrfName vrfName_;
  VrfState state_ = vrfStateInitializing;
  Quor::String8 networkNamespace_;
  U64 nsInode_ = 0;
  bool nsInodeValid_ = false;
};

}  // namespace Ip

namespace Morvane {

// The VRFs of one side, the shape of Ip::AllVrfConfig and Ip::AllVrfStatusLocal.
template <class Self, class Member>
class VrfMembers : public StoreEntity<Self> {
 public:
  class NotifieeConst : public Quor::Notifiee<Self> {
   public:
    virtual void onVrf(const L3::VrfName&) {}
    virtual void onVrfquorImmediate() {}
  };
  static constexpr std::string_view attributeNames[] = {"vrf"};
  using Members = Collection<L3::VrfName, Quor::Ptr<Member>>;

  using StoreEntity<Self>::StoreEntity;
  // Null when absent.
  Quor::Ptr<const Member> vrf(const L3::VrfName& name) const { return vrf_.memberOr(name, nullptr); }
  Quor::Ptr<Member> vrf(const L3::VrfName& name) { return vrf_.memberOr(name, nullptr); }
  const Members& vrfs() const noexcept { return vrf_; }
  // Enters the member under its vrfName, replacing another of that name.
  void vrfIs(const Quor::Ptr<Member>& member) {
    this->nonNull(member, "vrf");
    this->template memberIs<&NotifieeConst::onVrf>("vrf", vrf_, member->vrfName(), member);
  }
  void vrfDel(const L3::VrfName& name) { this->template memberDel<&NotifieeConst::onVrf>("vrf", vrf_, name); }

 private:
  Members vrf_{this, this->idOf("vrf")};
};

}  // namespace Morvane

namespace Ip {

class AllVrfConfig final : public Morvane::VrfMembers<AllVrfConfig, VrfConfig> {
 public:
  static constexpr const char* typeName = "Ip::AllVrfConfig";
  using VrfMembers::VrfMembers;
};

class AllVrfStatusLocal final : public Morvane::VrfMembers<AllVrfStatusLocal, VrfStatusLocal> {
 public:
  static constexpr const char* typeName = "Ip::AllVrfStatusLocal";
  using VrfMembers::VrfMembers;
};

}  // namespace Ip
