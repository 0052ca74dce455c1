#pragma once
// The reader's memory of one table, from which it tells its reactors which keys changed.
//
// The feed keeps, per slot, the write count and key it last saw. Normally it follows the writer's
// change log and compares only the slots the log names; a slot whose count has not moved is skipped,
// so a slot written many times costs one notification. When it cannot trust the log (the writer lapped
// it, a new writer took the file over, a writer died in a batch) it reconciles every slot instead.
// Either way a key is delivered when its slot now holds it with a new count, and a key it remembered
// is delivered when its slot no longer holds it, so deletions are never lost. A key may be delivered
// more often than it changed, never less: the receiver reads the table for the present state.
//
// The receiver learns the present through its own reads: it makes its own first pass over what the
// table held when the feed began to follow it, and reads keys as they are delivered. So the feed
// remembers exactly what the receiver may have seen: what it read and what was delivered. A key read
// from a slot is recorded there (still to be delivered at the slot's next change), and a key it
// displaces is queued for delivery; every later change of what the receiver has read is then a write
// to a slot where the feed knows the key. A read never stands in for a delivery: another reactor of
// the same table may need the change that the read ran ahead of, so a key read while a change may be
// waiting for the feed is still delivered at its slot's next reconciliation.
//
// Following a table costs nothing up front: a slot the receiver has not read is unknown, and a
// change logged in it delivers what it holds now (a deletion there removes a key that nobody read).
// The first read of an unknown slot at a settled moment (no batch under way, the log delivered to its
// head) records the slot exactly, so a first pass over a quiet table leaves nothing to deliver again.
// Slots that are never read take no memory.
//
// Delivery stops at a deadline and resumes on the next pump, where it left off.
#include <cstddef>
#include <functional>
#include <vector>

#include "platform/tarn/TableReader.h"
#include "platform/tarn/ZeroedArray.h"

namespace Tarn {

class ChangeFeed : public ReadObserver {
 public:
  // Receives the bytes of one key; false stops the pump at once (the table was let go meanwhile).
  using Deliver = std::function<bool(const std::byte* key)>;

  // Follows `table` from now on: what it holds now is the receiver's to read, nothing is delivered.
  void follow(const TableReader& table);
  // Moves to `table`, a file that replaced the one followed: every key remembered and every key the
  // new file holds is delivered.
  void refollow(const TableReader& table);
  // Reconciles every slot on the next pumps (the writer may have changed slots without logging them).
  void resync();

  // Delivers changed keys until `deadline` (Quor::now() seconds); true when caught up.
  bool pump(const TableReader& table, double deadline, const Deliver& deliver);
  bool caughtUp(const TableReader& table) const;
  // Whether every change logged before `logPosition` of `table` has been delivered.
  bool deliveredThrough(const TableReader& table, U64 logPosition) const;
  // Called when a read queued a displaced key, so that the owner can schedule a pump.
  void pendingHookIs(std::function<void()> hook) { pendingHook_ = std::move(hook); }
  void recordRead(const TableReader& table, U32 slot, U32 count, const std::byte* record) override;
  U64 resyncs() const noexcept { return resyncs_; }
  U64 delivered() const noexcept { return delivered_; }

 private:
  enum Seen : U8 { unknown, absent, present };
  bool reconcile(const TableReader& table, U32 slot, const Deliver& deliver);
  // Whether no write of `table` can be waiting for the feed: none under way, every one delivered.
  bool settled(const TableReader& table) const;
  bool deliverKey(const std::byte* key, const Deliver& deliver);
  std::byte* keyAt(U32 slot) { return &keys_[std::size_t(slot) * keySize_]; }
  void size(const TableGeometry& g);

  U32 keySize_ = 0;
  U32 slots_ = 0;
  // Per slot, zero (unknown) until the slot is first seen: pages of slots never seen are not touched.
  ZeroedArray<U32> counts_;
  ZeroedArray<Seen> seen_;
  ZeroedArray<std::byte> keys_;
  // Keys still to deliver that no slot holds: displaced by a read, or of a file that was replaced.
  std::vector<std::byte> orphans_;
  std::function<void()> pendingHook_;
  std::vector<std::byte> record_, key_, leaving_;
  U64 cursor_ = 0;
  U64 generation_ = 0;
  bool resyncing_ = false;
  U32 resyncPos_ = 0;
  U64 resyncs_ = 0;
  U64 delivered_ = 0;
};

}  // namespace Tarn
