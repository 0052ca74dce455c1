#pragma once
// A table file written through its Codec that grows instead of filling up: when a new key finds the
// table full, the table is built again at twice the size (the writer carries every record into a new
// file renamed into place, which readers move to).
//
// It opens at the size of the file already there, if larger than asked, so that a writer started
// again takes its predecessor's file over instead of rebuilding it.
#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "platform/quor/Trace.h"
#include "platform/tarn/TableSizes.h"
#include "platform/tarn/TableWriter.h"

namespace Sources::Linux {

// Waits this long for a writer that is going away to let go of a file.
inline constexpr double tableLockWait = 5.0;

template <class Codec>
class GrowingTable {
 public:
  using Key = typename Codec::Key;
  using Value = typename Codec::Value;
  using Record = typename Codec::Record;

  GrowingTable(std::string path, U32 leastMembers) : path_(std::move(path)) {
    U32 size = std::max(leastMembers, Tarn::presentMaxMembers<Codec>(path_));
    writer_ = std::make_unique<Tarn::TableWriter>(path_, Codec::type, geometry(size), tableLockWait);
  }

  // Calls `visit` with every value the file holds.
  void forEach(const std::function<void(const Value&)>& visit) const {
    writer_->forEachRecord([&](const void* record) { visit(Codec::decode(*static_cast<const Record*>(record))); });
  }
  void put(const Value& value) {
    Record record = Codec::encode(value);
    if (writer_->members() >= writer_->geometry().maxMembers) {
      Record present;
      if (!writer_->find(&record, &present)) grow();
    }
    writer_->put(&record);
  }
  bool erase(const Key& key) {
    Record record{};
    Codec::encodeKey(key, &record);
    return writer_->erase(&record);
  }
  void commit() { writer_->commit(); }
  U32 members() const noexcept { return writer_->members(); }
  U32 maxMembers() const noexcept { return writer_->geometry().maxMembers; }

 private:
  static Tarn::TableGeometry geometry(U32 maxMembers) {
    return Tarn::TableGeometry::forRecords(Codec::keySize, sizeof(Record), maxMembers);
  }
  void grow() {
    const U32 size = writer_->geometry().maxMembers * 2;
    writer_.reset();  // commits the batch, so the larger file gets all of it
    writer_ = std::make_unique<Tarn::TableWriter>(path_, Codec::type, geometry(size), tableLockWait);
    QTRACE(Quor::Tracer("Linux", "GrowingTable"), 1, path_ << " grown to " << size << " records");
  }

  std::string path_;
  std::unique_ptr<Tarn::TableWriter> writer_;
};

}  // namespace Sources::Linux
