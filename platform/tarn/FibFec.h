#pragma once
// The forwarding table's values: Tarn::Fib::Fec under its FecId, a set of vias (next hop and
// interface), at most 128.
//
// Storage. Most FECs have a handful of vias, so a FEC record holds four inline and a FEC with more
// keeps the rest in chunks of sixteen, in a second table beside the first: up to 4 vias cost one
// 136-byte record, 128 vias that record and 8 chunks. Every write of a FEC has a stamp, never reused
// for that FEC, and its chunks are keyed by (FEC id, stamp, chunk index). The writer puts a new
// write's chunks first, then the FEC record, and only then erases the chunks of the write it
// replaced; a deletion erases the record first. So a live record's chunks are always present, and a
// reader that has copied a record either finds every chunk of that very write or learns that the
// write has been replaced: it can never combine two writes (see FecCodec::complete).
#include <array>
#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>

#include "platform/pelt/IpAddr.h"
#include "platform/tarn/FibRoute.h"
#include "platform/tarn/RecordFields.h"
#include "platform/tarn/TableReader.h"

namespace Tarn::Fib {

// The position of a via in its FEC, 0 to 127.
class ViaIndex {
 public:
  static constexpr U32 min = 0;
  static constexpr U32 max = 127;
  // Raises Quor::RangeException for a value above max.
  explicit ViaIndex(U32 value);
  U32 value() const noexcept { return value_; }

 private:
  U32 value_;
};

struct Via {
  Pelt::IpAddr hop;
  Pelt::IntfId intfId;
  friend bool operator==(const Via&, const Via&) = default;
};
std::ostream& operator<<(std::ostream& out, const Via& via);

// The default FEC is the absent one: id 0, no vias. Vias at and beyond viaCount mean nothing.
struct Fec {
  static constexpr U32 maxVias = ViaIndex::max + 1;
  FecId fecId;
  U32 viaCount = 0;
  std::array<Via, maxVias> vias{};

  const Via& via(ViaIndex i) const noexcept { return vias[i.value()]; }
  // Appends a via; a FEC that has 128 already raises the range failure of ViaIndex.
  void viaAdd(const Via& via);
  friend bool operator==(const Fec& a, const Fec& b) noexcept;
};
std::ostream& operator<<(std::ostream& out, const Fec& fec);

struct ViaRecord {
  U32 hop;  // network order
  IntfNameField intf;
};
static_assert(sizeof(ViaRecord) == 28);

inline constexpr U32 inlineVias = 4;
inline constexpr U32 viasPerChunk = 16;
// Chunks that a FEC of `viaCount` vias needs beside its record.
constexpr U32 chunksFor(U32 viaCount) { return viaCount <= inlineVias ? 0 : (viaCount - inlineVias + viasPerChunk - 1) / viasPerChunk; }

struct FecRecord {
  U64 fecId;
  U64 stamp;
  U32 viaCount;
  U32 pad;
  ViaRecord vias[inlineVias];
};
static_assert(sizeof(FecRecord) == 136);

struct FecChunkRecord {
  U64 fecId;
  U64 stamp;
  U32 index;
  U32 pad;
  ViaRecord vias[viasPerChunk];
};
static_assert(sizeof(FecChunkRecord) == 472);

// Reads FEC records for a ShmTarnBackend, with the chunks of each from the chunk file beside it.
class FecCodec {
 public:
  using Key = FecId;
  using Value = Fec;
  using Record = FecRecord;
  static constexpr const char* type = "Tarn::Fib::Fec";
  static constexpr const char* chunkType = "Tarn::Fib::FecChunk";
  static constexpr U32 keySize = sizeof(U64);
  static constexpr U32 chunkKeySize = offsetof(FecChunkRecord, vias);

  static void encodeKey(FecId id, FecRecord* record);
  static FecId decodeKey(const std::byte* key);
  // The FEC with its inline vias; complete() adds the others.
  static Fec decode(const FecRecord& record);
  static void encodeVia(const Via& via, ViaRecord* record);
  static Via decodeVia(const ViaRecord& record);

  // Reads the chunks of the FEC file `fecFile` from the file beside it.
  explicit FecCodec(const std::string& fecFile) : chunkPath_(chunkFileOf(fecFile)) {}
  static std::string chunkFileOf(const std::string& fecFile) { return fecFile + ".chunks"; }
  // Reads the chunks of the write that `record` is into `fec`; false when that write has been
  // replaced or deleted since the record was copied, so that the record must be read again.
  bool complete(const FecRecord& record, Fec* fec) const;
  // Lets the chunk file go.
  void release() noexcept { chunks_.reset(); }

 private:
  bool readChunk(const FecChunkRecord& key, FecChunkRecord* chunk) const;
  std::string chunkPath_;
  mutable std::unique_ptr<TableReader> chunks_;
};

}  // namespace Tarn::Fib
