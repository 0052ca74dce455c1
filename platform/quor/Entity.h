#pragma once
// Named objects of the framework, the notifier side of reactors, and directories of entities.
//
// Notification is synchronous: a mutator changes the state, then notifies. The notifier takes a
// snapshot of its reactors (holding a reference on each, so they may attach, detach or be destroyed
// meanwhile), skips those dropped or detached since, and calls the rest in order. A reactor that
// raises gets onNotificationException(attr) and the others are still called.
#include <boost/container/small_vector.hpp>
#include <map>
#include <span>
#include <string_view>
#include <vector>

#include "platform/quor/Reactor.h"
#include "platform/quor/String.h"

namespace Quor {

class Entity : public PtrInterface {
 public:
  // Attribute ids of a class start here, in declaration order; lower ids belong to the framework.
  static constexpr AttributeId firstAttributeId = 258;

  explicit Entity(Name name) : name_(std::move(name)) {}
  ~Entity() override;

  const Name& name() const noexcept { return name_; }
  Entity* parent() const noexcept { return parent_; }
  void parentIs(Entity* parent) noexcept { parent_ = parent; }
  AttributeId parentAttrId() const noexcept { return parentAttrId_; }
  void parentAttrIdIs(AttributeId id) noexcept { parentAttrId_ = id; }
  String8 parentAttr() const;
  // "/a/b/c": the names from the root down to this entity.
  String8 fullName() const;

  // Reflection: the name of an attribute id ("unknown" when the class has none), and the reverse.
  virtual String8 attributeString(AttributeId id) const;
  virtual AttributeId attributeId(const String8& name) const;

  // The child entity held in attribute `attr` under `key` ("" for a single child or a directory's
  // entries), used to resolve store paths such as "routing/vrf/config.vrfConfig/red".
  virtual Ptr<Entity> childEntity(std::string_view attr, std::string_view key) const;

  bool hasNotifiees() const noexcept { return !notifiees_.empty(); }

 protected:
  // Looks `id` up in a class's list of attribute names, which starts at firstAttributeId.
  static String8 attributeNameOf(std::span<const std::string_view> names, AttributeId id);
  static AttributeId attributeIdOf(std::span<const std::string_view> names, const String8& name);

  // Calls `call(notifiee)` on every reactor of type NC that follows this entity (see above).
  template <class NC, class Call>
  void notify(AttributeId attr, Call&& call) const;

  // Told when a reactor starts or stops following this entity.
  virtual void notifieeAttached(Reactor*) const {}
  virtual void notifieeDetached(Reactor*) const {}

 private:
  template <class N>
  friend class Notifiee;
  void notifieeAttach(Reactor* r) const;
  void notifieeDetach(Reactor* r) const;

  Name name_;
  Entity* parent_ = nullptr;
  AttributeId parentAttrId_ = 0;
  mutable std::vector<Reactor*> notifiees_;
};

// A reactor on an entity of type N. Each entity class X offers X::NotifieeConst, derived from this,
// with one virtual on<Attr>() per attribute; reactors derive from X::NotifieeConst.
template <class N>
class Notifiee : public Reactor {
 public:
  const Ptr<const N>& notifier() const noexcept { return notifier_; }

  // Moves the registration to `n` and replays: the reactor's handlers run once over the current
  // state of the new notifier. Does nothing when the notifier does not change; null detaches.
  void notifierIs(const Ptr<const N>& n) {
    if (n == notifier_) return;
    if (notifier_) notifier_->notifieeDetach(this);
    notifier_ = n;
    if (!n) return;
    n->notifieeAttach(this);
    onNotifierIs();
  }

  ~Notifiee() override {
    if (notifier_) notifier_->notifieeDetach(this);
  }

 protected:
  Notifiee() = default;
  // The replay of notifierIs: reconcile with the notifier's present state.
  virtual void onNotifierIs() {}

 private:
  Ptr<const N> notifier_;
};

// A new reactor R(args...) following `notifier` (a Ptr or a ValidPtr), or null when there is no
// notifier to follow.
template <class R, class P, class... Args>
Ptr<R> reactorOn(const P& notifier, Args&&... args) {
  if (!notifier.ptr()) return nullptr;
  auto reactor = makePtr<R>(std::forward<Args>(args)...);
  reactor->notifierIs(notifier.ptr());
  return reactor;
}

template <class NC, class Call>
void Entity::notify(AttributeId attr, Call&& call) const {
  if (notifiees_.empty()) return;
  boost::container::small_vector<Ptr<Reactor>, 4> snapshot(notifiees_.begin(), notifiees_.end());
  for (const Ptr<Reactor>& r : snapshot) {
    if (!r->listensTo(this)) continue;
    try {
      call(static_cast<NC&>(*r));
    } catch (const std::exception&) {
      r->onNotificationException(attr);
    }
  }
}

// An entity that maps names to child entities.
class Dir : public Entity {
 public:
  class NotifieeConst : public Notifiee<Dir> {
   public:
    virtual void onEntityPtr(const Name&) {}
  };
  using Entries = std::map<Name, Ptr<Entity>>;

  using Entity::Entity;
  Ptr<Entity> entityPtr(const Name& name) const;
  // Enters `child` under its own name, replacing an entry of that name, and becomes its parent.
  void entityPtrIs(const Ptr<Entity>& child);
  void entityPtrDel(const Name& name);
  const Entries& entityPtrs() const noexcept { return entries_; }
  Ptr<Entity> childEntity(std::string_view attr, std::string_view key) const override;

 private:
  void entityPtrNotify(const Name& name) const;
  Entries entries_;
};

// Resolves a path such as "Morvane/routing/vrf/config.vrfConfig/red" below `root`: each segment is a
// child name, optionally followed by ".attr"; the next segment is then a key in that attribute, or,
// at the end of the path, the attribute names a single child. Null when any step is missing.
Ptr<Entity> entityAtPath(const Ptr<const Entity>& root, std::string_view path);

}  // namespace Quor
