// The walk guarantees of the ordered and hashed collections: what the request handlers and the
// machines rely on when members come and go under an iterator. (The route backlog's resumption at a
// remembered prefix is its own, PrefixSet's, shown by the route machine's pass tests.)
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "platform/quor/HashMap.h"
#include "platform/quor/RbTreeMap.h"

namespace {

struct Row : Quor::PtrInterface, Quor::RbTreeLink {
  explicit Row(int k) : key(k) {}
  const int& fwkKey() const { return key; }
  int key;
};

struct Mark : Quor::PtrInterface, Quor::HashLink {
  explicit Mark(int k) : key(k) {}
  const int& fwkKey() const { return key; }
  int key;
};

template <class Map, class M>
void fill(Map& map, std::initializer_list<int> keys) {
  for (int k : keys) map.memberIs(Quor::makePtr<M>(k));
}

template <class It>
std::vector<int> walkFrom(It it) {
  std::vector<int> seen;
  for (; it; ++it) seen.push_back(it.key());
  return seen;
}

using Tree = Quor::RbTreeMap<Row, int>;
using Hash = Quor::HashMap<Mark, int>;

// An insertion between the current member and its successor is visited next, one behind the walk is
// not; the removed current member stays readable and the walk goes on above it; with every member
// gone the walk ends after its current step.
TEST(OrderedWalk, AWalkGoesOnAcrossInsertionsAndRemovals) {
  Tree t;
  fill<Tree, Row>(t, {10, 30});
  auto it = t.begin();
  fill<Tree, Row>(t, {20, 5});
  ++it;
  EXPECT_EQ(it.key(), 20);
  t.deleteMember(20);
  EXPECT_EQ(it->key, 20);
  EXPECT_EQ(walkFrom(it), (std::vector<int>{20, 30}));
  auto first = t.begin();
  for (int k : {5, 10, 30}) t.deleteMember(k);
  EXPECT_EQ(first.key(), 5);
  ++first;
  EXPECT_FALSE(first);
}

// A walk that deletes what it passed and inserts ahead visits every member once; a drained map has no
// first member, however many buckets it kept, and a refill walks from its new members.
TEST(HashedWalk, VisitsEveryMemberOnceWhileDeletingBehindAndInsertingAheadAndDrainsWhole) {
  Hash h;
  for (int k = 0; k < 1000; ++k) h.memberIs(Quor::makePtr<Mark>(k));
  std::multiset<int> seen;
  for (auto it = h.begin(); it; ++it) {
    seen.insert(it.key());
    h.deleteMember(it.key());  // the backlog deletes what it processed
    if (it.key() < 1000 && it.key() % 100 == 0) h.memberIs(Quor::makePtr<Mark>(it.key() + 100000));
  }
  for (int k = 0; k < 1000; ++k) EXPECT_EQ(seen.count(k), 1u) << k;
  EXPECT_EQ(seen.size() + h.members(), 1000u + 10u) << "new members are seen at most once, or stay";
  for (auto it = h.begin(); it; ++it) h.deleteMember(it.key());
  EXPECT_EQ(h.members(), 0u);
  EXPECT_FALSE(h.begin());
  for (int k = 0; k < 10; ++k) h.memberIs(Quor::makePtr<Mark>(k));
  EXPECT_EQ(walkFrom(h.begin()).size(), 10u);
}

}  // namespace
