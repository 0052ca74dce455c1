#include "platform/quor/Entity.h"

#include <algorithm>

#include "platform/quor/Trace.h"

namespace Quor {

namespace {
const Tracer tracer("Quor", "Quor");
}

void Reactor::quorDoZombieReactors(bool flag) {
  if (zombie_ == flag) return;
  if (attached_) hasNotificationActiveIs(!flag);
  handleDel();
  quorZombieNested(flag);
  zombie_ = flag;
}

void Reactor::onNotificationException(AttributeId attr) {
  QTRACE(tracer, 1, "reactor raised in notification of attribute " << attr);
}

Entity::~Entity() {
  // Reactors that still follow this entity keep a reference to it, so none can be left here.
  for (Reactor* r : notifiees_) r->attached_ = nullptr;
}

String8 Entity::parentAttr() const { return parent_ ? parent_->attributeString(parentAttrId_) : String8("unknown"); }

String8 Entity::fullName() const {
  std::string path;
  for (const Entity* e = this; e; e = e->parent_) path.insert(0, "/" + e->name_.str());
  return String8(path);
}

String8 Entity::attributeString(AttributeId) const { return String8("unknown"); }

AttributeId Entity::attributeId(const String8&) const { return -1; }

Ptr<Entity> Entity::childEntity(std::string_view, std::string_view) const { return nullptr; }

String8 Entity::attributeNameOf(std::span<const std::string_view> names, AttributeId id) {
  std::size_t i = static_cast<std::size_t>(id - firstAttributeId);
  return id >= firstAttributeId && i < names.size() ? String8(names[i]) : String8("unknown");
}

AttributeId Entity::attributeIdOf(std::span<const std::string_view> names, const String8& name) {
  auto it = std::find(names.begin(), names.end(), name.view());
  return it == names.end() ? -1 : firstAttributeId + static_cast<AttributeId>(it - names.begin());
}

void Entity::notifieeAttach(Reactor* r) const {
  notifiees_.push_back(r);
  r->attached_ = this;
  notifieeAttached(r);
}

void Entity::notifieeDetach(Reactor* r) const {
  auto it = std::find(notifiees_.begin(), notifiees_.end(), r);
  if (it != notifiees_.end()) notifiees_.erase(it);
  if (r->attached_ == this) r->attached_ = nullptr;
  notifieeDetached(r);
}

Ptr<Entity> Dir::entityPtr(const Name& name) const {
  auto it = entries_.find(name);
  return it == entries_.end() ? nullptr : it->second;
}

void Dir::entityPtrIs(const Ptr<Entity>& child) {
  Ptr<Entity>& slot = entries_[child->name()];
  if (slot == child) return;
  slot = child;
  child->parentIs(this);
  entityPtrNotify(child->name());
}

void Dir::entityPtrDel(const Name& name) {
  auto it = entries_.find(name);
  if (it == entries_.end()) return;
  Ptr<Entity> child = it->second;
  entries_.erase(it);
  if (child->parent() == this) child->parentIs(nullptr);
  entityPtrNotify(name);
}

void Dir::entityPtrNotify(const Name& name) const {
  notify<NotifieeConst>(firstAttributeId, [&](NotifieeConst& n) { n.onEntityPtr(name); });
}

Ptr<Entity> Dir::childEntity(std::string_view attr, std::string_view key) const {
  return attr.empty() ? entityPtr(Name(key)) : nullptr;
}

Ptr<Entity> entityAtPath(const Ptr<const Entity>& root, std::string_view path) {
  Ptr<Entity> cur(const_cast<Entity*>(root.ptr()));
  std::string_view attr;
  while (cur && !path.empty()) {
    auto slash = path.find('/');
    std::string_view segment = path.substr(0, slash);
    path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
    auto dot = segment.find('.');
    cur = cur->childEntity(attr, segment.substr(0, dot));
    attr = dot == std::string_view::npos ? std::string_view() : segment.substr(dot + 1);
  }
  if (cur && !attr.empty()) cur = cur->childEntity(attr, "");
  return cur;
}

}  // namespace Quor
