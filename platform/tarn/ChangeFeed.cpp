#include "platform/tarn/ChangeFeed.h"

#include "platform/quor/Clock.h"

namespace Tarn {

namespace {
// Work items between two looks at the clock.
constexpr U32 clockStride = 128;
}  // namespace

void ChangeFeed::size(const TableGeometry& g) {
  keySize_ = g.keySize;
  slots_ = g.capacity;
  counts_ = ZeroedArray<U32>(g.capacity);
  seen_ = ZeroedArray<Seen>(g.capacity);
  keys_ = ZeroedArray<std::byte>(std::size_t(g.capacity) * g.keySize);
  record_.resize(g.recordSize);
  key_.resize(g.keySize);
  leaving_.resize(g.keySize);
}

void ChangeFeed::follow(const TableReader& table) {
  size(table.geometry());
  generation_ = table.generation();
  cursor_ = table.logHead();
  resyncing_ = false;
}

void ChangeFeed::refollow(const TableReader& table) {
  // Slot counts of another file say nothing: remember the keys, forget the slots.
  for (U32 slot = 0; slot < slots_; ++slot)
    if (seen_[slot] == present) orphans_.insert(orphans_.end(), keyAt(slot), keyAt(slot) + keySize_);
  if (keySize_ != table.geometry().keySize) orphans_.clear();
  size(table.geometry());
  generation_ = table.generation();
  cursor_ = table.logHead();
  resync();
}

void ChangeFeed::resync() {
  resyncing_ = true;
  resyncPos_ = 0;
}

// A key recorded on a read is still delivered when the feed reconciles its slot (the count recorded
// is one that the slot has already passed), unless the slot was unknown and the table settled: then
// nothing has changed in the slot since following began, and the read is all there is to know.
void ChangeFeed::recordRead(const TableReader& table, U32 slot, U32 count, const std::byte* record) {
  if (slot >= slots_) return;
  bool known = seen_[slot] == present;
  if (known && std::memcmp(keyAt(slot), record, keySize_) == 0) return;
  if (known) {
    orphans_.insert(orphans_.end(), keyAt(slot), keyAt(slot) + keySize_);
    if (pendingHook_) pendingHook_();
  }
  counts_[slot] = seen_[slot] == unknown && settled(table) ? count : count - 1;
  seen_[slot] = present;
  std::memcpy(keyAt(slot), record, keySize_);
}

// The writer opens a batch (odd counter) before it writes a slot and logs every write before it
// closes the batch, so an even counter that holds across a look at the log head means no write is
// published and not yet logged.
bool ChangeFeed::settled(const TableReader& table) const {
  if (resyncing_ || !orphans_.empty() || generation_ != table.generation()) return false;
  const U64 commits = table.commitSeq();
  if (commits & 1) return false;
  return table.logHead() == cursor_ && table.commitSeq() == commits;
}

bool ChangeFeed::caughtUp(const TableReader& table) const {
  return !resyncing_ && orphans_.empty() && generation_ == table.generation() && cursor_ == table.logHead();
}

bool ChangeFeed::deliveredThrough(const TableReader& table, U64 logPosition) const {
  return !resyncing_ && orphans_.empty() && generation_ == table.generation() && cursor_ >= logPosition;
}

bool ChangeFeed::deliverKey(const std::byte* key, const Deliver& deliver) {
  std::memcpy(key_.data(), key, keySize_);  // the receiver may cause the slot memory to change
  ++delivered_;
  return deliver(key_.data());
}

// Compares one slot with what was seen there and delivers the keys that left it and arrived in it.
bool ChangeFeed::reconcile(const TableReader& table, U32 slot, const Deliver& deliver) {
  U32 count = 0;
  bool occupied = table.readSlot(slot, record_.data(), &count) == SlotState::occupied;
  if (seen_[slot] != unknown && count == counts_[slot]) return true;
  bool left = seen_[slot] == present && (!occupied || std::memcmp(keyAt(slot), record_.data(), keySize_) != 0);
  if (left) std::memcpy(leaving_.data(), keyAt(slot), keySize_);
  counts_[slot] = count;
  seen_[slot] = occupied ? present : absent;
  if (occupied) std::memcpy(keyAt(slot), record_.data(), keySize_);
  if (left && !deliverKey(leaving_.data(), deliver)) return false;
  return !occupied || deliverKey(record_.data(), deliver);
}

bool ChangeFeed::pump(const TableReader& table, double deadline, const Deliver& deliver) {
  U32 work = 0;
  auto timeUp = [&] { return ++work % clockStride == 0 && Quor::now() > deadline; };
  for (;;) {
    while (!orphans_.empty()) {
      if (timeUp()) return false;
      std::memcpy(leaving_.data(), &*(orphans_.end() - keySize_), keySize_);
      orphans_.resize(orphans_.size() - keySize_);
      if (!deliverKey(leaving_.data(), deliver)) return false;
    }
    if (U64 generation = table.generation(); generation != generation_) {
      generation_ = generation;
      resync();
    }
    if (resyncing_) {
      if (resyncPos_ == 0) cursor_ = table.logHead();
      while (resyncPos_ < table.capacity()) {
        if (timeUp()) return false;
        if (!reconcile(table, resyncPos_++, deliver)) return false;
      }
      resyncing_ = false;
      ++resyncs_;
    }
    U64 head = table.logHead();
    if (cursor_ == head) {
      if (orphans_.empty()) return true;
      continue;
    }
    if (head < cursor_ || head - cursor_ > table.geometry().logCapacity) {
      resync();
      continue;
    }
    for (; cursor_ < head; ++cursor_) {
      if (timeUp()) return false;
      U32 slot;
      if (!table.logEntry(cursor_, &slot)) {  // lapped while reading
        resync();
        break;
      }
      if (!reconcile(table, slot, deliver)) {
        ++cursor_;
        return false;
      }
    }
  }
}

}  // namespace Tarn
