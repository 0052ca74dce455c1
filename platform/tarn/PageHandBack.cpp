#include "platform/tarn/PageHandBack.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <deque>

#include "platform/quor/Clock.h"

namespace Tarn {

namespace {

// The one timer of the process that hands back the pages of the mappings touched since their last
// hand-back: armed by the first such touch, it fires pageHandBackDelay seconds later and then every
// turn, handBackStep bytes a turn, until every such mapping is done.
class HandBackTimer : public Quor::Clock::NotifieeConst {
 public:
  static HandBackTimer& instance() {
    static const Quor::Ptr<HandBackTimer> timer = [] {
      auto made = Quor::makePtr<HandBackTimer>();
      made->notifierIs(Quor::activityManager()->clock());
      return made;
    }();
    return *timer;
  }
  void pendingIs(const PageHandBack* pages) {
    pending_.push_back({pages, 0});
    if (timeMin() == Quor::never) timeMinIs(Quor::now() + pageHandBackDelay);
  }
  void forget(const PageHandBack* pages) {
    std::erase_if(pending_, [pages](const Pending& p) { return p.pages == pages; });
  }
  void onTime() override {
    std::size_t budget = handBackStep;
    while (!pending_.empty() && budget > 0) {
      Pending& next = pending_.front();
      next.from = next.pages->handBack(next.from, budget);
      if (next.from == 0) pending_.pop_front();
    }
    if (!pending_.empty()) timeMinIs(Quor::now());
  }

 private:
  static constexpr std::size_t handBackStep = std::size_t(4) << 20;
  struct Pending {
    const PageHandBack* pages;
    std::size_t from;
  };
  std::deque<Pending> pending_;
};

}  // namespace

// Whether pending or not: a hand-back under way has an entry after its first step has cleared
// pending_, and the timer must not step through a mapping that is gone.
PageHandBack::~PageHandBack() {
  if (everScheduled_) HandBackTimer::instance().forget(this);
}

void PageHandBack::schedule() const {
  pending_ = true;
  everScheduled_ = true;
  HandBackTimer::instance().pendingIs(this);
}

std::size_t PageHandBack::handBack(std::size_t from, std::size_t& budget) const {
  static const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  if (from == 0) {
    pending_ = false;
    from = page;  // the header's page stays: every read looks at it
  }
  if (from >= mapping_.size()) return 0;
  std::size_t length = std::min(budget, mapping_.size() - from);
  // Whole pages but at the end: madvise refuses a start that is not on a page boundary.
  if (from + length < mapping_.size()) length -= length % page;
  if (length == 0) {
    budget = 0;
    return from;
  }
  ::madvise(mapping_.base() + from, length, MADV_DONTNEED);
  budget -= length;
  from += length;
  return from < mapping_.size() ? from : 0;
}

}  // namespace Tarn
