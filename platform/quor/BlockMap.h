#pragma once
// Ordered collection of plain values kept by value in sorted blocks, for tables of millions of small
// rows (ipCidrRouteTable), where a node of its own per row (a reference-counted entity with tree links
// in a heap block) costs more than twice the row.
//
// Storage: blocks of up to blockRows members in key order, each one heap block of BlockBytes, and
// one array of the blocks' first keys, which a lookup searches before the block it picks. An
// insertion into a full block first moves members to a neighbour that has room and splits the block
// only when neither has any, which keeps blocks about 80% full whatever the order of insertion; a
// removal that leaves a block under a quarter full merges it into a neighbour when the two fit in
// three quarters of a block, and an empty block goes at once.
//
// Members are values, the collection owns them, and they change only by removal and insertion. A
// lookup's pointer stays valid until the next change of the collection. The iterator keeps a copy of
// its member and the collection's version at its last step, which gives the guarantee of
// CollectionIterator with the copy in place of the reference:
//   1. with the version unchanged, it steps to the member after its own in place;
//   2. with the version changed, it goes to the first member above its copy's key, whether or not
//      that key is still present, and stores the new version;
//   3. its member stays readable after removal: it is the iterator's own copy.
// So a walk never fails and never visits a key twice; it sees members inserted ahead of it and not
// those inserted behind it.
#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

#include "platform/quor/Types.h"

namespace Quor {

template <class M, class K, std::size_t BlockBytes = 4096>
class BlockMap {
  static_assert(std::is_trivially_copyable_v<M>, "members are moved with memmove");
  static_assert(std::is_default_constructible_v<M>, "an iterator holds a member by value");

  struct Block;

 public:
  using Key = K;
  using Member = M;
  static constexpr U32 blockRows = static_cast<U32>((BlockBytes - alignof(M) - sizeof(U32)) / sizeof(M));
  static_assert(blockRows >= 8, "a block holds a few members at least");

  // A place in the collection: block and slot; the end is {blocks, 0}.
  struct Position {
    U32 block = 0;
    U32 slot = 0;
  };

  class IteratorConst {
   public:
    using Key = K;
    IteratorConst() = default;

    explicit operator bool() const noexcept { return present_; }
    bool atEnd() const noexcept { return !present_; }
    const M* ptr() const noexcept { return present_ ? &member_ : nullptr; }
    const M* operator->() const noexcept { return &member_; }
    const M& operator*() const noexcept { return member_; }
    const K& key() const noexcept { return member_.fwkKey(); }
    const BlockMap* collection() const noexcept { return map_; }
    U64 version() const noexcept { return version_; }

    void advance() {
      if (!present_) return;
      const Position next = version_ == map_->version_ ? map_->after(at_) : map_->upperBound(member_.fwkKey());
      version_ = map_->version_;
      place(next);
    }
    IteratorConst& operator++() {
      advance();
      return *this;
    }

   private:
    friend class BlockMap;
    IteratorConst(const BlockMap* map, Position at) : map_(map), version_(map->version_) { place(at); }
    void place(Position at) {
      at_ = at;
      present_ = !map_->isEnd(at);
      if (present_) member_ = map_->at(at);
    }

    const BlockMap* map_ = nullptr;
    U64 version_ = 0;
    Position at_;
    bool present_ = false;
    M member_{};
  };
  // Members are changed by removal and insertion only: both kinds of iterator read.
  using Iterator = IteratorConst;

  BlockMap() = default;
  BlockMap(const BlockMap&) = delete;
  BlockMap& operator=(const BlockMap&) = delete;
  ~BlockMap() { clear(); }

  std::size_t members() const noexcept { return members_; }
  U64 version() const noexcept { return version_; }
  // Blocks in use, and the bytes they and the first-key array hold.
  std::size_t blocks() const noexcept { return blocks_.size(); }
  std::size_t bytes() const noexcept {
    return blocks_.size() * sizeof(Block) + blocks_.capacity() * sizeof(Block*) + firsts_.capacity() * sizeof(K);
  }

  const M* member(const K& key) const {
    const Position p = lowerBound(key);
    return !isEnd(p) && at(p).fwkKey() == key ? &at(p) : nullptr;
  }
  const M* firstMember() const { return blocks_.empty() ? nullptr : &blocks_.front()->rows[0]; }
  // The member with `key`, else the one with the smallest key above it.
  const M* startAtMember(const K& key) const { return pointer(lowerBound(key)); }
  // The member with the smallest key strictly above `key`.
  const M* findNextMember(const K& key) const { return pointer(upperBound(key)); }

  IteratorConst begin() const { return IteratorConst(this, Position{}); }
  IteratorConst startAt(const K& key) const { return IteratorConst(this, lowerBound(key)); }
  IteratorConst findNext(const K& key) const { return IteratorConst(this, upperBound(key)); }

  // Inserts a member whose key is absent; the pointer to it holds until the next change.
  const M* memberIs(const M& m) {
    const K key = m.fwkKey();
    ++version_;
    ++members_;
    if (blocks_.empty()) {
      blocks_.push_back(new Block);
      firsts_.push_back(key);
      return putAt(Position{}, m);
    }
    Position at = blockFor(key);
    at.slot = slotOf(*blocks_[at.block], key, false);
    assert((at.slot == blocks_[at.block]->count || !(blocks_[at.block]->rows[at.slot].fwkKey() == key)) &&
           "key already present");
    if (blocks_[at.block]->count == blockRows) at = makeRoom(at);
    return putAt(at, m);
  }
  // Removes the member of `key`; false when absent.
  bool deleteMember(const K& key) {
    const Position p = lowerBound(key);
    if (isEnd(p) || !(at(p).fwkKey() == key)) return false;
    erase(p);
    return true;
  }
  void clear() {
    for (Block* block : blocks_) delete block;
    blocks_ = {};
    firsts_ = {};
    members_ = 0;
    ++version_;
  }

 private:
  struct Block {
    U32 count = 0;
    M rows[blockRows];
  };

  bool isEnd(Position at) const noexcept { return at.block >= blocks_.size(); }
  const M& at(Position p) const noexcept { return blocks_[p.block]->rows[p.slot]; }
  const M* pointer(Position p) const noexcept { return isEnd(p) ? nullptr : &at(p); }
  Position end() const noexcept { return Position{static_cast<U32>(blocks_.size()), 0}; }
  // A slot one past a block's last member stands for the next block's first.
  Position normalized(Position p) const noexcept {
    return p.slot < blocks_[p.block]->count ? p : Position{p.block + 1, 0};
  }
  Position after(Position p) const noexcept { return normalized(Position{p.block, p.slot + 1}); }

  // The last block whose first key is not above `key`; the first block when every one is above it.
  Position blockFor(const K& key) const {
    const auto above = std::upper_bound(firsts_.begin(), firsts_.end(), key);
    return Position{above == firsts_.begin() ? 0 : static_cast<U32>(above - firsts_.begin() - 1), 0};
  }
  // The first slot of `block` whose key is not below `key` (strictly above it with `strictly`).
  static U32 slotOf(const Block& block, const K& key, bool strictly) {
    const M* const first = block.rows;
    const M* const last = block.rows + block.count;
    const M* const found = strictly ? std::upper_bound(first, last, key,
                                                       [](const K& k, const M& m) { return k < m.fwkKey(); })
                                    : std::lower_bound(first, last, key,
                                                       [](const M& m, const K& k) { return m.fwkKey() < k; });
    return static_cast<U32>(found - first);
  }
  Position lowerBound(const K& key) const {
    if (blocks_.empty()) return end();
    Position at = blockFor(key);
    at.slot = slotOf(*blocks_[at.block], key, false);
    return normalized(at);
  }
  Position upperBound(const K& key) const {
    if (blocks_.empty()) return end();
    Position at = blockFor(key);
    at.slot = slotOf(*blocks_[at.block], key, true);
    return normalized(at);
  }

  const M* putAt(Position at, const M& m) {
    Block& block = *blocks_[at.block];
    std::memmove(&block.rows[at.slot + 1], &block.rows[at.slot], (block.count - at.slot) * sizeof(M));
    block.rows[at.slot] = m;
    ++block.count;
    if (at.slot == 0) firsts_[at.block] = m.fwkKey();
    return &block.rows[at.slot];
  }

  // Room in the full block of `at` for one member, by moving members to a neighbour or by a split;
  // returns where the member now goes.
  Position makeRoom(Position at) {
    Block& block = *blocks_[at.block];
    // A neighbour with room for two takes half its room, so that both have room left for the one.
    if (at.block + 1 < blocks_.size() && blocks_[at.block + 1]->count + 2 <= blockRows) {
      Block& next = *blocks_[at.block + 1];
      const U32 moving = (blockRows - next.count) / 2;
      std::memmove(&next.rows[moving], &next.rows[0], next.count * sizeof(M));
      std::memcpy(&next.rows[0], &block.rows[block.count - moving], moving * sizeof(M));
      next.count += moving;
      block.count -= moving;
      firsts_[at.block + 1] = next.rows[0].fwkKey();
      return at.slot <= block.count ? at : Position{at.block + 1, at.slot - block.count};
    }
    if (at.block > 0 && blocks_[at.block - 1]->count + 2 <= blockRows) {
      Block& previous = *blocks_[at.block - 1];
      const U32 moving = (blockRows - previous.count) / 2;
      std::memcpy(&previous.rows[previous.count], &block.rows[0], moving * sizeof(M));
      std::memmove(&block.rows[0], &block.rows[moving], (block.count - moving) * sizeof(M));
      previous.count += moving;
      block.count -= moving;
      firsts_[at.block] = block.rows[0].fwkKey();
      if (at.slot < moving) return Position{at.block - 1, previous.count - moving + at.slot};
      return Position{at.block, at.slot - moving};
    }
    auto* upper = new Block;
    const U32 kept = blockRows / 2;
    upper->count = block.count - kept;
    std::memcpy(&upper->rows[0], &block.rows[kept], upper->count * sizeof(M));
    block.count = kept;
    blocks_.insert(blocks_.begin() + at.block + 1, upper);
    firsts_.insert(firsts_.begin() + at.block + 1, upper->rows[0].fwkKey());
    return at.slot <= kept ? at : Position{at.block + 1, at.slot - kept};
  }

  void erase(Position at) {
    ++version_;
    --members_;
    Block& block = *blocks_[at.block];
    std::memmove(&block.rows[at.slot], &block.rows[at.slot + 1], (block.count - at.slot - 1) * sizeof(M));
    --block.count;
    if (block.count == 0) {
      dropBlock(at.block);
      return;
    }
    if (at.slot == 0) firsts_[at.block] = block.rows[0].fwkKey();
    if (block.count >= blockRows / 4) return;
    const U32 fits = blockRows * 3 / 4;
    if (at.block + 1 < blocks_.size() && block.count + blocks_[at.block + 1]->count <= fits) {
      mergeInto(at.block, at.block + 1);
    } else if (at.block > 0 && blocks_[at.block - 1]->count + block.count <= fits) {
      mergeInto(at.block - 1, at.block);
    }
  }
  // Appends the members of block `from` to those of block `into`, the one before it, and drops it.
  void mergeInto(U32 into, U32 from) {
    Block& target = *blocks_[into];
    const Block& source = *blocks_[from];
    std::memcpy(&target.rows[target.count], &source.rows[0], source.count * sizeof(M));
    target.count += source.count;
    dropBlock(from);
  }
  void dropBlock(U32 index) {
    delete blocks_[index];
    blocks_.erase(blocks_.begin() + index);
    firsts_.erase(firsts_.begin() + index);
  }

  std::vector<Block*> blocks_;
  std::vector<K> firsts_;  // firsts_[i] is the key of blocks_[i]'s first member
  std::size_t members_ = 0;
  U64 version_ = 0;
};

}  // namespace Quor
