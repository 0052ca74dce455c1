// Runs of keys: the run and position of a key, found without spelling the runs out, and runs that
// share a key told apart from runs that only come near.
#include <gtest/gtest.h>

#include "sources/scenario/RunIndex.h"

namespace {

using Sources::RunIndex;
using Place = std::optional<std::pair<std::size_t, U64>>;

TEST(RunIndex, AKeyIsFoundInItsRunOnlyOnTheStepsOfTheRun) {
  RunIndex index;
  index.add(1, 1000, 10, 5, 0);  // 1000, 1010, ..., 1040
  index.add(1, 2000, 10, 1, 1);
  index.add(2, 1000, 10, 5, 2);
  ASSERT_FALSE(index.seal());
  EXPECT_EQ(index.find(1, 1000), Place({0, 0}));
  EXPECT_EQ(index.find(1, 1030), Place({0, 3}));
  EXPECT_EQ(index.find(1, 1035), std::nullopt) << "between two steps";
  EXPECT_EQ(index.find(1, 1050), std::nullopt) << "past the end";
  EXPECT_EQ(index.find(1, 999), std::nullopt);
  EXPECT_EQ(index.find(1, 2000), Place({1, 0}));
  EXPECT_EQ(index.find(2, 1040), Place({2, 4})) << "each group on its own";
  EXPECT_EQ(index.find(3, 1000), std::nullopt);
}

TEST(RunIndex, RunsThatShareAKeyAreNamedAndRunsSideBySideAreNot) {
  RunIndex apart;
  apart.add(0, 10, 1, 5, 0);  // 10..14
  apart.add(0, 15, 1, 5, 1);  // 15..19
  EXPECT_EQ(apart.seal(), std::nullopt);

  RunIndex touching;
  touching.add(0, 15, 1, 5, 0);
  touching.add(0, 10, 1, 6, 1);  // 10..15
  EXPECT_EQ(touching.seal(), (std::optional<std::pair<std::size_t, std::size_t>>({0, 1})));

  RunIndex nested;  // a short run inside a long one, after a third that starts between them
  nested.add(0, 0, 1, 100, 0);
  nested.add(0, 50, 1, 1, 2);
  nested.add(0, 10, 1, 1, 1);
  auto both = nested.seal();
  ASSERT_TRUE(both);
  EXPECT_EQ(both->first, 0u);
}

}  // namespace
