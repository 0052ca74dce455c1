#pragma once
// A shared-memory table entity whose view reads a table in the process until the test damages it:
// from then on every read raises the corruption exception, as a reader of a file that a broken
// writer left behind would. Reporting the damage detaches the view, which then reads as the stub.
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/tarn/InProcessTable.h"
#include "tests/support/TestSupport.h"

namespace IpSnmp {

template <class Status>
class DamageableTable final : public Status {
 public:
  using Key = typename Status::Key;
  using Value = typename Status::Value;

  explicit DamageableTable(const Quor::Name& name) : Status(name) {
    auto backend = std::make_unique<Backend>(this->view());
    backend_ = backend.get();
    this->view().backendIs(std::move(backend));
    this->view().initialize();
  }

  // The table that the view reads; writing it notifies the entity's reactors at once.
  Tarn::InProcessTable<Key, Value>& table() { return backend_->table; }
  // The next `goodReads` reads succeed, every one after them raises.
  void damageAfter(unsigned goodReads) { backend_->goodReads = goodReads; }

 private:
  struct Backend final : Tarn::TarnMapBackend<Key, Value> {
    explicit Backend(const Tarn::TarnMap<Key, Value>& view) : table(view) {}
    void read() const {
      if (goodReads == 0) Tarn::throwCorruption("checksum mismatch in a test table");
      if (goodReads != unlimited) --goodReads;
    }
    bool mapped() const override { return attached; }
    bool lookup(const Key& key, Value* value) const override { return read(), table.lookup(key, value); }
    bool first(Tarn::TarnMapIterator& it, Key* key, Value* value) const override {
      return read(), table.first(it, key, value);
    }
    bool next(const Key& key, Tarn::TarnMapIterator& it, Key* nextKey, Value* value) const override {
      return read(), table.next(key, it, nextKey, value);
    }
    U32 members() const override { return table.members(); }
    U32 maxSize() const override { return table.maxSize(); }
    U32 capacity() const override { return table.capacity(); }
    std::string type() const override { return "damageable"; }
    Tarn::ReaderCounters readerCounters() const override { return table.readerCounters(); }
    void initialize() override {}
    void detach(bool) override { attached = false; }

    static constexpr unsigned unlimited = ~0u;
    Tarn::InProcessTable<Key, Value> table;
    mutable unsigned goodReads = unlimited;
    bool attached = true;
  };

  Backend* backend_;
};

// Sends the reports of damaged tables to a directory of the test's own while it lives.
class CorruptionReportDir {
 public:
  CorruptionReportDir() { ::setenv("TARN_CORRUPTION_DIR", dir_.path().c_str(), 1); }
  ~CorruptionReportDir() { ::unsetenv("TARN_CORRUPTION_DIR"); }

 private:
  TestSupport::TempDir dir_;
};

}  // namespace IpSnmp
