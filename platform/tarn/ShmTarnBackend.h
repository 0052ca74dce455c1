#pragma once
// The backend of a TarnMap that reads a table file, through a Codec that turns the table's values
// into the plain record stored in shared memory and back:
//
//   struct Codec {
//     using Key = ...; using Value = ...;
//     using Record = ...;       // a plain struct whose first keySize bytes are the encoded key
//     static constexpr const char* type;  // stored in the file header, checked by readers
//     static constexpr U32 keySize;
//     static Record encode(const Value&);
//     static void encodeKey(const Key&, Record*);  // fills the key bytes, zeroing padding
//     static Value decode(const Record&);
//     static Key decodeKey(const std::byte* keyBytes);
//   };
#include <string>

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
      : map_(map),
        follower_(Quor::makePtr<TableFollower>(std::move(filePath), Codec::type, Codec::keySize, sizeof(Record))) {}
  ~ShmTarnBackend() override { follower_->detach(false); }

  bool mapped() const override { return follower_->reader() != nullptr; }
  bool lookup(const Key& key, Value* value) const override {
    Record probe{}, out;
    Codec::encodeKey(key, &probe);
    if (!follower_->reader()->lookup(&probe, &out)) return false;
    *value = Codec::decode(out);
    return true;
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
  void detach(bool awaitReplacement) override { follower_->detach(awaitReplacement); }

  const TableFollower& follower() const noexcept { return *follower_; }

 private:
  bool walk(TarnMapIterator& it, Key* key, Value* value) const {
    Record out;
    it.position = follower_->reader()->nextOccupied(it.position, &out);
    if (it.position >= follower_->reader()->capacity()) return false;
    *value = Codec::decode(out);
    *key = Codec::decodeKey(reinterpret_cast<const std::byte*>(&out));
    return true;
  }
  void keyChanged(const std::byte* key) override { map_.keyChanged(Codec::decodeKey(key)); }
  void attachedIs(bool) override {}
  void corruptionDetected(const std::string& message) override { map_.corruptionDetected(message); }

  const TarnMap<Key, Value>& map_;
  Quor::Ptr<TableFollower> follower_;
};

}  // namespace Tarn
