#pragma once
// The layout of a table file in shared memory, shared by its one writer and its readers.
//
//   [FileHeader][change log: logCapacity entries][capacity slots]
//
// A table is an open-addressing hash table of fixed-size records whose first keySize bytes are the
// key. Collisions probe linearly; a deleted record leaves a tombstone that keeps its key, so that a
// reader probing past it never loses a record that was present throughout its lookup, and a
// tombstone becomes empty again as soon as nothing can probe past it.
//
// Each slot holds two copies of its record and two counters. A write goes to the copy that readers
// are not using: `begun` announces write n, the copy n&1 is filled, `published` = n makes it current.
// A reader copies the current copy and accepts it if no write beyond the next one has begun, so a
// record is read whole or retried, and a writer killed at any instant leaves the previous copy
// intact. `published` only grows: readers compare it with what they last saw to find changed slots.
//
// The header has an immutable part sealed by a hash, which readers compare on every read, and a live
// part: the writer's generation (bumped by each writer that takes the file over, which tells readers
// to reconcile everything), the commit counter (odd while a batch is being applied), member counts,
// and the head of the change log, a ring of the numbers of slots written, in order. A log entry holds
// the low half of its position beside the slot number, so a reader that was lapped by the writer
// finds out from the entry itself.
#include <atomic>
#include <cstddef>
#include <cstring>

#include "platform/quor/Types.h"

namespace Tarn {

inline constexpr char fileMagic[8] = {'T', 'A', 'R', 'N', 'T', 'B', 'L', '1'};
inline constexpr U32 layoutVersion = 1;
inline constexpr std::size_t typeNameSize = 64;

// Distinct non-zero words for the live states, so that stray bytes are unlikely to read as a state.
enum class SlotState : U32 { empty = 0, occupied = 0x4f434355u, deleted = 0x44454144u };

// What a table type's records look like and how many it may hold.
struct TableGeometry {
  U32 keySize = 0;
  U32 recordSize = 0;
  U32 maxMembers = 0;
  U32 capacity = 0;     // slots; more than maxMembers so that probes stay short
  U32 logCapacity = 0;  // change-log entries, a power of two

  // The geometry for up to `maxMembers` records: slots at a load of at most 0.8, and a change log of
  // one entry per record, at least 2^12 and at most 2^18 entries (2 MiB).
  static TableGeometry forRecords(U32 keySize, U32 recordSize, U32 maxMembers);
  U32 cellSize() const noexcept;
  U32 slotSize() const noexcept;
  U64 logOffset() const noexcept;
  U64 slotsOffset() const noexcept;
  U64 fileSize() const noexcept;
};

struct FileHeader {
  // Immutable once the writer has created the file.
  char magic[8];
  U32 layoutVersion;
  U32 headerSize;
  U32 keySize;
  U32 recordSize;
  U32 maxMembers;
  U32 capacity;
  U32 logCapacity;
  U32 reserved;
  U64 fileSize;
  char type[typeNameSize];
  U64 seal;  // hash of all the bytes above

  // Changed by the writer while the table lives.
  alignas(64) std::atomic<U64> generation;
  std::atomic<U64> commitSeq;
  std::atomic<U32> members;
  std::atomic<U32> tombstones;
  alignas(64) std::atomic<U64> logHead;  // change-log entries ever appended
  alignas(64) U64 doorbell;              // written with pwrite(2) so that readers' inotify wakes up

  U64 computeSeal() const noexcept;
  TableGeometry geometry() const noexcept;
};

struct SlotControl {
  std::atomic<U32> begun;
  std::atomic<U32> published;
};

struct CellHeader {
  U32 state;
  U32 checksum;  // of the state and the record bytes; absent (0) in an empty cell
};

static_assert(std::atomic<U64>::is_always_lock_free && std::atomic<U32>::is_always_lock_free,
              "shared-memory counters must be lock-free, hence address-free");
static_assert(sizeof(FileHeader) % 64 == 0);
// The bytes under the seal; with the seal itself, what a reader compares on every read.
inline constexpr std::size_t sealedHeaderSize = offsetof(FileHeader, seal);
inline constexpr std::size_t fixedHeaderSize = sealedHeaderSize + sizeof(U64);

// Addresses of the parts of a mapped table file.
class TableMemory {
 public:
  TableMemory() = default;
  TableMemory(std::byte* base, const TableGeometry& g)
      : base_(base), log_(reinterpret_cast<std::atomic<U64>*>(base + g.logOffset())),
        slots_(base + g.slotsOffset()), slotSize_(g.slotSize()), cellSize_(g.cellSize()) {}

  FileHeader& header() const noexcept { return *reinterpret_cast<FileHeader*>(base_); }
  std::atomic<U64>& logEntry(U64 position, U32 logCapacity) const noexcept {
    return log_[position & (logCapacity - 1)];
  }
  static U64 logEntryValue(U64 position, U32 slot) noexcept { return U64(U32(position)) << 32 | slot; }
  SlotControl& control(U32 slot) const noexcept { return *reinterpret_cast<SlotControl*>(slotBase(slot)); }
  CellHeader& cell(U32 slot, U32 copy) const noexcept {
    return *reinterpret_cast<CellHeader*>(slotBase(slot) + sizeof(SlotControl) + copy * cellSize_);
  }
  static std::byte* record(CellHeader& cell) noexcept { return reinterpret_cast<std::byte*>(&cell + 1); }
  // The copy that readers use now.
  CellHeader& current(U32 slot) const noexcept {
    return cell(slot, control(slot).published.load(std::memory_order_relaxed) & 1);
  }

 private:
  std::byte* slotBase(U32 slot) const noexcept { return slots_ + std::size_t(slot) * slotSize_; }
  std::byte* base_ = nullptr;
  std::atomic<U64>* log_ = nullptr;
  std::byte* slots_ = nullptr;
  U32 slotSize_ = 0;
  U32 cellSize_ = 0;
};

U64 hashBytes(const void* bytes, std::size_t size, U64 seed = 0) noexcept;
U32 cellChecksum(U32 state, const std::byte* record, U32 recordSize) noexcept;
// The slot where a key's probe starts: the hash scaled onto [0, capacity).
inline U32 homeSlot(const void* key, U32 keySize, U32 capacity) noexcept {
  __extension__ typedef unsigned __int128 Wide;
  return static_cast<U32>((static_cast<Wide>(hashBytes(key, keySize)) * capacity) >> 64);
}

}  // namespace Tarn
