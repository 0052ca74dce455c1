#pragma once
// Hashed collection whose members carry their own key (fwkKey()) and chain link (HashLink).
//
// Each key's 32-bit hash is bit-reversed; the top bits of the reversed hash select one of a
// power-of-two number of buckets, and each bucket's chain is sorted by reversed hash, then by key.
// So walking the buckets in order visits the members in (reversed hash, key) order whatever the
// number of buckets, which is what lets an iterator resume at a remembered key (startAtHash,
// findNextG) across growth and shrinking. Iteration under change: see CollectionIterator.
//
// The buckets grow on insertion and shrink only on a later insertion into a sparse map, never on
// removal: a time-sliced pass that drains a large map then allocates nothing while it deletes.
#include <cassert>
#include <type_traits>
#include <vector>

#include "platform/quor/CollectionIterator.h"

namespace Quor {

constexpr U32 bitReverse(U32 x) noexcept {
  x = ((x >> 1) & 0x55555555u) | ((x & 0x55555555u) << 1);
  x = ((x >> 2) & 0x33333333u) | ((x & 0x33333333u) << 2);
  x = ((x >> 4) & 0x0F0F0F0Fu) | ((x & 0x0F0F0F0Fu) << 4);
  x = ((x >> 8) & 0x00FF00FFu) | ((x & 0x00FF00FFu) << 8);
  return (x >> 16) | (x << 16);
}

// The hash of a key: its hash() member, or a mix of the value of an integer or enumeration.
template <class K>
struct Hash {
  U32 operator()(const K& k) const noexcept {
    if constexpr (std::is_enum_v<K> || std::is_integral_v<K>)
      return static_cast<U32>(static_cast<U64>(k) * 2654435761u);
    else
      return k.hash();
  }
};

class HashLink {
 public:
  const HashLink* fwkHmNext() const noexcept { return next_; }
  bool fwkHmLinked() const noexcept { return linked_; }

 private:
  template <class, class, class>
  friend class HashMap;
  HashLink* next_ = nullptr;
  U32 revHash_ = 0;
  bool linked_ = false;
};

template <class M, class K, class H = Hash<K>>
class HashMap {
 public:
  using Key = K;
  using Member = M;
  using Iterator = CollectionIterator<HashMap, M>;
  using IteratorConst = CollectionIterator<HashMap, const M>;

  HashMap() = default;
  HashMap(const HashMap&) = delete;
  HashMap& operator=(const HashMap&) = delete;
  ~HashMap() { clear(); }

  std::size_t members() const noexcept { return count_; }
  U64 version() const noexcept { return version_; }

  M* member(const K& key) const {
    U32 rev = bitReverse(H()(key));
    for (HashLink* l = head(rev); l; l = l->next_) {
      M* m = static_cast<M*>(l);
      if (l->revHash_ == rev && m->fwkKey() == key) return m;
      if (before(rev, key, l)) break;
    }
    return nullptr;
  }
  M* firstMember() const { return headFrom(0); }
  // The first member at or after `key`'s place in the hash order, whether or not `key` is present.
  M* startAtHashMember(const K& key) const { return seek(key, true); }
  // The first member strictly after `key`'s place in the hash order.
  M* findNextMember(const K& key) const { return seek(key, false); }
  M* successorOf(const M* m) const {
    const HashLink* l = m;
    return l->next_ ? static_cast<M*>(l->next_) : headFrom(bucketOf(l->revHash_) + 1);
  }

  void memberIs(const Ptr<M>& m) { newMember(m, H()(m->fwkKey())); }
  // Inserts a member whose key is absent, under the given hash.
  void newMember(const Ptr<M>& m, U32 hash) {
    HashLink* t = m.ptr();
    assert(!t->fwkHmLinked() && "t->fwkHmNext() == 0");
    if (buckets_.empty() || count_ >= 2 * buckets_.size()) {
      resize(buckets_.empty() ? 3 : bits_ + 1);
    } else if (bits_ > 3 && count_ < buckets_.size() / 16) {
      U32 bits = bits_;
      while (bits > 3 && count_ < (std::size_t(1) << bits) / 4) --bits;
      resize(bits);
    }
    t->revHash_ = bitReverse(hash);
    HashLink** link = &buckets_[bucketOf(t->revHash_)];
    while (*link && !before(t->revHash_, m->fwkKey(), *link)) link = &(*link)->next_;
    t->next_ = *link;
    *link = t;
    t->linked_ = true;
    m->newRef();
    ++count_;
    ++version_;
  }
  // Removes the member of `key` and hands back the collection's reference; null when absent.
  Ptr<M> deleteMember(const K& key) {
    M* m = member(key);
    if (!m) return nullptr;
    Ptr<M> held(m);
    HashLink** link = &buckets_[bucketOf(static_cast<HashLink*>(m)->revHash_)];
    while (*link != static_cast<HashLink*>(m)) link = &(*link)->next_;
    *link = m->HashLink::next_;
    unlink(m);
    --count_;
    ++version_;
    return held;
  }
  void clear() {
    for (HashLink*& head : buckets_) {
      while (head) {
        HashLink* l = head;
        head = l->next_;
        unlink(static_cast<M*>(l));
      }
    }
    count_ = 0;
    ++version_;
  }

  Iterator begin() { return Iterator(this, firstMember()); }
  IteratorConst begin() const { return IteratorConst(this, firstMember()); }
  Iterator startAtHash(const K& key) { return Iterator(this, startAtHashMember(key)); }
  IteratorConst startAtHash(const K& key) const { return IteratorConst(this, startAtHashMember(key)); }
  Iterator findNextG(const K& key) { return Iterator(this, findNextMember(key)); }
  IteratorConst findNextG(const K& key) const { return IteratorConst(this, findNextMember(key)); }

 private:
  // Whether (rev, key) sorts before the member at `l`.
  static bool before(U32 rev, const K& key, const HashLink* l) {
    return rev != l->revHash_ ? rev < l->revHash_ : key < static_cast<const M*>(l)->fwkKey();
  }
  std::size_t bucketOf(U32 rev) const noexcept { return bits_ ? rev >> (32 - bits_) : 0; }
  HashLink* head(U32 rev) const { return buckets_.empty() ? nullptr : buckets_[bucketOf(rev)]; }
  M* headFrom(std::size_t bucket) const {
    if (count_ == 0) return nullptr;
    for (; bucket < buckets_.size(); ++bucket)
      if (buckets_[bucket]) return static_cast<M*>(buckets_[bucket]);
    return nullptr;
  }
  M* seek(const K& key, bool inclusive) const {
    if (buckets_.empty()) return nullptr;
    U32 rev = bitReverse(H()(key));
    std::size_t b = bucketOf(rev);
    for (HashLink* l = buckets_[b]; l; l = l->next_) {
      const M* m = static_cast<const M*>(l);
      if (before(rev, key, l) || (inclusive && l->revHash_ == rev && m->fwkKey() == key)) return const_cast<M*>(m);
    }
    return headFrom(b + 1);
  }
  static void unlink(M* m) {
    HashLink* l = m;
    l->next_ = nullptr;
    l->linked_ = false;
    m->deleteRef();
  }
  // Rebuilds the buckets for 2^bits of them; chains keep their order because it is the hash order.
  void resize(U32 bits) {
    std::vector<HashLink*> old;
    old.swap(buckets_);
    bits_ = bits;
    buckets_.assign(std::size_t(1) << bits, nullptr);
    std::vector<HashLink**> tails(buckets_.size());
    for (std::size_t i = 0; i < buckets_.size(); ++i) tails[i] = &buckets_[i];
    for (HashLink* l : old) {
      while (l) {
        HashLink* next = l->next_;
        std::size_t b = bucketOf(l->revHash_);
        l->next_ = nullptr;
        *tails[b] = l;
        tails[b] = &l->next_;
        l = next;
      }
    }
  }

  std::vector<HashLink*> buckets_;
  U32 bits_ = 0;
  std::size_t count_ = 0;
  U64 version_ = 0;
};

}  // namespace Quor
