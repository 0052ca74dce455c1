#pragma once
// The in-memory binary trace: every state-machine handler records one time-stamped message at entry,
// closed with its duration when the handler leaves. Messages are interned once per call site, so a
// record is a message id and two times; the ring keeps the most recent records for a support dump.
#include <iosfwd>
#include <sstream>
#include <string>
#include <vector>

#include "platform/quor/Types.h"

namespace Flitlog {

class RingBuf {
 public:
  explicit RingBuf(std::size_t capacity);
  static void startMsg(RingBuf* file, U32 id);
  void endMsg();
  // Writes the records oldest first: start time, duration and the message text of each.
  void dump(std::ostream& out) const;
  std::size_t records() const noexcept { return filled_; }

 private:
  struct Record {
    U32 id;
    U64 startNs;
    U64 durationNs;
  };
  std::vector<Record> ring_;
  std::size_t next_ = 0;
  std::size_t filled_ = 0;
  std::vector<std::size_t> open_;  // records whose handlers are still running, innermost last
};

// The process's trace file; null means nothing is recorded.
extern RingBuf* theTraceFile;

// Describes one message site: the first time through, its fixed text is streamed in and finish()
// gives the identifier under which records refer to it.
class MsgDesc {
 public:
  MsgDesc(const char* file, const char* sourceName, int line);
  std::ostream& stream() { return text_; }
  U32 finish();

 private:
  std::string file_;
  std::string sourceName_;
  int line_;
  std::ostringstream text_;
};

const std::string& messageText(U32 id);

// Records its message at construction and closes it, with the elapsed time, at destruction.
class BlockTimerMsg {
 public:
  explicit BlockTimerMsg(U32 id) : file_(theTraceFile) { RingBuf::startMsg(file_, id); }
  ~BlockTimerMsg() { if (file_) file_->endMsg(); }
  BlockTimerMsg(const BlockTimerMsg&) = delete;
  BlockTimerMsg& operator=(const BlockTimerMsg&) = delete;

 private:
  RingBuf* file_;
};

U32 siteId(const char* file, const char* sourceName, int line, const char* signature);

}  // namespace Flitlog

// Records the enclosing handler, labelled with its signature, for the length of the scope.
#define FLITLOG_BLOCK(sourceName, signature)                                                   \
  static const U32 flitlogMsgId_ = ::Flitlog::siteId(__FILE__, sourceName, __LINE__, signature); \
  ::Flitlog::BlockTimerMsg flitlogTimer_(flitlogMsgId_)
