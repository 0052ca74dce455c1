#include "platform/tarn/FibFec.h"

#include <algorithm>
#include <cstring>
#include <ostream>

#include "platform/quor/Exception.h"

namespace Tarn::Fib {

ViaIndex::ViaIndex(U32 value) : value_(value) {
  if (value > max) Quor::throwRangeException("ViaIndex::value < ViaIndex::min or > ViaIndex::max not allowed");
}

void Fec::viaAdd(const Via& via) {
  vias[ViaIndex(viaCount).value()] = via;
  ++viaCount;
}

bool operator==(const Fec& a, const Fec& b) noexcept {
  if (a.fecId != b.fecId || a.viaCount != b.viaCount) return false;
  U32 n = std::min(a.viaCount, Fec::maxVias);
  return std::equal(a.vias.begin(), a.vias.begin() + n, b.vias.begin());
}

std::ostream& operator<<(std::ostream& out, const Via& via) { return out << via.hop << "@" << via.intfId; }

std::ostream& operator<<(std::ostream& out, const Fec& fec) {
  out << "fec " << fec.fecId << " vias " << fec.viaCount;
  for (U32 i = 0; i < std::min(fec.viaCount, Fec::maxVias); ++i) out << (i ? ", " : " ") << fec.vias[i];
  return out;
}

void FecCodec::encodeKey(FecId id, FecRecord* record) { record->fecId = id.value(); }

FecId FecCodec::decodeKey(const std::byte* key) {
  U64 id;
  std::memcpy(&id, key, sizeof id);
  return FecId(id);
}

void FecCodec::encodeVia(const Via& via, ViaRecord* record) {
  record->hop = via.hop.networkOrder();
  record->intf = encodeIntfName(via.intfId);
}

Via FecCodec::decodeVia(const ViaRecord& record) {
  return Via{Pelt::IpAddr::fromNetworkOrder(record.hop), decodeIntfName(record.intf)};
}

Fec FecCodec::decode(const FecRecord& record) {
  Fec fec;
  fec.fecId = FecId(record.fecId);
  if (record.viaCount > Fec::maxVias)
    throwCorruption("FEC " + std::to_string(record.fecId) + " claims " + std::to_string(record.viaCount) + " vias");
  fec.viaCount = record.viaCount;
  for (U32 i = 0; i < std::min(fec.viaCount, inlineVias); ++i) fec.vias[i] = decodeVia(record.vias[i]);
  return fec;
}

bool FecCodec::readChunk(const FecChunkRecord& key, FecChunkRecord* chunk) const {
  if (!chunks_) chunks_ = TableReader::open(chunkPath_, chunkType, chunkKeySize, sizeof(FecChunkRecord));
  if (!chunks_) return false;
  if (chunks_->lookup(&key, chunk)) return true;
  if (!chunks_->unlinked()) return false;
  // The writer has built a new chunk file: the chunk may be there.
  chunks_ = TableReader::open(chunkPath_, chunkType, chunkKeySize, sizeof(FecChunkRecord));
  return chunks_ && chunks_->lookup(&key, chunk);
}

bool FecCodec::complete(const FecRecord& record, Fec* fec) const {
  FecChunkRecord key, chunk;
  std::memset(&key, 0, chunkKeySize);
  key.fecId = record.fecId;
  key.stamp = record.stamp;
  for (U32 index = 0; index < chunksFor(fec->viaCount); ++index) {
    // The key names the write: a chunk found under it belongs to the record's write.
    key.index = index;
    if (!readChunk(key, &chunk)) return false;
    U32 first = inlineVias + index * viasPerChunk;
    U32 n = std::min(viasPerChunk, fec->viaCount - first);
    for (U32 i = 0; i < n; ++i) fec->vias[first + i] = decodeVia(chunk.vias[i]);
  }
  return true;
}

}  // namespace Tarn::Fib
