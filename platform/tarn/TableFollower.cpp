#include "platform/tarn/TableFollower.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace Tarn {

namespace {

// Whether a writer holds the file's lock, asked without taking it.
bool writerAlive(int fd) {
  struct flock lock {};
  lock.l_type = F_RDLCK;
  lock.l_whence = SEEK_SET;
  return ::fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

}  // namespace

TableFollower::TableFollower(std::string path, std::string type, U32 keySize, U32 recordSize)
    : path_(std::move(path)), type_(std::move(type)), keySize_(keySize), recordSize_(recordSize) {
  // A read displaced a key the receiver may believe in: deliver it on the next turn.
  feed_.pendingHookIs([this] {
    if (client_ && !pumping_) timeMinIs(0.0);
  });
}

TableFollower::~TableFollower() = default;

bool TableFollower::attach(Client* client) {
  client_ = client;
  refusedInode_ = 0;
  if (!watch_) watch_ = std::make_unique<FileWatch>(path_, [this] { fileChanged(); });
  if (notifier() == nullptr) notifierIs(Quor::activityManager()->clock());
  return reader_ || open(!opened_);
}

bool TableFollower::open(bool silently) {
  auto reader = TableReader::open(path_, type_, keySize_, recordSize_);
  if (!reader) return false;
  reader->observerIs(&feed_);
  if (silently)
    feed_.follow(*reader);
  else
    feed_.refollow(*reader);
  reader_ = std::move(reader);
  opened_ = true;
  return true;
}

void TableFollower::retire() {
  if (pumping_)
    retired_ = std::move(reader_);
  else
    reader_.reset();
}

void TableFollower::detach(bool awaitReplacement) {
  if (awaitReplacement && reader_) {
    struct stat st;
    refusedInode_ = ::fstat(reader_->fd(), &st) == 0 ? st.st_ino : 0;
  }
  retire();
  if (!awaitReplacement) {
    client_ = nullptr;
    watch_.reset();
    opened_ = false;
    timeMinIs(Quor::never);
  }
}

void TableFollower::fileChanged() {
  Quor::Ptr<TableFollower> self(this);
  if (!client_) return;
  try {
    struct stat st;
    bool replacement = (!reader_ || reader_->unlinked()) && ::stat(path_.c_str(), &st) == 0 &&
                       !(refusedInode_ && st.st_ino == refusedInode_);
    if (replacement) {
      bool wasAttached = reader_ != nullptr;
      retire();
      if (!open(false)) return;
      refusedInode_ = 0;
      if (!wasAttached) client_->attachedIs(true);
    } else if (reader_ && reader_->batchOpen() && !writerAlive(reader_->fd())) {
      feed_.resync();  // the writer died in a batch: its last change may be missing from the log
    }
  } catch (const CorruptionDetectedException& e) {
    client_->corruptionDetected(e.text());
    return;
  }
  // Delivered from the clock, within the budget of the loop's turn, not from the descriptor's handler.
  if (reader_) timeMinIs(0.0);
}

bool TableFollower::predecessorCaughtUp() {
  TableFollower* before = predecessor_ ? predecessor_() : nullptr;
  if (!before || before == this || !before->reader_) return true;
  // A mark beyond the log is of a file that has been replaced, even one mapped at the same address.
  if (markedReader_ != before->reader_.get() || mark_ > before->reader_->logHead()) {
    markedReader_ = before->reader_.get();
    mark_ = markedReader_->logHead();
  }
  before->pump();
  return before->reader_.get() != markedReader_ || before->feed_.deliveredThrough(*markedReader_, mark_);
}

void TableFollower::pump() {
  if (!reader_ || !client_ || pumping_) return;
  Quor::Ptr<TableFollower> self(this);
  if (!predecessorCaughtUp()) {
    timeMinIs(0.0);
    return;
  }
  if (!reader_ || !client_) return;  // the predecessor's reactors let this table go
  pumping_ = true;
  bool done = true;
  try {
    done = feed_.pump(*reader_, Quor::sliceDeadline(deliveryQuantum), [this](const std::byte* key) {
      client_->keyChanged(key);
      return client_ && reader_;  // the client may have let the table go
    });
  } catch (const CorruptionDetectedException& e) {
    pumping_ = false;
    retired_.reset();
    if (client_) client_->corruptionDetected(e.text());
    return;
  }
  pumping_ = false;
  retired_.reset();
  if (done) markedReader_ = nullptr;  // the next round waits for what the predecessor has then
  if (!done && reader_ && client_) timeMinIs(0.0);
}

}  // namespace Tarn
