#pragma once
// What a non-default VRF owns of its own while it is up: its containers and its ARP and route
// machines. VrfRootDir holds one VrfRoot per VRF that is up, by name.
#include "agent/VrfMachines.h"
#include "model/IpForwardMib.h"
#include "model/IpMib.h"
#include "platform/quor/NotifyingDir.h"

namespace IpSnmp {

class VrfRoot : public Quor::Entity, public Quor::HashLink, public VrfMachines {
 public:
  using Entity::Entity;
  // The ARP machine goes first, then the route machine; the containers keep their rows.
  ~VrfRoot() override;
  const Quor::Name& fwkKey() const noexcept { return name(); }
  const char* fwkType() const override { return "IpSnmp::VrfRoot"; }

  const Quor::Ptr<IpMib>& ipMib() const noexcept { return ipMib_; }
  void ipMibIs(const Quor::Ptr<IpMib>& ipMib) { ipMib_ = ipMib; }
  const Quor::Ptr<IpForwardMib>& ipForwardMib() const noexcept { return ipForwardMib_; }
  void ipForwardMibIs(const Quor::Ptr<IpForwardMib>& ipForwardMib) { ipForwardMib_ = ipForwardMib; }

 private:
  Quor::Ptr<IpMib> ipMib_;
  Quor::Ptr<IpForwardMib> ipForwardMib_;
};

class VrfRootDir : public Quor::NotifyingDir<VrfRootDir, VrfRoot> {
 public:
  class NotifieeConst : public Quor::Notifiee<VrfRootDir> {
   public:
    virtual void onVrfRoot(const Quor::Name&) {}
  };
  static constexpr const char* attributeName = "vrfRoot";
  static constexpr auto onMember = &NotifieeConst::onVrfRoot;

  using NotifyingDir::NotifyingDir;
  const char* fwkType() const override { return "IpSnmp::VrfRootDir"; }

  VrfRoot* vrfRoot(const Quor::Name& name) const { return member(name); }
  const Members& vrfRoots() const noexcept { return members(); }
  Quor::ValidPtr<VrfRoot> vrfRootIs(const Quor::Name& name) { return memberIs(name); }
  Quor::Ptr<VrfRoot> vrfRootDel(const Quor::Name& name) { return memberDel(name); }
  void vrfRootDelAll() { memberDelAll(); }
};

// A directory standing alone, without a Root.
Quor::Ptr<VrfRootDir> vrfRootDirFactory(const Quor::Name& name);

}  // namespace IpSnmp
