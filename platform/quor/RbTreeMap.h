#pragma once
// Ordered collection whose members carry their own key (fwkKey()) and links (RbTreeLink).
// The collection holds one reference on each member; lookups and steps are logarithmic or constant
// and allocate nothing. Iteration under change: see CollectionIterator.
#include <boost/intrusive/set.hpp>
#include <cassert>

#include "platform/quor/CollectionIterator.h"

namespace Quor {

using RbTreeLink = boost::intrusive::set_base_hook<boost::intrusive::optimize_size<true>,
                                                   boost::intrusive::link_mode<boost::intrusive::safe_link>>;

template <class M, class K>
class RbTreeMap {
  struct KeyOf {
    using type = K;
    const K& operator()(const M& m) const { return m.fwkKey(); }
  };
  using Tree = boost::intrusive::set<M, boost::intrusive::base_hook<RbTreeLink>, boost::intrusive::key_of_value<KeyOf>,
                                     boost::intrusive::constant_time_size<true>>;

 public:
  using Key = K;
  using Member = M;
  using Iterator = CollectionIterator<RbTreeMap, M>;
  using IteratorConst = CollectionIterator<RbTreeMap, const M>;

  RbTreeMap() = default;
  RbTreeMap(const RbTreeMap&) = delete;
  RbTreeMap& operator=(const RbTreeMap&) = delete;
  ~RbTreeMap() { clear(); }

  std::size_t members() const noexcept { return tree_.size(); }
  U64 version() const noexcept { return version_; }

  M* member(const K& key) const {
    auto it = tree_.find(key);
    return it == tree_.end() ? nullptr : const_cast<M*>(&*it);
  }
  M* firstMember() const { return tree_.empty() ? nullptr : const_cast<M*>(&*tree_.begin()); }
  // The member with `key`, else the one with the smallest key above it.
  M* startAtMember(const K& key) const { return at(tree_.lower_bound(key)); }
  // The member with the smallest key strictly above `key`.
  M* findNextMember(const K& key) const { return at(tree_.upper_bound(key)); }
  M* successorOf(const M* m) const { return at(std::next(tree_.iterator_to(*m))); }

  // Inserts a member whose key is absent.
  void memberIs(const Ptr<M>& m) {
    assert(!m->RbTreeLink::is_linked() && "member inserted while its link is set");
    bool inserted = tree_.insert(*m).second;
    assert(inserted && "key already present");
    (void)inserted;
    m->newRef();
    ++version_;
  }
  // Removes the member of `key` and hands back the collection's reference; null when absent.
  Ptr<M> deleteMember(const K& key) {
    auto it = tree_.find(key);
    if (it == tree_.end()) return nullptr;
    Ptr<M> m(&*it);
    tree_.erase(it);
    m->deleteRef();
    ++version_;
    return m;
  }
  void clear() {
    tree_.clear_and_dispose([](M* m) { m->deleteRef(); });
    ++version_;
  }

  Iterator begin() { return Iterator(this, firstMember()); }
  IteratorConst begin() const { return IteratorConst(this, firstMember()); }
  Iterator startAt(const K& key) { return Iterator(this, startAtMember(key)); }
  IteratorConst startAt(const K& key) const { return IteratorConst(this, startAtMember(key)); }
  Iterator findNext(const K& key) { return Iterator(this, findNextMember(key)); }
  IteratorConst findNext(const K& key) const { return IteratorConst(this, findNextMember(key)); }

 private:
  M* at(typename Tree::const_iterator it) const { return it == tree_.end() ? nullptr : const_cast<M*>(&*it); }
  Tree tree_;
  U64 version_ = 0;
};

}  // namespace Quor
