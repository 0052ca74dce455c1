#pragma once
// The stand-in for a table that is not mapped: before its mount, while its file is missing, and after
// a detach. It answers every read as an empty table and traces each call at level 5 with the table's
// name, so the state machines need no special case for an absent table.
#include <string>

#include "platform/tarn/TableReader.h"

namespace Tarn {

class TarnBaseDummy {
 public:
  explicit TarnBaseDummy(std::string tableName) : name_(std::move(tableName)) {}
  const std::string& name() const noexcept { return name_; }

  bool lookup() const { return stub("TarnBaseDummy::lookup() "), false; }
  bool first() const { return stub("TarnBaseDummy::first() "), false; }
  bool next() const { return stub("TarnBaseDummy::next() "), false; }
  void initialize() const { stub("TarnBaseDummy::initialize() "); }
  void detach() const { stub("TarnBaseDummy::detach() "); }
  U32 members() const { return stub("TarnBaseDummy::members() "), 0; }
  U32 maxSize() const { return stub("TarnBaseDummy::maxSize() "), 0; }
  U32 capacity() const { return stub("TarnBaseDummy::capacity() "), 0; }
  std::string type() const { return stub("TarnBaseDummy::type() "), std::string(); }
  void mountStatus() const { stub("TarnBaseDummy::mountStatus() "); }
  ReaderCounters readerCounters() const { return stub("TarnBaseDummy::readerCounters() "), ReaderCounters(); }

 private:
  void stub(const char* operation) const;
  std::string name_;
};

}  // namespace Tarn
