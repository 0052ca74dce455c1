#pragma once
// The backend of a TarnMap that reads a table file, through a Codec that turns the table's values
// into the plain record stored in shared memory and back:
//
//   struct Codec {
//     using Key = ...; using Value = ...;
//     using Record = ...;       // a plain struct whose first keySize bytes are the encoded key
//     static constexpr const char* type;  // stored in the file header, checked by readers
//     static constexpr U32 keySize;
//     static void encodeKey(const Key&, Record*);  // fills the key bytes, zeroing padding
//     static Value decode(const Record&);
//     static Key decodeKey(const std::byte* keyBytes);
//     // Optional, for a value kept in several records (FecCodec), whose codec is then made from
//     // the table file's path: reads the other parts of the write that the record is (false when
//     // that write is gone), and release() lets them go.
//     bool complete(const Record&, Value*) const;
//     void release();
//   };
//
// A value in several records is read again when its parts have moved on; the same record read
// again with its parts still missing is corruption.
#include <cstring>
#include <string>
#include <type_traits>

#include "platform/tarn/TableFollower.h"
#include "platform/tarn/TarnMap.h"

namespace Tarn {

template <class Codec>
class ShmTarnBackend final : public TarnMapBackend<typename Codec::Key, typename Codec::Value>,
                             public TableFollower::Client {
 public:
  using Key = typename Codec::Key;
  using Value = typename Codec::Value;
  using Record = typename Codec::Record;

  ShmTarnBackend(const TarnMap<Key, Value>& map, std::string filePath)
      : map_(map), codec_(codecFor(filePath)),
        follower_(Quor::makePtr<TableFollower>(std::move(filePath), Codec::type, Codec::keySize, sizeof(Record))) {
    follower_->predecessorIs([&map] { return map.deliveredAfter(); });
  }
  ~ShmTarnBackend() override { follower_->detach(false); }

  bool mapped() const override { return follower_->reader() != nullptr; }
  bool lookup(const Key& key, Value* value) const override {
    Record probe{}, out, before;
    Codec::encodeKey(key, &probe);
    for (int attempt = 0; attempt < TableReader::maxReadAttempts; ++attempt) {
      if (!follower_->reader()->lookup(&probe, &out)) return false;
      if (decodeWhole(out, value)) return true;
      if (attempt > 0 && std::memcmp(&out, &before, sizeof out) == 0)
        throwCorruption(follower_->path() + ": a record whose other parts are missing");
      before = out;
    }
    throwCorruption(follower_->path() + ": a record kept being rewritten through " +
                    std::to_string(TableReader::maxReadAttempts) + " reads");
  }
  bool first(TarnMapIterator& it, Key* key, Value* value) const override { return walk(it, key, value); }
  bool next(const Key&, TarnMapIterator& it, Key* key, Value* value) const override {
    ++it.position;
    return walk(it, key, value);
  }
  U32 members() const override { return follower_->reader()->members(); }
  U32 maxSize() const override { return follower_->reader()->geometry().maxMembers; }
  U32 capacity() const override { return follower_->reader()->capacity(); }
  std::string type() const override { return Codec::type; }
  ReaderCounters readerCounters() const override { return follower_->reader()->counters(); }
  void initialize() override { follower_->attach(this); }
  void detach(bool awaitReplacement) override {
    follower_->detach(awaitReplacement);
    if constexpr (requires { codec_.release(); }) codec_.release();
  }
  TableFollower* follower() const override { return follower_.ptr(); }

 private:
  // A codec with state is made from the path of the table file.
  static Codec codecFor(const std::string& filePath) {
    if constexpr (std::is_constructible_v<Codec, const std::string&>)
      return Codec(filePath);
    else
      return Codec();
  }
  bool decodeWhole(const Record& record, Value* value) const {
    *value = Codec::decode(record);
    if constexpr (requires { codec_.complete(record, value); }) return codec_.complete(record, value);
    return true;
  }
  bool walk(TarnMapIterator& it, Key* key, Value* value) const {
    const TableReader& reader = *follower_->reader();
    for (Record out;; ++it.position) {
      it.position = reader.nextOccupied(it.position, &out);
      if (it.position >= reader.capacity()) return false;
      *key = Codec::decodeKey(reinterpret_cast<const std::byte*>(&out));
      // A value whose write was replaced meanwhile is read anew; one deleted meanwhile is skipped.
      if (decodeWhole(out, value) || lookup(*key, value)) return true;
    }
  }
  void keyChanged(const std::byte* key) override { map_.keyChanged(Codec::decodeKey(key)); }
  void attachedIs(bool) override {}
  void corruptionDetected(const std::string& message) override { map_.corruptionDetected(message); }

  const TarnMap<Key, Value>& map_;
  Codec codec_;
  Quor::Ptr<TableFollower> follower_;
};

}  // namespace Tarn
