#pragma once
// The pages of a shared table file that this process has read or written count in its resident set
// although they belong to the file, in memory once whoever maps them. A mapping's pages go back to
// the file pageHandBackDelay seconds after the first touch that follows the last hand-back, from
// the activity manager's clock, a few megabytes a turn (a hundred megabytes at once held the loop
// 10 ms): madvise MADV_DONTNEED on the shared mapping, after which the file keeps its contents and
// the next touch of a page maps it again with a minor fault. So the resident set holds the pages
// touched in the last second or so, not every page of a table that a first pass has read or a
// writer has filled. The header's page stays.
#include "platform/tarn/MappedFile.h"

namespace Tarn {

inline constexpr double pageHandBackDelay = 1.0;

class PageHandBack {
 public:
  explicit PageHandBack(const Mapping& mapping) noexcept : mapping_(mapping) {}
  ~PageHandBack();
  PageHandBack(const PageHandBack&) = delete;
  PageHandBack& operator=(const PageHandBack&) = delete;

  // The mapping's pages have been touched: cheap once a hand-back is pending.
  void touched() const {
    if (!pending_) schedule();
  }
  // Hands back up to `budget` bytes of pages from offset `from` (0: a hand-back begins) and takes
  // them from `budget`. Returns where the next step starts, 0 once the whole mapping is done.
  std::size_t handBack(std::size_t from, std::size_t& budget) const;

 private:
  void schedule() const;
  const Mapping& mapping_;
  mutable bool pending_ = false;
  mutable bool everScheduled_ = false;
};

}  // namespace Tarn
