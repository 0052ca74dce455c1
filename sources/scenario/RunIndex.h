#pragma once
// Keys given in runs: a run is `count` keys start, start + step, start + 2 step, ... of one group,
// the form in which a scenario writes its table entries, one or a million alike. The index finds the
// run that holds a key without spelling the runs out, and tells whether two runs share a key.
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "platform/quor/Types.h"

namespace Sources {

class RunIndex {
 public:
  // Adds run `item`; every run of a group has the same step.
  void add(U64 group, U64 start, U64 step, U64 count, std::size_t item);
  // Orders the runs for find(); gives two items that share a key, the lower first, if any do.
  std::optional<std::pair<std::size_t, std::size_t>> seal();
  // The item that holds `value` in `group`, and the value's position in its run.
  std::optional<std::pair<std::size_t, U64>> find(U64 group, U64 value) const;

 private:
  struct Run {
    U64 group;
    U64 start;
    U64 last;
    U64 step;
    std::size_t item;
  };
  std::vector<Run> runs_;
};

}  // namespace Sources
