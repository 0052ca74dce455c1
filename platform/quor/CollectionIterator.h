#pragma once
// The iterator of the framework's collections (RbTreeMap, HashMap).
//
// Its guarantee, which the request handlers and the state machines rely on:
//   1. It holds a strong reference to its current member, the collection, and the collection's
//      version at its last step.
//   2. On advance with the version unchanged, it steps to the successor along the links.
//   3. With the version changed, it searches for its stored key and goes to the first member above it
//      (whether or not the key is still present), then stores the new version.
//   4. Its current member stays readable after removal, because of the strong reference.
// So a walk never fails and never visits a key twice; it sees members inserted ahead of it and not
// those inserted behind it, and the member under it may be deleted.
#include <utility>

#include "platform/quor/Ptr.h"

namespace Quor {

template <class Map, class Value>
class CollectionIterator {
 public:
  using Key = typename Map::Key;

  CollectionIterator() = default;
  CollectionIterator(const Map* map, Value* member) : map_(map), cur_(member), version_(map->version()) {}

  explicit operator bool() const noexcept { return static_cast<bool>(cur_); }
  bool atEnd() const noexcept { return !cur_; }
  Value* ptr() const noexcept { return cur_.ptr(); }
  Value* operator->() const noexcept { return cur_.ptr(); }
  Value& operator*() const noexcept { return *cur_; }
  const Key& key() const { return cur_->fwkKey(); }
  const Map* collection() const noexcept { return map_; }
  U64 version() const noexcept { return version_; }

  void advance() {
    if (!cur_) return;
    Ptr<Value> next;
    if (version_ == map_->version()) {
      next = map_->successorOf(cur_.ptr());
    } else {
      next = map_->findNextMember(cur_->fwkKey());
      version_ = map_->version();
    }
    cur_ = std::move(next);
  }
  CollectionIterator& operator++() {
    advance();
    return *this;
  }

 private:
  const Map* map_ = nullptr;
  Ptr<Value> cur_;
  U64 version_ = 0;
};

}  // namespace Quor
