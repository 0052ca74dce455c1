#pragma once
// A read-only mapping of one table file: lookups by key, walks in slot order, and the raw reads that
// the change feed needs. It takes no lock and never writes.
//
// Every read first compares the file's sealed header with the copy taken at open, then copies the
// record with the slot protocol of TableFormat.h, retrying a bounded number of times. A header that
// changed, a slot in an impossible state, a record whose checksum does not match, a slot that kept
// changing through every attempt: each raises CorruptionDetectedException naming the file and slot.
//
// A read maps the pages it touches into the process; they go back a second later (PageHandBack.h).
#include <memory>
#include <string>
#include <string_view>

#include "platform/tarn/Exceptions.h"
#include "platform/tarn/MappedFile.h"
#include "platform/tarn/PageHandBack.h"
#include "platform/tarn/TableFormat.h"

namespace Tarn {

struct ReaderCounters {
  U64 reads = 0;        // slot reads, of lookups, walks and the change feed
  U64 retries = 0;      // reads repeated because the writer was rewriting the slot
  U64 corruptions = 0;  // CorruptionDetectedException raised
};

class TableReader;

// Told of every record that a lookup or a walk of `table` hands out, with its slot and write count.
class ReadObserver {
 public:
  virtual ~ReadObserver() = default;
  virtual void recordRead(const TableReader& table, U32 slot, U32 count, const std::byte* record) = 0;
};

class TableReader {
 public:
  static constexpr int maxReadAttempts = 64;

  // Maps the file at `path`, which must hold records of `type` with the given key and record sizes.
  // Null when there is no such file; CorruptionDetectedException when the file is not such a table.
  static std::unique_ptr<TableReader> open(const std::string& path, std::string_view type, U32 keySize,
                                           U32 recordSize);

  const std::string& path() const noexcept { return path_; }
  const TableGeometry& geometry() const noexcept { return geometry_; }
  int fd() const noexcept { return fd_.get(); }

  // The change feed that must know what the reader's users have seen (see ChangeFeed).
  void observerIs(ReadObserver* observer) noexcept { observer_ = observer; }

  // Copies the record of `key` into `out` (recordSize bytes); false when absent.
  bool lookup(const void* key, void* out) const;
  // The first occupied slot at or after `from`, with its record copied into `out`; capacity() if none.
  U32 nextOccupied(U32 from, void* out) const;
  // Reads slot `slot` whole: its state, its record into `out`, and its write count into `published`.
  SlotState readSlot(U32 slot, void* out, U32* published) const;

  U32 members() const noexcept;
  U32 capacity() const noexcept { return geometry_.capacity; }
  U64 generation() const noexcept;
  bool batchOpen() const noexcept;
  // The writer's commit counter: odd while a batch is being applied, and moved by every batch.
  U64 commitSeq() const noexcept;
  U64 logHead() const noexcept;
  // The slot number at a change-log position below logHead(); false when the writer has since
  // overwritten the position.
  bool logEntry(U64 position, U32* slot) const;
  // Whether the file has been removed or replaced since it was mapped.
  bool unlinked() const;
  const ReaderCounters& counters() const noexcept { return counters_; }


 private:
  TableReader(std::string path, FileDescriptor fd, Mapping mapping, const TableGeometry& geometry);
  void checkHeader() const;
  [[noreturn]] void corrupt(const std::string& what) const;

  std::string path_;
  FileDescriptor fd_;
  Mapping mapping_;
  PageHandBack pages_{mapping_};
  TableGeometry geometry_;
  TableMemory memory_;
  unsigned char sealedHeader_[fixedHeaderSize];

  mutable ReaderCounters counters_;
  ReadObserver* observer_ = nullptr;
};

}  // namespace Tarn
