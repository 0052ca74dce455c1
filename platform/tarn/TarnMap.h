#pragma once
// TarnMap<K, V>: the read-only view of one shared-memory table that the state machines read.
//
// Behind the view stands a backend: the shared-memory file (ShmTarnBackend), or, for tests of the
// state machines, a table in the process that they write synchronously (InProcessTable). While no
// backend is mapped (before the mount, while the file is missing, after a detach) the view is the
// stub, TarnBaseDummy: every read answers as an empty table.
//
// A read may raise CorruptionDetectedException. Its catcher hands the message to
// corruptionDetected(message), which traces it and, on a view that tolerates corruption (the
// default), detaches to the stub and records the case; the view comes back by itself when the writer
// has built a new file. A view that does not tolerate corruption raises the exception again.
//
// A view has no write operations: only the table's writer, another process, changes it.
#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "platform/quor/Trace.h"
#include "platform/tarn/Exceptions.h"
#include "platform/tarn/TarnBaseDummy.h"
#include "platform/tarn/Util.h"

namespace Tarn {

class TableFollower;

enum class MountStatus { unmounted, mapped, awaitingFile, detached };

// A value read from a table, with the key it was read under and whether it was there.
template <class V, class K>
class QuorTarnMapValueWrapper {
 public:
  QuorTarnMapValueWrapper() = default;
  QuorTarnMapValueWrapper(K key, V value, bool found) : key_(std::move(key)), value_(std::move(value)), found_(found) {}
  const V& value() const noexcept { return value_; }
  const K& key() const noexcept { return key_; }
  bool found() const noexcept { return found_; }
  explicit operator bool() const noexcept { return found_; }

 private:
  K key_{};
  V value_{};
  bool found_ = false;
};

// Where a walk stands; meaningful only to the view that filled it.
struct TarnMapIterator {
  U32 position = 0;
};

template <class K, class V>
class TarnMapBackend {
 public:
  virtual ~TarnMapBackend() = default;
  // Whether there is a table to read; false lets the stub answer.
  virtual bool mapped() const = 0;
  virtual bool lookup(const K& key, V* value) const = 0;
  // The first entry at or after it.position in the table's own order; false at the end.
  virtual bool first(TarnMapIterator& it, K* key, V* value) const = 0;
  // The entry after `key`, which stood at it.position.
  virtual bool next(const K& key, TarnMapIterator& it, K* nextKey, V* value) const = 0;
  virtual U32 members() const = 0;
  virtual U32 maxSize() const = 0;
  virtual U32 capacity() const = 0;
  virtual std::string type() const = 0;
  virtual ReaderCounters readerCounters() const = 0;
  // Attaches; corruption found on the way raises.
  virtual void initialize() = 0;
  // Lets the table go: for good, or until the writer builds another file (after corruption).
  virtual void detach(bool awaitReplacement) = 0;
  // The follower of the table file, for ordering deliveries; null for a table without one.
  virtual TableFollower* follower() const { return nullptr; }
};

void traceCorruption(const std::string& tableName, const std::string& message);
void traceDetach(const std::string& tableName);

template <class K, class V>
class TarnMap {
 public:
  using Wrapper = QuorTarnMapValueWrapper<V, K>;
  using Backend = TarnMapBackend<K, V>;

  explicit TarnMap(std::string name) : dummy_(std::move(name)) {}
  const std::string& name() const noexcept { return dummy_.name(); }

  Wrapper lookup(const K& key) const {
    V value{};
    bool found = live() ? backend_->lookup(key, &value) : dummy_.lookup();
    return Wrapper(key, found ? value : V{}, found);
  }
  Wrapper first(TarnMapIterator& it) const {
    it.position = 0;
    K key{};
    V value{};
    bool found = live() ? backend_->first(it, &key, &value) : dummy_.first();
    return found ? Wrapper(key, value, true) : Wrapper();
  }
  Wrapper next(const K& key, TarnMapIterator& it) const {
    K nextKey{};
    V value{};
    bool found = live() ? backend_->next(key, it, &nextKey, &value) : dummy_.next();
    return found ? Wrapper(nextKey, value, true) : Wrapper();
  }
  U32 members() const { return live() ? backend_->members() : dummy_.members(); }
  U32 maxSize() const { return live() ? backend_->maxSize() : dummy_.maxSize(); }
  U32 capacity() const { return live() ? backend_->capacity() : dummy_.capacity(); }
  std::string type() const { return live() ? backend_->type() : dummy_.type(); }
  ReaderCounters readerCounters() const { return live() ? backend_->readerCounters() : dummy_.readerCounters(); }
  MountStatus mountStatus() const {
    if (!backend_) return dummy_.mountStatus(), MountStatus::unmounted;
    if (detached_) return dummy_.mountStatus(), MountStatus::detached;
    return backend_->mapped() ? MountStatus::mapped : MountStatus::awaitingFile;
  }

  void initialize() const {
    if (!backend_) return dummy_.initialize();
    detached_ = false;
    try {
      backend_->initialize();
    } catch (const CorruptionDetectedException& e) {
      corruptionDetected(e.text());
    }
  }
  void detach() const {
    traceDetach(name());
    if (!live()) dummy_.detach();
    detached_ = true;
    if (backend_) backend_->detach(false);
  }

  void corruptionDetected(const std::string& message) const {
    traceCorruption(name(), message);
    if (!toleratesCorruption_) throw CorruptionDetectedException(message, true);
    traceDetach(name());
    if (backend_) backend_->detach(true);
    Util::writeCorruptionFile(name(), message);
  }
  bool toleratesCorruption() const noexcept { return toleratesCorruption_; }
  // A policy of this reader, not a change of the table, hence settable through a const view.
  void toleratesCorruptionIs(bool tolerates) const noexcept { toleratesCorruption_ = tolerates; }

  // Wiring, for the entity that holds the view and for its backend.
  void backendIs(std::unique_ptr<Backend> backend) {
    if (backend_) backend_->detach(false);
    backend_ = std::move(backend);
    detached_ = false;
  }
  Backend* backend() const noexcept { return backend_.get(); }
  // Where the backends report a key that may have changed.
  void changedHookIs(std::function<void(const K&)> hook) { changed_ = std::move(hook); }
  void keyChanged(const K& key) const {
    if (changed_) changed_(key);
  }
  // Orders this view's notifications after those of another table (see TableFollower): the other
  // table's follower, or null for no order. Ordering is a matter of delivery, not of the content, so
  // it may be set through a const view.
  void deliveredAfterIs(std::function<TableFollower*()> predecessor) const { predecessor_ = std::move(predecessor); }
  TableFollower* deliveredAfter() const { return predecessor_ ? predecessor_() : nullptr; }
  TableFollower* follower() const { return backend_ ? backend_->follower() : nullptr; }

 private:
  bool live() const noexcept { return backend_ && !detached_ && backend_->mapped(); }

  TarnBaseDummy dummy_;
  std::unique_ptr<Backend> backend_;
  std::function<void(const K&)> changed_;
  mutable std::function<TableFollower*()> predecessor_;
  mutable bool detached_ = false;
  mutable bool toleratesCorruption_ = true;
};

}  // namespace Tarn
