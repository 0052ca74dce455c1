#include "platform/tarn/TableFormat.h"

#include <algorithm>
#include <bit>

namespace Tarn {

namespace {

constexpr U64 roundUp8(U64 n) { return (n + 7) & ~U64(7); }

U64 mix(U64 x) noexcept {
  x ^= x >> 32;
  x *= 0xd6e8feb86659fd93ull;
  x ^= x >> 32;
  x *= 0xd6e8feb86659fd93ull;
  return x ^ (x >> 32);
}

}  // namespace

TableGeometry TableGeometry::forRecords(U32 keySize, U32 recordSize, U32 maxMembers) {
  TableGeometry g;
  g.keySize = keySize;
  g.recordSize = recordSize;
  g.maxMembers = maxMembers;
  g.capacity = static_cast<U32>(std::max<U64>(16, U64(maxMembers) * 5 / 4 + 1));
  g.logCapacity = std::bit_ceil(std::clamp<U32>(maxMembers, 1u << 12, 1u << 18));
  return g;
}

U32 TableGeometry::cellSize() const noexcept { return static_cast<U32>(sizeof(CellHeader) + roundUp8(recordSize)); }

U32 TableGeometry::slotSize() const noexcept { return static_cast<U32>(sizeof(SlotControl) + 2 * cellSize()); }

U64 TableGeometry::logOffset() const noexcept { return sizeof(FileHeader); }

U64 TableGeometry::slotsOffset() const noexcept { return logOffset() + U64(logCapacity) * sizeof(U64); }

U64 TableGeometry::fileSize() const noexcept { return slotsOffset() + U64(capacity) * slotSize(); }

U64 FileHeader::computeSeal() const noexcept { return hashBytes(this, sealedHeaderSize, 0x7461726e); }

TableGeometry FileHeader::geometry() const noexcept {
  TableGeometry g;
  g.keySize = keySize;
  g.recordSize = recordSize;
  g.maxMembers = maxMembers;
  g.capacity = capacity;
  g.logCapacity = logCapacity;
  return g;
}

// A word-at-a-time multiply-xorshift hash: keys and records are a few dozen bytes.
U64 hashBytes(const void* bytes, std::size_t size, U64 seed) noexcept {
  const auto* p = static_cast<const unsigned char*>(bytes);
  U64 h = mix(seed ^ (size * 0x9e3779b97f4a7c15ull));
  for (; size >= 8; size -= 8, p += 8) {
    U64 w;
    std::memcpy(&w, p, 8);
    h = mix(h ^ w) + 0x9e3779b97f4a7c15ull;
  }
  if (size) {
    U64 w = 0;
    std::memcpy(&w, p, size);
    h = mix(h ^ w ^ 0xff);
  }
  return h;
}

U32 cellChecksum(U32 state, const std::byte* record, U32 recordSize) noexcept {
  U64 h = hashBytes(record, recordSize, state);
  return static_cast<U32>(h ^ (h >> 32)) | 1u;  // never 0, the checksum of an empty cell
}

}  // namespace Tarn
