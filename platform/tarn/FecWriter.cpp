#include "platform/tarn/FecWriter.h"

#include <time.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/quor/Exception.h"

namespace Tarn::Fib {

namespace {

U64 wallClockNanoseconds() {
  struct timespec now;
  ::clock_gettime(CLOCK_REALTIME, &now);
  return U64(now.tv_sec) * 1000000000u + U64(now.tv_nsec);
}

template <class Codec>
typename Codec::ChunkRecord chunkKey(U64 fecId, U64 stamp, U32 index) {
  typename Codec::ChunkRecord key;
  std::memset(&key, 0, Codec::chunkKeySize);
  key.fecId = fecId;
  key.stamp = stamp;
  key.index = index;
  return key;
}

}  // namespace

template <class Codec>
BasicFecWriter<Codec>::BasicFecWriter(const std::string& fecPath, U32 maxFecs, U32 maxChunks, double lockWait)
    : fecs_(fecPath, Codec::type, fecGeometry<Codec>(maxFecs), lockWait),
      chunks_(Codec::chunkFileOf(fecPath), Codec::chunkType, fecChunkGeometry<Codec>(maxChunks), lockWait) {
  U64 highest = 0;
  auto stampOf = [&highest](const void* record) {
    highest = std::max(highest, static_cast<const typename Codec::Record*>(record)->stamp);
  };
  fecs_.forEachRecord(stampOf);
  chunks_.forEachRecord([&highest](const void* record) {
    highest = std::max(highest, static_cast<const typename Codec::ChunkRecord*>(record)->stamp);
  });
  nextStamp_ = std::max(highest + 1, wallClockNanoseconds());
  sweepOrphanChunks();
  commit();
}

template <class Codec>
void BasicFecWriter<Codec>::sweepOrphanChunks() {
  std::vector<typename Codec::ChunkRecord> orphans;
  chunks_.forEachRecord([&](const void* bytes) {
    const auto* chunk = static_cast<const typename Codec::ChunkRecord*>(bytes);
    typename Codec::Record owner;
    if (!fecs_.find(&chunk->fecId, &owner) || owner.stamp != chunk->stamp || chunk->index >= chunksFor(owner.viaCount))
      orphans.push_back(chunkKey<Codec>(chunk->fecId, chunk->stamp, chunk->index));
  });
  for (const auto& key : orphans) chunks_.erase(&key);
}

template <class Codec>
void BasicFecWriter<Codec>::put(const Fec& fec) {
  if (fec.viaCount > Fec::maxVias) ViaIndex{fec.viaCount - 1};  // raises the range failure
  typename Codec::Record record{};
  Codec::encodeKey(fec.fecId, &record);
  typename Codec::Record old;
  bool replacing = fecs_.find(&record, &old);
  if (!replacing && fecs_.members() >= fecs_.geometry().maxMembers)
    Quor::throwRangeException(fecs_.path() + ": table full at " + std::to_string(fecs_.members()) + " FECs");
  const U32 chunkCount = chunksFor(fec.viaCount);
  if (chunks_.members() + chunkCount > chunks_.geometry().maxMembers)
    Quor::throwRangeException(chunks_.path() + ": no room for " + std::to_string(chunkCount) + " more chunks");

  // Everything is encoded before anything is written, so that a refused via changes nothing.
  const U64 stamp = nextStamp_++;
  record.stamp = stamp;
  record.viaCount = fec.viaCount;
  for (U32 i = 0; i < std::min(fec.viaCount, inlineVias); ++i) Codec::encodeVia(fec.vias[i], &record.vias[i]);
  std::vector<typename Codec::ChunkRecord> chunks(chunkCount);
  for (U32 index = 0; index < chunkCount; ++index) {
    auto& chunk = chunks[index];
    chunk = chunkKey<Codec>(fec.fecId.value(), stamp, index);
    U32 first = inlineVias + index * viasPerChunk;
    for (U32 i = 0; i < std::min(viasPerChunk, fec.viaCount - first); ++i)
      Codec::encodeVia(fec.vias[first + i], &chunk.vias[i]);
  }

  for (const auto& chunk : chunks) chunks_.put(&chunk);
  fecs_.put(&record);
  if (replacing) eraseChunks(old.fecId, old.stamp, chunksFor(old.viaCount));
}

template <class Codec>
bool BasicFecWriter<Codec>::erase(FecId id) {
  typename Codec::Record old;
  U64 key = id.value();
  if (!fecs_.find(&key, &old)) return false;
  fecs_.erase(&key);
  eraseChunks(old.fecId, old.stamp, chunksFor(old.viaCount));
  return true;
}

template <class Codec>
void BasicFecWriter<Codec>::eraseChunks(U64 fecId, U64 stamp, U32 count) {
  for (U32 index = 0; index < count; ++index) {
    auto key = chunkKey<Codec>(fecId, stamp, index);
    chunks_.erase(&key);
  }
}

template <class Codec>
void BasicFecWriter<Codec>::commit() {
  chunks_.commit();
  fecs_.commit();
}

template class BasicFecWriter<FecCodec>;
template class BasicFecWriter<Fec6Codec>;

}  // namespace Tarn::Fib
