#include "platform/quor/Flitlog.h"

#include <chrono>
#include <ostream>

namespace Flitlog {

RingBuf* theTraceFile = nullptr;

namespace {

U64 nowNs() {
  using namespace std::chrono;
  return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

std::vector<std::string>& messages() {
  static auto* texts = new std::vector<std::string>;
  return *texts;
}

}  // namespace

RingBuf::RingBuf(std::size_t capacity) : ring_(capacity ? capacity : 1) {}

void RingBuf::startMsg(RingBuf* file, U32 id) {
  if (!file) return;
  std::size_t slot = file->next_;
  file->ring_[slot] = {id, nowNs(), 0};
  file->next_ = (slot + 1) % file->ring_.size();
  if (file->filled_ < file->ring_.size()) ++file->filled_;
  file->open_.push_back(slot);
}

void RingBuf::endMsg() {
  if (open_.empty()) return;
  Record& r = ring_[open_.back()];
  open_.pop_back();
  r.durationNs = nowNs() - r.startNs;
}

void RingBuf::dump(std::ostream& out) const {
  std::size_t first = (next_ + ring_.size() - filled_) % ring_.size();
  for (std::size_t i = 0; i < filled_; ++i) {
    const Record& r = ring_[(first + i) % ring_.size()];
    out << r.startNs << ' ' << r.durationNs << "ns " << messageText(r.id) << '\n';
  }
}

MsgDesc::MsgDesc(const char* file, const char* sourceName, int line)
    : file_(file), sourceName_(sourceName), line_(line) {}

U32 MsgDesc::finish() {
  messages().push_back(sourceName_ + ": " + text_.str() + " (" + file_ + ':' + std::to_string(line_) + ')');
  return static_cast<U32>(messages().size() - 1);
}

const std::string& messageText(U32 id) {
  static const std::string unknown = "<unknown message>";
  return id < messages().size() ? messages()[id] : unknown;
}

U32 siteId(const char* file, const char* sourceName, int line, const char* signature) {
  MsgDesc desc(file, sourceName, line);
  desc.stream() << signature;
  return desc.finish();
}

}  // namespace Flitlog
