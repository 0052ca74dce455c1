// Quor::BlockMap: the ordered collection of plain values in sorted blocks. Its walk keeps the
// guarantees of the framework's other collections (CollectionIterator.h), and its blocks stay full
// enough to be worth it, whatever the order of insertions and removals.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "platform/quor/BlockMap.h"

namespace {

struct Row {
  U32 key = 0;
  U32 value = 0;
  const U32& fwkKey() const noexcept { return key; }
};
using Rows = Quor::BlockMap<Row, U32, 256>;  // small blocks, so that a few hundred rows make many

std::vector<U32> keysOf(const Rows& rows) {
  std::vector<U32> keys;
  for (auto it = rows.begin(); it; ++it) keys.push_back(it.key());
  return keys;
}

// The walk's guarantees under changes: the removed current member stays readable and the walk goes
// on above it, an insertion ahead is visited and one behind is not, and a walk whose every member
// went ends after its current step, with no block left.
TEST(BlockMap, AWalkGoesOnAcrossRemovalsAndInsertions) {
  Rows rows;
  for (U32 k = 0; k < 100; ++k) rows.memberIs({k * 2, k});
  auto it = rows.startAt(40);
  ASSERT_TRUE(rows.deleteMember(40));
  EXPECT_EQ(it->value, 20u) << "the removed member stays readable";
  rows.memberIs({41, 0});
  rows.memberIs({39, 0});
  ++it;
  EXPECT_EQ(it.key(), 41u);
  ++it;
  EXPECT_EQ(it.key(), 42u);
  while (const Row* first = rows.firstMember()) rows.deleteMember(first->key);
  EXPECT_EQ(rows.members(), 0u);
  EXPECT_EQ(rows.blocks(), 0u);
  EXPECT_FALSE(rows.begin());
  EXPECT_EQ(it.key(), 42u);
  ++it;
  EXPECT_FALSE(it);
}

// Random insertions and removals, checked against std::map after every step, with a walk that
// deletes behind it and inserts ahead of it.
TEST(BlockMap, RandomChangesKeepOrderLookupsAndWalksOfAnOrderedMap) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    std::mt19937 random(seed);
    Rows rows;
    std::map<U32, U32> expected;
    for (int step = 0; step < 4000; ++step) {
      const U32 key = random() % 1000;
      if (random() % 3 != 0) {
        if (!expected.count(key)) {
          rows.memberIs({key, static_cast<U32>(step)});
          expected[key] = static_cast<U32>(step);
        }
      } else {
        EXPECT_EQ(rows.deleteMember(key), expected.erase(key) == 1);
      }
      const U32 probe = random() % 1001;
      const Row* found = rows.member(probe);
      ASSERT_EQ(found != nullptr, expected.count(probe) == 1);
      if (found) {
        ASSERT_EQ(found->value, expected[probe]);
      }
      auto lower = expected.lower_bound(probe);
      auto it = rows.startAt(probe);
      ASSERT_EQ(static_cast<bool>(it), lower != expected.end());
      if (it) {
        ASSERT_EQ(it.key(), lower->first);
      }
      auto upper = expected.upper_bound(probe);
      auto next = rows.findNext(probe);
      ASSERT_EQ(static_cast<bool>(next), upper != expected.end());
      if (next) {
        ASSERT_EQ(next.key(), upper->first);
      }
    }
    ASSERT_EQ(rows.members(), expected.size());
    std::vector<U32> keys;
    for (const auto& [key, value] : expected) keys.push_back(key);
    ASSERT_EQ(keysOf(rows), keys) << "seed " << seed;

    // A walk that removes what it has passed and adds above where it stands sees every member
    // present throughout once, in order, and what it added.
    std::vector<U32> walked;
    std::vector<U32> wanted;
    for (auto it = rows.begin(); it; ++it) {
      const U32 at = it.key();
      walked.push_back(at);
      rows.deleteMember(at);
      if (at % 7 == 0 && at + 1 < 1000 && !rows.member(at + 1) && !expected.count(at + 1)) {
        rows.memberIs({at + 1, 0});
        expected[at + 1] = 0;
      }
    }
    for (const auto& [key, value] : expected) wanted.push_back(key);
    EXPECT_EQ(walked, wanted) << "seed " << seed;
    EXPECT_EQ(rows.members(), 0u);
  }
}

// Blocks stay well filled under insertions in random, ascending and descending order, and removals
// that leave few members merge their blocks.
TEST(BlockMap, BlocksStayFullUnderInsertionInAnyOrderAndMergeWhenThinned) {
  constexpr U32 count = 20000;
  std::vector<U32> ascending(count);
  for (U32 k = 0; k < count; ++k) ascending[k] = k;
  std::vector<U32> shuffled = ascending;
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(7));
  std::vector<U32> descending(ascending.rbegin(), ascending.rend());
  for (const std::vector<U32>* order : {&shuffled, &ascending, &descending}) {
    Rows rows;
    for (U32 k : *order) rows.memberIs({k, k});
    const double fill = double(rows.members()) / double(rows.blocks() * Rows::blockRows);
    EXPECT_GT(fill, 0.7);
    for (U32 k = 0; k < count; ++k)
      if (k % 10 != 0) rows.deleteMember(k);
    const double thinned = double(rows.members()) / double(rows.blocks() * Rows::blockRows);
    EXPECT_GT(thinned, 0.2) << "blocks of a thinned collection merge";
    EXPECT_EQ(rows.members(), count / 10);
  }
}

}  // namespace
