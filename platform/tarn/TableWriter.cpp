#include "platform/tarn/TableWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>
#include <vector>

#include "platform/quor/Exception.h"

namespace Tarn {

namespace {

// Takes the writer's lock on `fd`, waiting until `deadline` for another writer to let go.
void lockForWriting(int fd, const std::string& path, std::chrono::steady_clock::time_point deadline) {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  while (::fcntl(fd, F_OFD_SETLK, &lock) != 0) {
    if (errno != EAGAIN && errno != EACCES) throwSystemError("lock", path);
    if (std::chrono::steady_clock::now() >= deadline) {
      errno = EWOULDBLOCK;
      throwSystemError("lock (another writer holds the table)", path);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

bool sameFile(int fd, const std::string& path) {
  struct stat a, b;
  return ::fstat(fd, &a) == 0 && ::stat(path.c_str(), &b) == 0 && a.st_ino == b.st_ino && a.st_dev == b.st_dev;
}

// The geometry of the table in `fd` when it is a well-formed one of `type` whose records are like
// those of `g`, whatever its size.
std::optional<TableGeometry> tableIn(int fd, std::string_view type, const TableGeometry& g) {
  struct stat st;
  FileHeader h;
  if (::fstat(fd, &st) != 0 || ::pread(fd, &h, fixedHeaderSize, 0) != static_cast<ssize_t>(fixedHeaderSize))
    return std::nullopt;
  TableGeometry f = h.geometry();
  bool wellFormed = std::memcmp(h.magic, fileMagic, sizeof fileMagic) == 0 && h.seal == h.computeSeal() &&
                    h.layoutVersion == layoutVersion &&
                    std::string_view(h.type, strnlen(h.type, typeNameSize)) == type && f.keySize == g.keySize &&
                    f.recordSize == g.recordSize && f.maxMembers < f.capacity && f.logCapacity != 0 &&
                    (f.logCapacity & (f.logCapacity - 1)) == 0 && h.fileSize == f.fileSize() &&
                    static_cast<U64>(st.st_size) == f.fileSize();
  if (!wellFormed) return std::nullopt;
  return f;
}

bool sameSize(const TableGeometry& a, const TableGeometry& b) {
  return a.maxMembers == b.maxMembers && a.capacity == b.capacity && a.logCapacity == b.logCapacity;
}

void initHeader(FileHeader& h, std::string_view type, const TableGeometry& g) {
  std::memcpy(h.magic, fileMagic, sizeof fileMagic);
  h.layoutVersion = layoutVersion;
  h.headerSize = sizeof(FileHeader);
  h.keySize = g.keySize;
  h.recordSize = g.recordSize;
  h.maxMembers = g.maxMembers;
  h.capacity = g.capacity;
  h.logCapacity = g.logCapacity;
  h.fileSize = g.fileSize();
  std::memcpy(h.type, type.data(), std::min(type.size(), typeNameSize - 1));
  h.seal = h.computeSeal();
  h.generation.store(1, std::memory_order_release);
}

}  // namespace

TableWriter::TableWriter(std::string path, std::string_view type, const TableGeometry& geometry, double lockWait,
                         bool fresh)
    : path_(std::move(path)), geometry_(geometry) {
  if (geometry.keySize == 0 || geometry.keySize > geometry.recordSize || geometry.maxMembers >= geometry.capacity ||
      type.size() >= typeNameSize)
    Quor::throwRangeException("bad geometry for table " + std::string(type));
  std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
  auto deadline = std::chrono::steady_clock::now() +
                  std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(lockWait));
  // The file at the path may be replaced while we wait for its lock: then wait for the new one.
  do {
    fd_ = FileDescriptor(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
    if (!fd_) throwSystemError("open", path_);
    lockForWriting(fd_.get(), path_, deadline);
  } while (!sameFile(fd_.get(), path_));

  const std::optional<TableGeometry> present = fresh ? std::nullopt : tableIn(fd_.get(), type, geometry_);
  if (present && sameSize(*present, geometry_) && takeOver()) return;
  // A new file is built aside and renamed into place, so that a reader never maps a half-made one. A
  // table of another size is rebuilt with its records, so that readers never see it empty.
  std::string aside = path_ + ".new." + std::to_string(::getpid());
  FileDescriptor fresher(::open(aside.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  if (!fresher) throwSystemError("open", aside);
  lockForWriting(fresher.get(), aside, deadline);
  if (::ftruncate(fresher.get(), static_cast<off_t>(geometry_.fileSize())) != 0) throwSystemError("ftruncate", aside);
  mapping_ = Mapping(fresher.get(), geometry_.fileSize(), true);
  memory_ = TableMemory(mapping_.base(), geometry_);
  initHeader(memory_.header(), type, geometry_);
  if (present && !sameSize(*present, geometry_)) {
    try {
      carryOver(*present);
    } catch (...) {
      ::unlink(aside.c_str());
      throw;
    }
  }
  if (::rename(aside.c_str(), path_.c_str()) != 0) throwSystemError("rename", aside);
  fd_ = std::move(fresher);
}

// A batch left open is ended: its records are written already; a doorbell that fails here only
// leaves readers to notice at their next wake-up.
TableWriter::~TableWriter() { endBatch(); }

// Maps a well-formed file and checks every slot: a file with a damaged record is not taken over.
// The counts are recounted, because a writer killed between a slot and its count leaves them off.
bool TableWriter::takeOver() {
  mapping_ = Mapping(fd_.get(), geometry_.fileSize(), true);
  memory_ = TableMemory(mapping_.base(), geometry_);
  pages_.touched();
  U32 members = 0, tombstones = 0;
  for (U32 slot = 0; slot < geometry_.capacity; ++slot) {
    const CellHeader& cell = memory_.current(slot);
    auto state = static_cast<SlotState>(cell.state);
    if (state == SlotState::empty) continue;
    if ((state != SlotState::occupied && state != SlotState::deleted) ||
        cell.checksum != cellChecksum(cell.state, recordOf(slot), geometry_.recordSize))
      return false;
    members += state == SlotState::occupied;
    tombstones += state == SlotState::deleted;
  }
  FileHeader& h = memory_.header();
  h.members.store(members, std::memory_order_relaxed);
  h.tombstones.store(tombstones, std::memory_order_relaxed);
  if (h.commitSeq.load(std::memory_order_relaxed) & 1) h.commitSeq.fetch_add(1, std::memory_order_release);
  h.generation.fetch_add(1, std::memory_order_release);
  return true;
}

// Copies the whole records of the file still held in fd_, a table of geometry `from`, into the new
// file. A damaged record is left behind, as a reader would refuse it.
void TableWriter::carryOver(const TableGeometry& from) {
  const Mapping old(fd_.get(), from.fileSize(), false);
  const TableMemory records(old.base(), from);
  U32 members = 0;
  for (U32 slot = 0; slot < from.capacity; ++slot) {
    CellHeader& cell = records.current(slot);
    const std::byte* record = TableMemory::record(cell);
    if (static_cast<SlotState>(cell.state) != SlotState::occupied ||
        cell.checksum != cellChecksum(cell.state, record, from.recordSize))
      continue;
    Probe p = probe(record);
    if (p.found) continue;
    if (members == geometry_.maxMembers)
      Quor::throwRangeException(path_ + ": more than " + std::to_string(geometry_.maxMembers) +
                                " records to carry over into the rebuilt table");
    writeSlot(p.slot, SlotState::occupied, record);
    ++members;
  }
  memory_.header().members.store(members, std::memory_order_relaxed);
}

SlotState TableWriter::stateOf(U32 slot) const { return static_cast<SlotState>(memory_.current(slot).state); }

const std::byte* TableWriter::recordOf(U32 slot) const { return TableMemory::record(memory_.current(slot)); }

// The writer is alone, so it reads the current copies directly. The probe returns the key's slot, or
// the first tombstone on its chain, or the empty slot that ends the chain.
TableWriter::Probe TableWriter::probe(const void* key) const {
  const U32 capacity = geometry_.capacity;
  U32 slot = homeSlot(key, geometry_.keySize, capacity);
  U32 firstTombstone = capacity;
  for (U32 probes = 0; probes < capacity; ++probes, slot = next(slot)) {
    SlotState s = stateOf(slot);
    if (s == SlotState::empty) return {firstTombstone < capacity ? firstTombstone : slot, false};
    if (s == SlotState::occupied && std::memcmp(recordOf(slot), key, geometry_.keySize) == 0) return {slot, true};
    if (s == SlotState::deleted && firstTombstone == capacity) firstTombstone = slot;
  }
  return {firstTombstone, false};
}

bool TableWriter::find(const void* key, void* out) const {
  pages_.touched();
  Probe p = probe(key);
  if (p.found) std::memcpy(out, recordOf(p.slot), geometry_.recordSize);
  return p.found;
}

void TableWriter::forEachRecord(const std::function<void(const void* record)>& visit) const {
  pages_.touched();
  for (U32 slot = 0; slot < geometry_.capacity; ++slot)
    if (stateOf(slot) == SlotState::occupied) visit(recordOf(slot));
}

U32 TableWriter::members() const noexcept { return memory_.header().members.load(std::memory_order_relaxed); }

void TableWriter::openBatch() {
  if (batchOpen_) return;
  pages_.touched();
  memory_.header().commitSeq.fetch_add(1, std::memory_order_release);
  batchOpen_ = true;
}

void TableWriter::commit() {
  if (!endBatch()) throwSystemError("pwrite", path_);
}

bool TableWriter::endBatch() noexcept {
  if (!batchOpen_) return true;
  FileHeader& h = memory_.header();
  h.commitSeq.fetch_add(1, std::memory_order_release);
  batchOpen_ = false;
  // A write(2) into the file, unlike a store through the mapping, is what inotify reports.
  U64 ring = h.doorbell + 1;
  return ::pwrite(fd_.get(), &ring, sizeof ring, offsetof(FileHeader, doorbell)) == sizeof ring;
}

void TableWriter::writeSlot(U32 slot, SlotState state, const void* record) {
  SlotControl& control = memory_.control(slot);
  U32 n = control.published.load(std::memory_order_relaxed) + 1;
  control.begun.store(n, std::memory_order_relaxed);
  std::atomic_thread_fence(std::memory_order_release);
  CellHeader& cell = memory_.cell(slot, n & 1);
  std::byte* bytes = TableMemory::record(cell);
  if (state == SlotState::empty) {
    std::memset(bytes, 0, geometry_.recordSize);
    cell.checksum = 0;
  } else {
    std::memcpy(bytes, record, geometry_.recordSize);
    cell.checksum = cellChecksum(static_cast<U32>(state), bytes, geometry_.recordSize);
  }
  cell.state = static_cast<U32>(state);
  control.published.store(n, std::memory_order_release);
  FileHeader& h = memory_.header();
  U64 head = h.logHead.load(std::memory_order_relaxed);
  memory_.logEntry(head, geometry_.logCapacity).store(TableMemory::logEntryValue(head, slot), std::memory_order_relaxed);
  h.logHead.store(head + 1, std::memory_order_release);
}

void TableWriter::put(const void* record) {
  openBatch();
  Probe p = probe(record);
  FileHeader& h = memory_.header();
  if (!p.found) {
    if (members() >= geometry_.maxMembers)
      Quor::throwRangeException(path_ + ": table full at " + std::to_string(geometry_.maxMembers) + " records");
    compactIfCrowded();
    p = probe(record);
  }
  SlotState was = stateOf(p.slot);
  writeSlot(p.slot, SlotState::occupied, record);
  if (was == SlotState::deleted) h.tombstones.fetch_sub(1, std::memory_order_relaxed);
  if (was != SlotState::occupied) h.members.fetch_add(1, std::memory_order_relaxed);
}

bool TableWriter::erase(const void* key) {
  Probe p = probe(key);
  if (!p.found) return false;
  openBatch();
  FileHeader& h = memory_.header();
  writeSlot(p.slot, SlotState::deleted, recordOf(p.slot));
  h.members.fetch_sub(1, std::memory_order_relaxed);
  h.tombstones.fetch_add(1, std::memory_order_relaxed);
  if (stateOf(next(p.slot)) == SlotState::empty) reclaimTombstonesBefore(next(p.slot));
  return true;
}

// Nothing probes past an empty slot, so a tombstone just before one is needed by no chain.
void TableWriter::reclaimTombstonesBefore(U32 emptySlot) {
  FileHeader& h = memory_.header();
  for (U32 slot = prev(emptySlot); stateOf(slot) == SlotState::deleted; slot = prev(slot)) {
    writeSlot(slot, SlotState::empty, nullptr);
    h.tombstones.fetch_sub(1, std::memory_order_relaxed);
  }
}

// When tombstones crowd out the empty slots, records move back onto tombstones earlier on their
// chains, and then every tombstone that no chain passes through becomes empty. A record being moved is
// briefly in two slots, the earlier one first, and both slots go through the change log.
void TableWriter::compactIfCrowded() {
  const U32 capacity = geometry_.capacity;
  FileHeader& h = memory_.header();
  U32 used = h.members.load(std::memory_order_relaxed) + h.tombstones.load(std::memory_order_relaxed);
  if (used + 1 < capacity - capacity / 16) return;
  std::vector<std::byte> record(geometry_.recordSize);
  for (U32 slot = 0; slot < capacity; ++slot) {
    if (stateOf(slot) != SlotState::occupied) continue;
    for (U32 to = homeSlot(recordOf(slot), geometry_.keySize, capacity); to != slot; to = next(to)) {
      if (stateOf(to) != SlotState::deleted) continue;
      std::memcpy(record.data(), recordOf(slot), geometry_.recordSize);
      writeSlot(to, SlotState::occupied, record.data());
      writeSlot(slot, SlotState::deleted, record.data());
      break;
    }
  }
  // Each run of non-empty slots, walked backwards from its end: a tombstone stays only if a record
  // after it in the run has its home at or before it. Distances count back from the run's end.
  U32 start = 0;
  while (start < capacity && stateOf(start) != SlotState::empty) ++start;
  if (start == capacity) return;
  U32 slot = prev(start);
  for (U32 steps = 0; steps < capacity;) {
    for (; steps < capacity && stateOf(slot) == SlotState::empty; ++steps) slot = prev(slot);
    const U32 runEnd = slot;
    bool recordSeen = false;
    U32 farthestHome = 0;
    for (; steps < capacity && stateOf(slot) != SlotState::empty; ++steps, slot = prev(slot)) {
      U32 back = (runEnd - slot + capacity) % capacity;
      if (stateOf(slot) == SlotState::occupied) {
        U32 home = homeSlot(recordOf(slot), geometry_.keySize, capacity);
        farthestHome = std::max(farthestHome, (runEnd - home + capacity) % capacity);
        recordSeen = true;
      } else if (!recordSeen || farthestHome < back) {
        writeSlot(slot, SlotState::empty, nullptr);
        h.tombstones.fetch_sub(1, std::memory_order_relaxed);
      }
    }
  }
}

}  // namespace Tarn
