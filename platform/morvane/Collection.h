#pragma once
// A keyed collection attribute of a store entity: members in key order, each held once.
//
// A member is a value, or a Quor::Ptr to an entity; entity members become children of the owner
// under the collection's attribute, and leave it on removal. Reading through a const collection
// gives entity members as pointers to const. Iterators are those of std::map: the writers of the
// store change a collection only between the walks of its readers, never during one.
#include <map>
#include <type_traits>
#include <utility>

#include "platform/quor/Entity.h"

namespace Morvane {

// How a member reads through a const collection.
template <class V>
struct ReadOnly {
  using Type = const V&;
};
template <class M>
struct ReadOnly<Quor::Ptr<M>> {
  using Type = Quor::Ptr<const M>;
};

template <class K, class V>
class Collection {
  using Map = std::map<K, V>;
  static constexpr bool holdsEntities = std::is_convertible_v<V, Quor::Ptr<Quor::Entity>>;

 public:
  using Key = K;
  using Read = typename ReadOnly<V>::Type;

  class Iterator {
   public:
    explicit Iterator(typename Map::const_iterator at) : at_(at) {}
    const K& key() const { return at_->first; }
    Read member() const { return at_->second; }
    std::pair<const K&, Read> operator*() const { return {key(), member()}; }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    typename Map::const_iterator at_;
  };

  Collection(Quor::Entity* owner, Quor::AttributeId attr) : owner_(owner), attr_(attr) {}
  Collection(const Collection&) = delete;
  Collection& operator=(const Collection&) = delete;
  ~Collection() {
    for (auto& [key, member] : members_) disown(member);
  }

  std::size_t members() const noexcept { return members_.size(); }
  bool empty() const noexcept { return members_.empty(); }
  Iterator begin() const { return Iterator(members_.begin()); }
  Iterator end() const { return Iterator(members_.end()); }
  // The member of `key`, or `absent`.
  V memberOr(const K& key, const V& absent) const {
    auto it = members_.find(key);
    return it == members_.end() ? absent : it->second;
  }

  // Enters or replaces the member of `key`; false when an equal member was there already.
  bool put(const K& key, const V& member) {
    auto [it, inserted] = members_.try_emplace(key, member);
    if (!inserted) {
      if (it->second == member) return false;
      disown(it->second);
      it->second = member;
    }
    adopt(member);
    return true;
  }
  // Removes the member of `key`; false when there was none.
  bool erase(const K& key) {
    auto it = members_.find(key);
    if (it == members_.end()) return false;
    V gone = std::move(it->second);
    members_.erase(it);
    disown(gone);
    return true;
  }

 private:
  void adopt(const V& member) {
    if constexpr (holdsEntities) {
      member->parentIs(owner_);
      member->parentAttrIdIs(attr_);
    }
  }
  void disown(const V& member) {
    if constexpr (holdsEntities)
      if (member->parent() == owner_) member->parentIs(nullptr);
  }

  Quor::Entity* owner_;
  Quor::AttributeId attr_;
  Map members_;
};

}  // namespace Morvane
