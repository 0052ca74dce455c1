#include "platform/tarn/TableReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <immintrin.h>


namespace Tarn {

namespace {

std::string hex(U32 v) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08x", v);
  return text;
}

}  // namespace

void throwCorruption(const std::string& text) { throw CorruptionDetectedException(text); }

std::unique_ptr<TableReader> TableReader::open(const std::string& path, std::string_view type, U32 keySize,
                                               U32 recordSize) {
  FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd) {
    if (errno == ENOENT) return nullptr;
    throwSystemError("open", path);
  }
  struct stat st;
  if (::fstat(fd.get(), &st) != 0) throwSystemError("fstat", path);
  if (static_cast<std::size_t>(st.st_size) < sizeof(FileHeader))
    throwCorruption(path + ": " + std::to_string(st.st_size) + " bytes is too short for a table header");
  FileHeader header;
  if (::pread(fd.get(), &header, fixedHeaderSize, 0) != static_cast<ssize_t>(fixedHeaderSize)) throwSystemError("pread", path);
  auto refuse = [&](const std::string& why) { throwCorruption(path + ": " + why); };
  if (std::memcmp(header.magic, fileMagic, sizeof fileMagic) != 0) refuse("not a table file (bad magic)");
  if (header.seal != header.computeSeal()) refuse("header seal does not match its contents");
  if (header.layoutVersion != layoutVersion) refuse("layout version " + std::to_string(header.layoutVersion));
  std::string_view fileType(header.type, strnlen(header.type, typeNameSize));
  if (fileType != type) refuse("holds " + std::string(fileType) + ", not " + std::string(type));
  TableGeometry g = header.geometry();
  if (g.keySize != keySize || g.recordSize != recordSize)
    refuse("record of " + std::to_string(g.recordSize) + " bytes, key of " + std::to_string(g.keySize) +
           ", expected " + std::to_string(recordSize) + " and " + std::to_string(keySize));
  if (g.capacity == 0 || g.logCapacity == 0 || (g.logCapacity & (g.logCapacity - 1)) || header.fileSize != g.fileSize() ||
      static_cast<U64>(st.st_size) < g.fileSize())
    refuse("geometry does not fit the file");
  Mapping mapping(fd.get(), g.fileSize(), false);
  return std::unique_ptr<TableReader>(new TableReader(path, std::move(fd), std::move(mapping), g));
}

TableReader::TableReader(std::string path, FileDescriptor fd, Mapping mapping, const TableGeometry& geometry)
    : path_(std::move(path)), fd_(std::move(fd)), mapping_(std::move(mapping)), geometry_(geometry),
      memory_(mapping_.base(), geometry) {
  std::memcpy(sealedHeader_, mapping_.base(), fixedHeaderSize);
}

void TableReader::corrupt(const std::string& what) const {
  ++counters_.corruptions;
  throwCorruption(path_ + ": " + what);
}

void TableReader::checkHeader() const {
  if (std::memcmp(sealedHeader_, mapping_.base(), fixedHeaderSize) != 0) corrupt("header changed after it was mapped");
}

SlotState TableReader::readSlot(U32 slot, void* out, U32* published) const {
  checkHeader();
  ++counters_.reads;
  pages_.touched();
  const SlotControl& control = memory_.control(slot);
  const U32 recordSize = geometry_.recordSize;
  for (int attempt = 0; attempt < maxReadAttempts; ++attempt) {
    U32 seen = control.published.load(std::memory_order_acquire);
    CellHeader& cell = memory_.cell(slot, seen & 1);
    CellHeader copy = cell;
    std::memcpy(out, TableMemory::record(cell), recordSize);
    std::atomic_thread_fence(std::memory_order_acquire);
    U32 begun = control.begun.load(std::memory_order_relaxed);
    if (begun - seen > 1) {  // the writer has begun to overwrite the copy just read
      ++counters_.retries;
      _mm_pause();
      continue;
    }
    auto state = static_cast<SlotState>(copy.state);
    switch (state) {
      case SlotState::empty:
        break;
      case SlotState::occupied:
      case SlotState::deleted:
        if (copy.checksum != cellChecksum(copy.state, static_cast<const std::byte*>(out), recordSize))
          corrupt("slot " + std::to_string(slot) + " record does not match its checksum");
        break;
      default:
        corrupt("slot " + std::to_string(slot) + " in unknown state " + hex(copy.state));
    }
    if (published) *published = seen;
    return state;
  }
  corrupt("slot " + std::to_string(slot) + " kept changing through " + std::to_string(maxReadAttempts) + " reads");
}

bool TableReader::lookup(const void* key, void* out) const {
  const U32 capacity = geometry_.capacity;
  U32 slot = homeSlot(key, geometry_.keySize, capacity);
  for (U32 probes = 0; probes < capacity; ++probes) {
    U32 count;
    SlotState state = readSlot(slot, out, &count);
    if (state == SlotState::empty) return false;
    if (state == SlotState::occupied && std::memcmp(out, key, geometry_.keySize) == 0) {
      if (observer_) observer_->recordRead(*this, slot, count, static_cast<const std::byte*>(out));
      return true;
    }
    slot = slot + 1 == capacity ? 0 : slot + 1;
  }
  return false;
}

U32 TableReader::nextOccupied(U32 from, void* out) const {
  for (U32 slot = from; slot < geometry_.capacity; ++slot) {
    U32 count;
    if (readSlot(slot, out, &count) != SlotState::occupied) continue;
    if (observer_) observer_->recordRead(*this, slot, count, static_cast<const std::byte*>(out));
    return slot;
  }
  return geometry_.capacity;
}

U32 TableReader::members() const noexcept { return memory_.header().members.load(std::memory_order_relaxed); }

U64 TableReader::generation() const noexcept { return memory_.header().generation.load(std::memory_order_acquire); }

bool TableReader::batchOpen() const noexcept { return commitSeq() & 1; }

U64 TableReader::commitSeq() const noexcept { return memory_.header().commitSeq.load(std::memory_order_acquire); }

U64 TableReader::logHead() const noexcept { return memory_.header().logHead.load(std::memory_order_acquire); }

bool TableReader::logEntry(U64 position, U32* slot) const {
  pages_.touched();
  U64 entry = memory_.logEntry(position, geometry_.logCapacity).load(std::memory_order_relaxed);
  if (U32(entry >> 32) != U32(position)) return false;
  *slot = U32(entry);
  if (*slot >= geometry_.capacity) corrupt("change log names slot " + std::to_string(*slot) + " beyond the capacity");
  return true;
}

bool TableReader::unlinked() const {
  struct stat st;
  return ::fstat(fd_.get(), &st) != 0 || st.st_nlink == 0;
}

}  // namespace Tarn
