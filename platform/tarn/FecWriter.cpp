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

FecChunkRecord chunkKey(U64 fecId, U64 stamp, U32 index) {
  FecChunkRecord key;
  std::memset(&key, 0, FecCodec::chunkKeySize);
  key.fecId = fecId;
  key.stamp = stamp;
  key.index = index;
  return key;
}

}  // namespace

TableGeometry fecGeometry(U32 maxFecs) {
  return TableGeometry::forRecords(FecCodec::keySize, sizeof(FecRecord), maxFecs);
}

TableGeometry fecChunkGeometry(U32 maxChunks) {
  return TableGeometry::forRecords(FecCodec::chunkKeySize, sizeof(FecChunkRecord), maxChunks);
}

FecWriter::FecWriter(const std::string& fecPath, U32 maxFecs, U32 maxChunks, double lockWait)
    : fecs_(fecPath, FecCodec::type, fecGeometry(maxFecs), lockWait),
      chunks_(FecCodec::chunkFileOf(fecPath), FecCodec::chunkType, fecChunkGeometry(maxChunks), lockWait) {
  U64 highest = 0;
  auto stampOf = [&highest](const void* record) {
    highest = std::max(highest, static_cast<const FecRecord*>(record)->stamp);
  };
  fecs_.forEachRecord(stampOf);
  chunks_.forEachRecord([&highest](const void* record) {
    highest = std::max(highest, static_cast<const FecChunkRecord*>(record)->stamp);
  });
  nextStamp_ = std::max(highest + 1, wallClockNanoseconds());
  sweepOrphanChunks();
  commit();
}

void FecWriter::sweepOrphanChunks() {
  std::vector<FecChunkRecord> orphans;
  chunks_.forEachRecord([&](const void* bytes) {
    const auto* chunk = static_cast<const FecChunkRecord*>(bytes);
    FecRecord owner;
    if (!fecs_.find(&chunk->fecId, &owner) || owner.stamp != chunk->stamp || chunk->index >= chunksFor(owner.viaCount))
      orphans.push_back(chunkKey(chunk->fecId, chunk->stamp, chunk->index));
  });
  for (const FecChunkRecord& key : orphans) chunks_.erase(&key);
}

void FecWriter::put(const Fec& fec) {
  if (fec.viaCount > Fec::maxVias) ViaIndex{fec.viaCount - 1};  // raises the range failure
  FecRecord record{};
  FecCodec::encodeKey(fec.fecId, &record);
  FecRecord old;
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
  for (U32 i = 0; i < std::min(fec.viaCount, inlineVias); ++i) FecCodec::encodeVia(fec.vias[i], &record.vias[i]);
  std::vector<FecChunkRecord> chunks(chunkCount);
  for (U32 index = 0; index < chunkCount; ++index) {
    FecChunkRecord& chunk = chunks[index];
    chunk = chunkKey(fec.fecId.value(), stamp, index);
    U32 first = inlineVias + index * viasPerChunk;
    for (U32 i = 0; i < std::min(viasPerChunk, fec.viaCount - first); ++i)
      FecCodec::encodeVia(fec.vias[first + i], &chunk.vias[i]);
  }

  for (const FecChunkRecord& chunk : chunks) chunks_.put(&chunk);
  fecs_.put(&record);
  if (replacing) eraseChunks(old.fecId, old.stamp, chunksFor(old.viaCount));
}

bool FecWriter::erase(FecId id) {
  FecRecord old;
  U64 key = id.value();
  if (!fecs_.find(&key, &old)) return false;
  fecs_.erase(&key);
  eraseChunks(old.fecId, old.stamp, chunksFor(old.viaCount));
  return true;
}

void FecWriter::eraseChunks(U64 fecId, U64 stamp, U32 count) {
  for (U32 index = 0; index < count; ++index) {
    FecChunkRecord key = chunkKey(fecId, stamp, index);
    chunks_.erase(&key);
  }
}

void FecWriter::commit() {
  chunks_.commit();
  fecs_.commit();
}

}  // namespace Tarn::Fib
