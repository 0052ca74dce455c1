#include "model/VrfMibs.h"

namespace IpSnmp {

namespace {
constexpr std::string_view vrfMibsAttributes[] = {"ipmib", "ipforwardmib"};
constexpr Quor::AttributeId ipmibAttr = Quor::Entity::firstAttributeId;
constexpr Quor::AttributeId ipforwardmibAttr = ipmibAttr + 1;
}  // namespace

VrfMibs::~VrfMibs() {
  for (Quor::Entity* child : {static_cast<Quor::Entity*>(ipmib_.ptr()), static_cast<Quor::Entity*>(ipforwardmib_.ptr())})
    if (child && child->parent() == this) child->parentIs(nullptr);
}

Quor::String8 VrfMibs::attributeString(Quor::AttributeId id) const { return attributeNameOf(vrfMibsAttributes, id); }

Quor::Ptr<Quor::Entity> VrfMibs::childEntity(std::string_view attr, std::string_view key) const {
  if (!key.empty()) return nullptr;
  if (attr == "ipmib") return ipmib_;
  if (attr == "ipforwardmib") return ipforwardmib_;
  return nullptr;
}

template <class Mib>
Quor::ValidPtr<Mib> VrfMibs::childIs(Quor::Ptr<Mib>& slot, Quor::AttributeId attr, const Quor::Name& name,
                                     void (NotifieeConst::*on)()) {
  if (slot && slot->name() == name) return slot;
  if (slot) slot->parentIs(nullptr);
  slot = Quor::makePtr<Mib>(name);
  slot->parentIs(this);
  slot->parentAttrIdIs(attr);
  notify<NotifieeConst>(attr, [on](NotifieeConst& n) { (n.*on)(); });
  return slot;
}

template <class Mib>
Quor::Ptr<Mib> VrfMibs::childDel(Quor::Ptr<Mib>& slot, Quor::AttributeId attr, void (NotifieeConst::*on)()) {
  Quor::Ptr<Mib> removed = std::exchange(slot, nullptr);
  if (!removed) return nullptr;
  removed->parentIs(nullptr);
  notify<NotifieeConst>(attr, [on](NotifieeConst& n) { (n.*on)(); });
  return removed;
}

Quor::ValidPtr<IpMib> VrfMibs::ipmibIs(const Quor::Name& name) {
  return childIs(ipmib_, ipmibAttr, name, &NotifieeConst::onIpmib);
}
Quor::Ptr<IpMib> VrfMibs::ipmibDel() { return childDel(ipmib_, ipmibAttr, &NotifieeConst::onIpmib); }

Quor::ValidPtr<IpForwardMib> VrfMibs::ipforwardmibIs(const Quor::Name& name) {
  return childIs(ipforwardmib_, ipforwardmibAttr, name, &NotifieeConst::onIpforwardmib);
}
Quor::Ptr<IpForwardMib> VrfMibs::ipforwardmibDel() {
  return childDel(ipforwardmib_, ipforwardmibAttr, &NotifieeConst::onIpforwardmib);
}

}  // namespace IpSnmp
