#pragma once
// The base of every entity of the store. Self names itself in Self::typeName and lists its
// attributes in Self::attributeNames, whose ids run from Quor::Entity::firstAttributeId in that
// order; this gives the reflection of Quor::Entity and the mutators' notification: a mutator
// changes the state first, then tells Self's reactors, and tells nobody when nothing changes.
#include <string>
#include <string_view>

#include "platform/morvane/Collection.h"
#include "platform/quor/Entity.h"
#include "platform/quor/Exception.h"

namespace Morvane {

template <class Self>
class StoreEntity : public Quor::Entity {
 public:
  using Quor::Entity::Entity;

  const char* fwkType() const override { return Self::typeName; }
  Quor::String8 attributeString(Quor::AttributeId id) const override {
    return attributeNameOf(Self::attributeNames, id);
  }
  Quor::AttributeId attributeId(const Quor::String8& name) const override {
    return attributeIdOf(Self::attributeNames, name);
  }

 protected:
  static constexpr Quor::AttributeId idOf(std::string_view attr) {
    Quor::AttributeId id = firstAttributeId;
    for (std::string_view name : Self::attributeNames) {
      if (name == attr) return id;
      ++id;
    }
    return -1;
  }

  // Calls `on(args...)` on every reactor that follows this entity.
  template <auto on, class... Args>
  void tell(std::string_view attr, const Args&... args) const {
    using Reactor = typename Self::NotifieeConst;
    this->template notify<Reactor>(idOf(attr), [&](Reactor& r) { (r.*on)(args...); });
  }

  // A single attribute: stores `value` and tells `on()`, unless nothing changes.
  template <auto on, class T, class U>
  void assign(std::string_view attr, T& slot, const U& value) {
    if (slot == value) return;
    slot = value;
    tell<on>(attr);
  }

  // A collection attribute: enters or replaces the member of `key` and tells `on(key)`, unless an
  // equal member was there.
  template <auto on, class K, class V>
  void memberIs(std::string_view attr, Collection<K, V>& collection, const K& key, const V& member) {
    if (collection.put(key, member)) tell<on>(attr, key);
  }
  template <auto on, class K, class V>
  void memberDel(std::string_view attr, Collection<K, V>& collection, const K& key) {
    if (collection.erase(key)) tell<on>(attr, key);
  }

  // A null member for a collection is a range failure.
  template <class M>
  static void nonNull(const Quor::Ptr<M>& member, std::string_view attr) {
    if (member) return;
    std::string name(attr);
    Quor::throwRangeException("null _" + name + " parameter to mutator for " + Self::typeName + "::" + name +
                              " not allowed");
  }
};

}  // namespace Morvane
