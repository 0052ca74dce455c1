#pragma once
// The one writer of a table file: records are put and erased by key inside a batch, and commit()
// ends the batch and wakes the readers.
//
// A file is written by one writer at a time, held by an open-file-description lock for the
// writer's life. A writer that finds a well-formed file of the same type and geometry takes it over
// (readers keep their mapping and reconcile, because the generation changes); otherwise it builds a
// new file beside it and renames it into place, and readers move to the new file. The new file of a
// table rebuilt at another size already holds every record of the old one, so that a reader never
// sees a key vanish while the table grows.
//
// Each put or erase is visible to readers as soon as it is made, one record at a time; a batch only
// groups the wake-up. A writer killed in a batch leaves every record whole and the commit counter
// odd, from which readers learn to reconcile the whole table.
#include <functional>
#include <string>
#include <string_view>

#include "platform/tarn/MappedFile.h"
#include "platform/tarn/PageHandBack.h"
#include "platform/tarn/TableFormat.h"

namespace Tarn {

class TableWriter {
 public:
  // Opens or creates the table file at `path` (and its directories). Waits up to `lockWait` seconds
  // for another writer to let go, then raises std::system_error (EWOULDBLOCK). `fresh` discards what
  // the file holds. Raises Quor::RangeException, leaving the file as it was, when the records of a
  // table of another size do not fit `geometry`.
  TableWriter(std::string path, std::string_view type, const TableGeometry& geometry, double lockWait = 0,
              bool fresh = false);
  ~TableWriter();
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;

  // Inserts or replaces the record whose key is its first keySize bytes. Raises Quor::RangeException
  // when the table already holds maxMembers records and this key is new.
  void put(const void* record);
  // Removes the record of `key`; false when there is none.
  bool erase(const void* key);
  // Ends the batch that the first put or erase since the last commit opened, and wakes the readers.
  void commit();

  bool find(const void* key, void* out) const;
  // Calls `visit` with every record, in slot order; `visit` must not write to this table.
  void forEachRecord(const std::function<void(const void* record)>& visit) const;
  U32 members() const noexcept;
  const TableGeometry& geometry() const noexcept { return geometry_; }
  const std::string& path() const noexcept { return path_; }

 private:
  struct Probe {
    U32 slot;         // where the key is, or where it would go
    bool found;
  };
  bool takeOver();
  void carryOver(const TableGeometry& from);
  Probe probe(const void* key) const;
  SlotState stateOf(U32 slot) const;
  const std::byte* recordOf(U32 slot) const;
  void writeSlot(U32 slot, SlotState state, const void* record);
  void openBatch();
  // commit() without raising: false when the readers' doorbell could not be rung.
  bool endBatch() noexcept;
  void reclaimTombstonesBefore(U32 slot);
  void compactIfCrowded();
  U32 next(U32 slot) const noexcept { return slot + 1 == geometry_.capacity ? 0 : slot + 1; }
  U32 prev(U32 slot) const noexcept { return slot == 0 ? geometry_.capacity - 1 : slot - 1; }

  std::string path_;
  TableGeometry geometry_;
  FileDescriptor fd_;
  Mapping mapping_;
  PageHandBack pages_{mapping_};
  TableMemory memory_;
  bool batchOpen_ = false;
};

}  // namespace Tarn
