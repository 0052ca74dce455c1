#include "sources/scenario/RunIndex.h"

#include <algorithm>
#include <tuple>

namespace Sources {

void RunIndex::add(U64 group, U64 start, U64 step, U64 count, std::size_t item) {
  runs_.push_back({group, start, start + (count - 1) * step, step, item});
}

std::optional<std::pair<std::size_t, std::size_t>> RunIndex::seal() {
  std::sort(runs_.begin(), runs_.end(),
            [](const Run& a, const Run& b) { return std::tie(a.group, a.start) < std::tie(b.group, b.start); });
  // The runs of a group lie on one lattice of their step, so runs whose spans meet share a key.
  const Run* widest = nullptr;
  for (const Run& run : runs_) {
    if (widest && widest->group == run.group && run.start <= widest->last)
      return std::minmax(widest->item, run.item);
    if (!widest || widest->group != run.group || run.last > widest->last) widest = &run;
  }
  return std::nullopt;
}

std::optional<std::pair<std::size_t, U64>> RunIndex::find(U64 group, U64 value) const {
  auto after = std::upper_bound(runs_.begin(), runs_.end(), std::make_pair(group, value),
                                [](const std::pair<U64, U64>& key, const Run& run) {
                                  return key < std::make_pair(run.group, run.start);
                                });
  if (after == runs_.begin()) return std::nullopt;
  const Run& run = *std::prev(after);
  if (run.group != group || value > run.last || (value - run.start) % run.step != 0) return std::nullopt;
  return std::make_pair(run.item, (value - run.start) / run.step);
}

}  // namespace Sources
