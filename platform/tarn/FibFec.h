#pragma once
// The forwarding tables' values: Tarn::Fib::Fec (IPv4) and Tarn::Fib::Fec6 (IPv6) under their FecId,
// a set of vias (next hop and interface), at most 128. Each family has a forwarding table of its own,
// with records that differ only in the next hop's bytes.
//
// Storage. Most FECs have a handful of vias, so a FEC record holds four inline and a FEC with more
// keeps the rest in chunks of sixteen, in a second table beside the first: up to 4 vias cost one
// 136-byte record, 128 vias that record and 8 chunks. Every write of a FEC has a stamp, never reused
// for that FEC, and its chunks are keyed by (FEC id, stamp, chunk index). The writer puts a new
// write's chunks first, then the FEC record, and only then erases the chunks of the write it
// replaced; a deletion erases the record first. So a live record's chunks are always present, and a
// reader that has copied a record either finds every chunk of that very write or learns that the
// write has been replaced: it can never combine two writes (see FecCodec::complete).
#include <algorithm>
#include <array>
#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>

#include "platform/pelt/Ip6Addr.h"
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

template <class Hop>
struct BasicVia {
  Hop hop;
  Pelt::IntfId intfId;
  friend bool operator==(const BasicVia&, const BasicVia&) = default;
};
using Via = BasicVia<Pelt::IpAddr>;
using Via6 = BasicVia<Pelt::Ip6Addr>;
std::ostream& operator<<(std::ostream& out, const Via& via);
std::ostream& operator<<(std::ostream& out, const Via6& via);

// The default FEC is the absent one: id 0, no vias. Vias at and beyond viaCount mean nothing.
template <class V>
struct BasicFec {
  using Via = V;
  static constexpr U32 maxVias = ViaIndex::max + 1;
  FecId fecId;
  U32 viaCount = 0;
  std::array<V, maxVias> vias{};

  const V& via(ViaIndex i) const noexcept { return vias[i.value()]; }
  // Appends a via; a FEC that has 128 already raises the range failure of ViaIndex.
  void viaAdd(const V& via) {
    vias[ViaIndex(viaCount).value()] = via;
    ++viaCount;
  }
  friend bool operator==(const BasicFec& a, const BasicFec& b) noexcept {
    if (a.fecId != b.fecId || a.viaCount != b.viaCount) return false;
    const U32 n = std::min(a.viaCount, maxVias);
    return std::equal(a.vias.begin(), a.vias.begin() + n, b.vias.begin());
  }
};
using Fec = BasicFec<Via>;
using Fec6 = BasicFec<Via6>;
std::ostream& operator<<(std::ostream& out, const Fec& fec);
std::ostream& operator<<(std::ostream& out, const Fec6& fec);

template <class HopField>
struct BasicViaRecord {
  HopField hop;  // network order
  IntfNameField intf;
};
using ViaRecord = BasicViaRecord<U32>;
using Via6Record = BasicViaRecord<std::array<U8, 16>>;
static_assert(sizeof(ViaRecord) == 28);
static_assert(sizeof(Via6Record) == 40);

inline constexpr U32 inlineVias = 4;
inline constexpr U32 viasPerChunk = 16;
// Chunks that a FEC of `viaCount` vias needs beside its record.
constexpr U32 chunksFor(U32 viaCount) { return viaCount <= inlineVias ? 0 : (viaCount - inlineVias + viasPerChunk - 1) / viasPerChunk; }

template <class ViaRec>
struct BasicFecRecord {
  U64 fecId;
  U64 stamp;
  U32 viaCount;
  U32 pad;
  ViaRec vias[inlineVias];
};
using FecRecord = BasicFecRecord<ViaRecord>;
static_assert(sizeof(FecRecord) == 136);

template <class ViaRec>
struct BasicFecChunkRecord {
  U64 fecId;
  U64 stamp;
  U32 index;
  U32 pad;
  ViaRec vias[viasPerChunk];
};
using FecChunkRecord = BasicFecChunkRecord<ViaRecord>;
static_assert(sizeof(FecChunkRecord) == 472);

// What differs between the families' forwarding tables: the next hop and its bytes, the type names.
struct Ipv4Vias {
  using Fec = Tarn::Fib::Fec;
  using ViaRecord = Tarn::Fib::ViaRecord;
  static constexpr const char* type = "Tarn::Fib::Fec";
  static constexpr const char* chunkType = "Tarn::Fib::FecChunk";
  static constexpr const char* statusType = "Tarn::Fib::ForwardingStatus";
};
struct Ipv6Vias {
  using Fec = Tarn::Fib::Fec6;
  using ViaRecord = Tarn::Fib::Via6Record;
  static constexpr const char* type = "Tarn::Fib::Fec6";
  static constexpr const char* chunkType = "Tarn::Fib::Fec6Chunk";
  static constexpr const char* statusType = "Tarn::Fib::Forwarding6Status";
};

// Reads FEC records for a ShmTarnBackend, with the chunks of each from the chunk file beside it.
template <class Family>
class BasicFecCodec {
 public:
  using Key = FecId;
  using Value = typename Family::Fec;
  using Record = BasicFecRecord<typename Family::ViaRecord>;
  using ChunkRecord = BasicFecChunkRecord<typename Family::ViaRecord>;
  using ViaValue = typename Value::Via;
  static constexpr const char* type = Family::type;
  static constexpr const char* chunkType = Family::chunkType;
  static constexpr const char* statusType = Family::statusType;
  static constexpr U32 keySize = sizeof(U64);
  static constexpr U32 chunkKeySize = offsetof(ChunkRecord, vias);

  static void encodeKey(FecId id, Record* record);
  static FecId decodeKey(const std::byte* key);
  // The FEC with its inline vias; complete() adds the others.
  static Value decode(const Record& record);
  static void encodeVia(const ViaValue& via, typename Family::ViaRecord* record);
  static ViaValue decodeVia(const typename Family::ViaRecord& record);

  // Reads the chunks of the FEC file `fecFile` from the file beside it.
  explicit BasicFecCodec(const std::string& fecFile) : chunkPath_(chunkFileOf(fecFile)) {}
  static std::string chunkFileOf(const std::string& fecFile) { return fecFile + ".chunks"; }
  // Reads the chunks of the write that `record` is into `fec`; false when that write has been
  // replaced or deleted since the record was copied, so that the record must be read again.
  bool complete(const Record& record, Value* fec) const;
  // Lets the chunk file go.
  void release() noexcept { chunks_.reset(); }

 private:
  bool readChunk(const ChunkRecord& key, ChunkRecord* chunk) const;
  std::string chunkPath_;
  mutable std::unique_ptr<TableReader> chunks_;
};
using FecCodec = BasicFecCodec<Ipv4Vias>;
using Fec6Codec = BasicFecCodec<Ipv6Vias>;
extern template class BasicFecCodec<Ipv4Vias>;
extern template class BasicFecCodec<Ipv6Vias>;

}  // namespace Tarn::Fib
