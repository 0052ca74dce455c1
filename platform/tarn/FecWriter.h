#pragma once
// The writer of one forwarding table: the FEC file and its chunk file beside it (see FibFec.h for
// the layout and the order of writes that keeps readers from combining two writes of a FEC).
//
// Stamps grow within a writer and start, for each writer, above every stamp in the files and above
// the wall clock in nanoseconds, so that no stamp is used twice for a FEC even across restarts. A
// writer that takes the files over erases the chunks that no FEC record names (what a writer killed
// between a chunk and its record leaves behind).
#include <string>

#include "platform/tarn/FibFec.h"
#include "platform/tarn/TableWriter.h"

namespace Tarn::Fib {

template <class Codec>
class BasicFecWriter {
 public:
  using Fec = typename Codec::Value;

  static constexpr U32 defaultMaxFecs = 16384;
  static constexpr U32 defaultMaxChunks = 4096;

  // The file `fecPath` and its chunk file; see TableWriter for `lockWait`. A FEC being rewritten
  // holds its old and its new chunks for a moment, so maxChunks needs room for 8 more than are live.
  explicit BasicFecWriter(const std::string& fecPath, U32 maxFecs = defaultMaxFecs, U32 maxChunks = defaultMaxChunks,
                     double lockWait = 0);

  // Inserts or replaces the FEC. Raises Quor::RangeException, leaving the table as it was, for more
  // than 128 vias, an interface name too long for a record, or a full table.
  void put(const Fec& fec);
  // Removes the FEC; false when there is none.
  bool erase(FecId id);
  void commit();

  U32 members() const noexcept { return fecs_.members(); }
  U32 chunks() const noexcept { return chunks_.members(); }

 private:
  void eraseChunks(U64 fecId, U64 stamp, U32 count);
  void sweepOrphanChunks();

  TableWriter fecs_;
  TableWriter chunks_;
  U64 nextStamp_ = 0;
};

// The writers of the IPv4 and the IPv6 forwarding table.
using FecWriter = BasicFecWriter<FecCodec>;
using Fec6Writer = BasicFecWriter<Fec6Codec>;
extern template class BasicFecWriter<FecCodec>;
extern template class BasicFecWriter<Fec6Codec>;

// The geometries of the two files for the given sizes.
template <class Codec = FecCodec>
TableGeometry fecGeometry(U32 maxFecs) {
  return TableGeometry::forRecords(Codec::keySize, sizeof(typename Codec::Record), maxFecs);
}
template <class Codec = FecCodec>
TableGeometry fecChunkGeometry(U32 maxChunks) {
  return TableGeometry::forRecords(Codec::chunkKeySize, sizeof(typename Codec::ChunkRecord), maxChunks);
}

}  // namespace Tarn::Fib
