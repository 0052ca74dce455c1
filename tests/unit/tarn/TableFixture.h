#pragma once
// What the table tests share: a private directory in /dev/shm, a record whose fields check each
// other (so a torn read cannot pass for a whole one), and raw access to a file for damaging it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "platform/tarn/MappedFile.h"
#include "platform/tarn/TableFormat.h"

namespace TarnTest {

// key, then a version, then fields that are functions of both.
struct CheckedRecord {
  U64 key = 0;
  U64 version = 0;
  U64 check = 0;
  U64 spread[3] = {};

  static CheckedRecord make(U64 key, U64 version) {
    CheckedRecord r;
    r.key = key;
    r.version = version;
    r.check = Tarn::hashBytes(&r, 16);
    for (U64& s : r.spread) s = r.check ^ key;
    return r;
  }
  bool whole() const {
    CheckedRecord expected = make(key, version);
    return check == expected.check && spread[0] == expected.spread[0] && spread[2] == expected.spread[2];
  }
};

inline constexpr const char* checkedType = "TarnTest::CheckedRecord";

inline Tarn::TableGeometry checkedGeometry(U32 maxMembers) {
  return Tarn::TableGeometry::forRecords(sizeof(U64), sizeof(CheckedRecord), maxMembers);
}

// A directory of its own per test, removed afterwards.
class TableDir : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = std::filesystem::path("/dev/shm") /
           ("tarn-test-" + std::to_string(::getpid()) + "-" + info->test_suite_name() + "-" + info->name());
    std::filesystem::remove_all(dir_);
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }
  std::string path(const std::string& name = "table") const { return (dir_ / name).string(); }

  std::filesystem::path dir_;
};

// Runs the event loop until `done` holds or 5 seconds have passed; whether it holds.
bool turnUntil(const std::function<bool()>& done);

// A writable mapping of a table file, for damaging it as a broken writer would.
class RawTable {
 public:
  explicit RawTable(const std::string& path);
  Tarn::FileHeader& header() { return memory_.header(); }
  Tarn::TableMemory& memory() { return memory_; }
  // The slot that holds `key` now.
  U32 slotOf(U64 key);
  // Names `slot` in the change log and wakes the readers, as a writer does after a write.
  void announce(U32 slot);

 private:
  std::string path_;
  Tarn::FileDescriptor fd_;
  Tarn::Mapping mapping_;
  Tarn::TableGeometry geometry_;
  Tarn::TableMemory memory_;
};

}  // namespace TarnTest
