#pragma once
// What the table tests share: a private directory in /dev/shm, a record whose fields check each
// other (so a torn read cannot pass for a whole one), and raw access to a file for damaging it.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "platform/tarn/MappedFile.h"
#include "platform/tarn/TableFormat.h"
#include "platform/tarn/TableReader.h"
#include "platform/tarn/TableWriter.h"
#include "tests/support/TestSupport.h"

namespace TarnTest {

// key, then a version, then fields that are functions of both.
struct CheckedRecord {
  U64 key = 0;
  U64 version = 0;
  U64 check = 0;
  U64 spread[3] = {};

  static CheckedRecord make(U64 key, U64 version);
  bool whole() const;
};

inline constexpr const char* checkedType = "TarnTest::CheckedRecord";

inline Tarn::TableGeometry checkedGeometry(U32 maxMembers) {
  return Tarn::TableGeometry::forRecords(sizeof(U64), sizeof(CheckedRecord), maxMembers);
}

// What a walk of every occupied slot of `table` finds, key to version; a torn record or a key walked
// twice fails the test.
std::map<U64, U64> contentOf(const Tarn::TableReader& table);
// The first few keys on which two contents disagree, as "key: a/b" ("-" for absent); empty if none.
std::string differences(const std::map<U64, U64>& a, const std::map<U64, U64>& b);

// Puts the checked record of `key` at `version`.
void put(Tarn::TableWriter& w, U64 key, U64 version);

// A test with a directory of its own and a table of checked records, "table", in it.
class TableDir : public ::testing::Test {
 protected:
  std::string path(const std::string& name = "table") const { return dir_ / name; }
  std::unique_ptr<Tarn::TableWriter> writer(U32 maxMembers = 1000, bool fresh = false, double lockWait = 0) const;
  std::unique_ptr<Tarn::TableReader> reader() const;

  TestSupport::TempDir dir_{"/dev/shm"};
};

// A writable mapping of a table file, for damaging it as a broken writer would.
class RawTable {
 public:
  explicit RawTable(const std::string& path);
  Tarn::FileHeader& header() { return memory_.header(); }
  Tarn::TableMemory& memory() { return memory_; }
  // The slot that holds `key` now, and its current record.
  U32 slotOf(U64 key);
  std::byte* recordOf(U64 key) { return Tarn::TableMemory::record(memory_.current(slotOf(key))); }

 private:
  Tarn::FileDescriptor fd_;
  Tarn::Mapping mapping_;
  Tarn::TableGeometry geometry_;
  Tarn::TableMemory memory_;
};

}  // namespace TarnTest
