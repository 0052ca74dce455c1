#include "agent/VrfRoot.h"

namespace IpSnmp {

VrfRoot::~VrfRoot() {
  arpTableSmDel();
  ipRouteTableSmDel();
}

VrfRootDir::~VrfRootDir() {
  for (auto it = vrfRoot_.begin(); it; ++it) it->parentIs(nullptr);
}

Quor::ValidPtr<VrfRoot> VrfRootDir::vrfRootIs(const Quor::Name& name) {
  if (VrfRoot* existing = vrfRoot_.member(name)) return existing;
  auto made = Quor::makePtr<VrfRoot>(name);
  made->parentIs(this);
  vrfRoot_.memberIs(made);
  vrfRootNotify(name);
  return made;
}

Quor::Ptr<VrfRoot> VrfRootDir::vrfRootDel(const Quor::Name& name) {
  Quor::Ptr<VrfRoot> removed = vrfRoot_.deleteMember(name);
  if (!removed) return nullptr;
  removed->parentIs(nullptr);
  vrfRootNotify(name);
  return removed;
}

void VrfRootDir::vrfRootDelAll() {
  while (VrfRoot* first = vrfRoot_.firstMember()) vrfRootDel(first->name());
}

void VrfRootDir::vrfRootNotify(const Quor::Name& name) const {
  notify<NotifieeConst>(firstAttributeId, [&](NotifieeConst& n) { n.onVrfRoot(name); });
}

Quor::Ptr<VrfRootDir> vrfRootDirFactory(const Quor::Name& name) { return Quor::makePtr<VrfRootDir>(name); }

}  // namespace IpSnmp
