#pragma once
// The containers of one non-default VRF ("snmp/ip/vrf.mibs/<vrf>.ipmib" and ".ipforwardmib"), and the
// directory of them all.
#include "model/IpForwardMib.h"
#include "model/IpMib.h"
#include "platform/quor/NotifyingDir.h"

namespace IpSnmp {

class VrfMibs : public Quor::Entity, public Quor::HashLink {
 public:
  class NotifieeConst : public Quor::Notifiee<VrfMibs> {
   public:
    virtual void onIpmib() {}
    virtual void onIpforwardmib() {}
  };

  using Entity::Entity;
  ~VrfMibs() override;
  const Quor::Name& fwkKey() const noexcept { return name(); }
  const char* fwkType() const override { return "IpSnmp::VrfMibs"; }
  Quor::String8 attributeString(Quor::AttributeId id) const override;
  Quor::Ptr<Quor::Entity> childEntity(std::string_view attr, std::string_view key) const override;

  const Quor::Ptr<IpMib>& ipmib() const noexcept { return ipmib_; }
  // The child of this name; any other child is replaced by a new, empty one.
  Quor::ValidPtr<IpMib> ipmibIs(const Quor::Name& name);
  Quor::Ptr<IpMib> ipmibDel();
  const Quor::Ptr<IpForwardMib>& ipforwardmib() const noexcept { return ipforwardmib_; }
  Quor::ValidPtr<IpForwardMib> ipforwardmibIs(const Quor::Name& name);
  Quor::Ptr<IpForwardMib> ipforwardmibDel();

 private:
  template <class Mib>
  Quor::ValidPtr<Mib> childIs(Quor::Ptr<Mib>& slot, Quor::AttributeId attr, const Quor::Name& name,
                              void (NotifieeConst::*on)());
  template <class Mib>
  Quor::Ptr<Mib> childDel(Quor::Ptr<Mib>& slot, Quor::AttributeId attr, void (NotifieeConst::*on)());

  Quor::Ptr<IpMib> ipmib_;
  Quor::Ptr<IpForwardMib> ipforwardmib_;
};

class VrfMibsDir : public Quor::NotifyingDir<VrfMibsDir, VrfMibs> {
 public:
  class NotifieeConst : public Quor::Notifiee<VrfMibsDir> {
   public:
    virtual void onMibs(const Quor::Name&) {}
  };
  static constexpr const char* attributeName = "mibs";
  static constexpr auto onMember = &NotifieeConst::onMibs;

  using NotifyingDir::NotifyingDir;
  const char* fwkType() const override { return "IpSnmp::VrfMibsDir"; }

  VrfMibs* mibs(const Quor::Name& name) const { return member(name); }
  const Members& mibs() const noexcept { return members(); }
  // The pair of `name`, made when absent.
  Quor::ValidPtr<VrfMibs> mibsIs(const Quor::Name& name) { return memberIs(name); }
  Quor::Ptr<VrfMibs> mibsDel(const Quor::Name& name) { return memberDel(name); }
  void mibsDelAll() { memberDelAll(); }
};

}  // namespace IpSnmp
