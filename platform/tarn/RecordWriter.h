#pragma once
// A TableWriter of one table's values, through the table's Codec (see ShmTarnBackend.h): what the
// writing agents, the command-line writer and the tests put into a route, ARP or VRF-id table.
#include <string>

#include "platform/tarn/TableWriter.h"

namespace Tarn {

template <class Codec>
class RecordWriter {
 public:
  using Key = typename Codec::Key;
  using Value = typename Codec::Value;
  using Record = typename Codec::Record;

  static TableGeometry geometry(U32 maxMembers) {
    return TableGeometry::forRecords(Codec::keySize, sizeof(Record), maxMembers);
  }
  RecordWriter(std::string path, U32 maxMembers, double lockWait = 0)
      : table_(std::move(path), Codec::type, geometry(maxMembers), lockWait) {}

  void put(const Value& value) {
    Record record = Codec::encode(value);
    table_.put(&record);
  }
  bool erase(const Key& key) {
    Record record{};
    Codec::encodeKey(key, &record);
    return table_.erase(&record);
  }
  void commit() { table_.commit(); }
  U32 members() const noexcept { return table_.members(); }

 private:
  TableWriter table_;
};

}  // namespace Tarn
