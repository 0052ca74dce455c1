#include "platform/tarn/FibFec.h"

#include <algorithm>
#include <cstring>
#include <ostream>

#include "platform/quor/Exception.h"

namespace Tarn::Fib {

ViaIndex::ViaIndex(U32 value) : value_(value) {
  if (value > max) Quor::throwRangeException("ViaIndex::value < ViaIndex::min or > ViaIndex::max not allowed");
}

namespace {

template <class Via>
std::ostream& printVia(std::ostream& out, const Via& via) {
  return out << via.hop << "@" << via.intfId;
}

template <class Fec>
std::ostream& printFec(std::ostream& out, const Fec& fec) {
  out << "fec " << fec.fecId << " vias " << fec.viaCount;
  for (U32 i = 0; i < std::min(fec.viaCount, Fec::maxVias); ++i) printVia(out << (i ? ", " : " "), fec.vias[i]);
  return out;
}

void encodeHop(Pelt::IpAddr hop, U32& field) { field = hop.networkOrder(); }
void encodeHop(const Pelt::Ip6Addr& hop, std::array<U8, 16>& field) { field = hop.bytes(); }
void decodeHop(U32 field, Pelt::IpAddr& hop) { hop = Pelt::IpAddr::fromNetworkOrder(field); }
void decodeHop(const std::array<U8, 16>& field, Pelt::Ip6Addr& hop) { hop = Pelt::Ip6Addr::fromBytes(field.data()); }

}  // namespace

std::ostream& operator<<(std::ostream& out, const Via& via) { return printVia(out, via); }
std::ostream& operator<<(std::ostream& out, const Via6& via) { return printVia(out, via); }
std::ostream& operator<<(std::ostream& out, const Fec& fec) { return printFec(out, fec); }
std::ostream& operator<<(std::ostream& out, const Fec6& fec) { return printFec(out, fec); }

template <class Family>
void BasicFecCodec<Family>::encodeKey(FecId id, Record* record) {
  record->fecId = id.value();
}

template <class Family>
FecId BasicFecCodec<Family>::decodeKey(const std::byte* key) {
  U64 id;
  std::memcpy(&id, key, sizeof id);
  return FecId(id);
}

template <class Family>
void BasicFecCodec<Family>::encodeVia(const ViaValue& via, typename Family::ViaRecord* record) {
  encodeHop(via.hop, record->hop);
  record->intf = encodeIntfName(via.intfId);
}

template <class Family>
auto BasicFecCodec<Family>::decodeVia(const typename Family::ViaRecord& record) -> ViaValue {
  ViaValue via;
  decodeHop(record.hop, via.hop);
  via.intfId = decodeIntfName(record.intf);
  return via;
}

template <class Family>
auto BasicFecCodec<Family>::decode(const Record& record) -> Value {
  Value fec;
  fec.fecId = FecId(record.fecId);
  if (record.viaCount > Value::maxVias)
    throwCorruption("FEC " + std::to_string(record.fecId) + " claims " + std::to_string(record.viaCount) + " vias");
  fec.viaCount = record.viaCount;
  for (U32 i = 0; i < std::min(fec.viaCount, inlineVias); ++i) fec.vias[i] = decodeVia(record.vias[i]);
  return fec;
}

template <class Family>
bool BasicFecCodec<Family>::readChunk(const ChunkRecord& key, ChunkRecord* chunk) const {
  if (!chunks_) chunks_ = TableReader::open(chunkPath_, chunkType, chunkKeySize, sizeof(ChunkRecord));
  if (!chunks_) return false;
  if (chunks_->lookup(&key, chunk)) return true;
  if (!chunks_->unlinked()) return false;
  // The writer has built a new chunk file: the chunk may be there.
  chunks_ = TableReader::open(chunkPath_, chunkType, chunkKeySize, sizeof(ChunkRecord));
  return chunks_ && chunks_->lookup(&key, chunk);
}

template <class Family>
bool BasicFecCodec<Family>::complete(const Record& record, Value* fec) const {
  ChunkRecord key, chunk;
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

template class BasicFecCodec<Ipv4Vias>;
template class BasicFecCodec<Ipv6Vias>;

}  // namespace Tarn::Fib
