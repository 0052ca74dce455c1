#include "platform/quor/Reaper.h"

#include <sys/mman.h>

#include <algorithm>
#include <deque>

#include "platform/quor/SlicedPass.h"

namespace Quor {

namespace {

class Reaper {
 public:
  void add(ReapStep step) {
    steps_.push_back(std::move(step));
    if (!pass_) pass_ = slicedPass([this] { return runStep(); });
    pass_->start();
  }
  void finish() {
    if (pass_) pass_->finish();
  }
  std::size_t pending() const noexcept { return steps_.size(); }

 private:
  bool runStep() {
    if (steps_.empty()) return false;
    // Taken out while it runs: a step may hand over more.
    ReapStep step = std::move(steps_.front());
    steps_.pop_front();
    if (step && step())
      steps_.push_front(std::move(step));
    else
      step = nullptr;  // what it held goes now, and may hand over more
    return !steps_.empty();
  }

  std::deque<ReapStep> steps_;
  Ptr<SlicedPass> pass_;
};

Reaper& reaper() {
  // Never destroyed, like the activity manager whose clock it follows.
  static auto* instance = new Reaper;
  return *instance;
}

}  // namespace

void reap(ReapStep step) { reaper().add(std::move(step)); }

void reapAll() { reaper().finish(); }

std::size_t reapsPending() { return reaper().pending(); }

void reapMapping(void* base, std::size_t bytes) {
  // Unmapped whole up to this, in pieces of this beyond.
  static constexpr std::size_t piece = std::size_t(4) << 20;
  if (!base || bytes == 0) return;
  if (bytes <= piece) {
    ::munmap(base, bytes);
    return;
  }
  reap([at = static_cast<char*>(base), left = bytes]() mutable {
    const std::size_t now = std::min(left, piece);
    ::munmap(at, now);
    at += now;
    left -= now;
    return left > 0;
  });
}

}  // namespace Quor
