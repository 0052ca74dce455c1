#pragma once
// A table held in the process behind a TarnMap, for tests of the state machines: they write it and
// the view's reactors hear of it at once, inside the write, as from a store entity. Its order is the
// key order.
#include <map>

#include "platform/tarn/TarnMap.h"

namespace Tarn {

template <class K, class V>
class InProcessTable final : public TarnMapBackend<K, V> {
 public:
  explicit InProcessTable(const TarnMap<K, V>& map, U32 maxSize = 1u << 20) : map_(map), maxSize_(maxSize) {}

  // Enters or replaces the value of `key`, then notifies `key`.
  void put(const K& key, const V& value) {
    entries_.insert_or_assign(key, value);
    map_.keyChanged(key);
  }
  // Removes `key` if present, then notifies it.
  void erase(const K& key) {
    if (entries_.erase(key)) map_.keyChanged(key);
  }

  bool mapped() const override { return true; }
  bool lookup(const K& key, V* value) const override {
    auto it = entries_.find(key);
    if (it == entries_.end()) return false;
    *value = it->second;
    return true;
  }
  bool first(TarnMapIterator&, K* key, V* value) const override { return at(entries_.begin(), key, value); }
  bool next(const K& key, TarnMapIterator&, K* nextKey, V* value) const override {
    return at(entries_.upper_bound(key), nextKey, value);
  }
  U32 members() const override { return static_cast<U32>(entries_.size()); }
  U32 maxSize() const override { return maxSize_; }
  U32 capacity() const override { return maxSize_; }
  std::string type() const override { return "in-process"; }
  ReaderCounters readerCounters() const override {
    throw Brem::UnimplementedException("readerCounters() not implemented");
  }
  void initialize() override {}
  void detach(bool) override {}

 private:
  bool at(typename std::map<K, V>::const_iterator it, K* key, V* value) const {
    if (it == entries_.end()) return false;
    *key = it->first;
    *value = it->second;
    return true;
  }
  const TarnMap<K, V>& map_;
  U32 maxSize_;
  std::map<K, V> entries_;
};

}  // namespace Tarn
