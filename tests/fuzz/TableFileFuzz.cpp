// A shared-memory table file read whole, as a view reads it: every occupied slot walked and decoded
// (a FEC completed from its chunk file), each decoded key looked up again, the change log read and
// every slot reconciled by a change feed. Whatever the bytes, a read either succeeds or raises
// Tarn::CorruptionDetectedException.
//
// Input: a flags byte, the length of the table file (4 bytes), its bytes, and for a FEC table the
// bytes of the chunk file. The low two flag bits pick the record type. Arbitrary bytes stop at the
// sealed header, so the other bits let an input repair what a writer would have written correctly,
// and the parser is reached with everything else arbitrary: the header's identity (magic, layout,
// type, key and record sizes), its geometry fitted to the file (at most 1 MiB), the state words of
// the cells, the cell checksums, and the seal.
#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <type_traits>
#include <vector>

#include "FuzzTargets.h"
#include "platform/quor/Clock.h"
#include "platform/tarn/ArpEntry.h"
#include "platform/tarn/ChangeFeed.h"
#include "platform/tarn/FibFec.h"
#include "platform/tarn/TableReader.h"
#include "platform/tarn/VrfEntry.h"

namespace {

using Tarn::CorruptionDetectedException;
using Tarn::FileHeader;

enum Repair : std::uint8_t { identity = 1 << 2, fit = 1 << 3, states = 1 << 4, checksums = 1 << 5, seal = 1 << 6 };
constexpr std::uint8_t anyRepair = identity | fit | states | checksums | seal;
constexpr U64 largestFile = 1 << 20;

// File bytes aligned as a mapping is, so that the header and slots can be addressed in place.
struct alignas(64) Block {
  unsigned char bytes[64];
};

class TableBytes {
 public:
  TableBytes(const std::uint8_t* bytes, std::size_t size) : size_(size) {
    reserve(std::max(size, sizeof(FileHeader)));
    std::memcpy(blocks_.data(), bytes, size);
  }

  // Applies the repairs of `flags` for a table of `type` with the given key and record sizes.
  void repair(std::uint8_t flags, const char* type, U32 keySize, U32 recordSize) {
    if (!(flags & anyRepair)) return;
    size_ = std::max(size_, sizeof(FileHeader));
    FileHeader& h = header();
    if (flags & identity) {
      std::memcpy(h.magic, Tarn::fileMagic, sizeof h.magic);
      h.layoutVersion = Tarn::layoutVersion;
      h.headerSize = sizeof(FileHeader);
      h.keySize = keySize;
      h.recordSize = recordSize;
      std::memset(h.type, 0, sizeof h.type);
      std::strncpy(h.type, type, sizeof h.type - 1);
    }
    if (flags & fit) {
      h.capacity %= 64;
      h.logCapacity = 1u << (h.logCapacity % 8);
      const U64 fileSize = h.geometry().fileSize();
      if (fileSize <= largestFile) {
        reserve(fileSize);
        size_ = fileSize;
        header().fileSize = fileSize;
      }
    }
    // Cells are only addressed in a geometry that the reader would accept: its own record size.
    const Tarn::TableGeometry g = header().geometry();
    if ((flags & (states | checksums)) && g.keySize == keySize && g.recordSize == recordSize && g.capacity &&
        g.logCapacity && g.fileSize() <= size_) {
      const Tarn::TableMemory memory(reinterpret_cast<std::byte*>(blocks_.data()), g);
      for (U32 slot = 0; slot < g.capacity; ++slot) {
        for (U32 copy = 0; copy < 2; ++copy) {
          Tarn::CellHeader& cell = memory.cell(slot, copy);
          if (flags & states) cell.state = stateOf(cell.state);
          if (flags & checksums)
            cell.checksum = Tarn::cellChecksum(cell.state, Tarn::TableMemory::record(cell), recordSize);
        }
      }
    }
    if (flags & seal) header().seal = header().computeSeal();
  }

  void write(const std::filesystem::path& path) const {
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(blocks_.data()), static_cast<std::streamsize>(size_));
  }

 private:
  FileHeader& header() { return *reinterpret_cast<FileHeader*>(blocks_.data()); }
  void reserve(std::size_t size) {
    if (size > blocks_.size() * sizeof(Block)) blocks_.resize((size + sizeof(Block) - 1) / sizeof(Block), Block{});
  }
  // The low two bits of a state word choose a live state, or leave the word as it was.
  static U32 stateOf(U32 word) {
    constexpr Tarn::SlotState live[] = {Tarn::SlotState::empty, Tarn::SlotState::occupied, Tarn::SlotState::deleted};
    return (word & 3) < 3 ? static_cast<U32>(live[word & 3]) : word;
  }

  std::vector<Block> blocks_;
  std::size_t size_;
};

// Runs `read`, which may meet corruption: that ends it as it ends a view's read.
template <class Read>
void untilCorruption(Read read) {
  try {
    read();
  } catch (const CorruptionDetectedException&) {
  }
}

template <class Codec>
void readTable(const std::string& path) {
  using Record = typename Codec::Record;
  Codec codec = [&] {
    if constexpr (std::is_constructible_v<Codec, const std::string&>) return Codec(path);
    else return Codec();
  }();
  const auto decodeWhole = [&](const Record& record) {
    auto value = Codec::decode(record);
    if constexpr (requires { codec.complete(record, &value); }) codec.complete(record, &value);
  };
  std::unique_ptr<Tarn::TableReader> reader;
  untilCorruption([&] { reader = Tarn::TableReader::open(path, Codec::type, Codec::keySize, sizeof(Record)); });
  if (!reader) return;
  untilCorruption([&] {
    Record record;
    for (U32 slot = reader->nextOccupied(0, &record); slot < reader->capacity();
         slot = reader->nextOccupied(slot + 1, &record)) {
      const auto key = Codec::decodeKey(reinterpret_cast<const std::byte*>(&record));
      decodeWhole(record);
      Record probe{}, found;
      Codec::encodeKey(key, &probe);
      if (reader->lookup(&probe, &found)) decodeWhole(found);
    }
  });
  untilCorruption([&] {
    const U64 head = reader->logHead();
    U32 slot;
    for (U64 position = head > 64 ? head - 64 : 0; position < head; ++position) reader->logEntry(position, &slot);
  });
  untilCorruption([&] {
    Tarn::ChangeFeed feed;
    feed.follow(*reader);
    reader->observerIs(&feed);
    feed.resync();
    feed.pump(*reader, Quor::now() + 0.1, [](const std::byte* key) {
      Codec::decodeKey(key);
      return true;
    });
    reader->observerIs(nullptr);
  });
}

template <class Codec>
void readFile(TableBytes& file, std::uint8_t flags, const std::filesystem::path& path) {
  file.repair(flags, Codec::type, Codec::keySize, sizeof(typename Codec::Record));
  file.write(path);
  readTable<Codec>(path);
}

}  // namespace

namespace Fuzz {

int tableFile(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::uint8_t flags = input.byte();
  std::size_t taken;
  const std::uint8_t* table = input.take(input.u32(), &taken);
  const std::filesystem::path path = scratchDirectory() / "table";
  const std::filesystem::path chunkPath = Tarn::Fib::FecCodec::chunkFileOf(path.string());
  TableBytes file(table, taken);
  std::filesystem::remove(chunkPath);
  switch (flags & 3) {
    case 0:
      readFile<Arp::Table::ArpCodec>(file, flags, path);
      break;
    case 1:
      readFile<Tarn::Fib::RouteCodec>(file, flags, path);
      break;
    case 2: {
      using Tarn::Fib::FecCodec;
      const std::uint8_t* chunks = input.take(input.left(), &taken);
      TableBytes chunkFile(chunks, taken);
      chunkFile.repair(flags, FecCodec::chunkType, FecCodec::chunkKeySize, sizeof(Tarn::Fib::FecChunkRecord));
      chunkFile.write(chunkPath);
      readFile<FecCodec>(file, flags, path);
      break;
    }
    default:
      readFile<Vrf::VrfIdMap::VrfEntryCodec>(file, flags, path);
  }
  return 0;
}

}  // namespace Fuzz
