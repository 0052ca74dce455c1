// Records by key in a table file: what a writer puts, a reader finds, whatever churn came before, and
// what a second writer makes of the file. (One of another size is the cross-process test's.)
#include <filesystem>
#include <iterator>
#include <map>
#include <random>
#include <system_error>

#include "platform/quor/Exception.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using TarnTest::CheckedRecord;
using TarnTest::put;

class TableStorage : public TarnTest::TableDir {
 protected:
  static std::optional<U64> versionOf(const Tarn::TableReader& r, U64 key) {
    CheckedRecord out;
    if (!r.lookup(&key, &out)) return std::nullopt;
    EXPECT_TRUE(out.whole());
    return out.version;
  }
};

// Distinct keys come and go far more often than the table has slots: tombstones must not pile up
// until lookups fail or inserts find no room, and lookups, walks and counts agree with a model.
TEST_F(TableStorage, ChurnOfDistinctKeysKeepsLookupsAndWalksTrue) {
  auto w = writer(500);
  auto r = reader();
  ASSERT_TRUE(r);
  std::map<U64, U64> model;
  std::mt19937_64 random(42);
  for (U64 round = 0; round < 20000; ++round) {
    U64 key = random() % 100000;
    if (model.size() < 450 && random() % 3) {
      put(*w, key, round);
      model[key] = round;
    } else if (!model.empty()) {
      auto victim = model.lower_bound(key);
      if (victim == model.end()) victim = model.begin();
      U64 k = victim->first;
      ASSERT_TRUE(w->erase(&k));
      ASSERT_FALSE(w->erase(&k)) << "an absent key is no erase";
      model.erase(victim);
    }
  }
  w->commit();
  EXPECT_EQ(r->members(), model.size());
  for (const auto& [key, version] : model) ASSERT_EQ(versionOf(*r, key), version) << key;
  for (U64 key = 100000; key < 100100; ++key) EXPECT_EQ(versionOf(*r, key), std::nullopt);
  EXPECT_EQ(TarnTest::differences(TarnTest::contentOf(*r), model), "");
}

TEST_F(TableStorage, ANewWriterTakesTheFileOverWithItsRecordsAndANewGeneration) {
  U64 generation;
  {
    auto w = writer();
    put(*w, 1, 10);
    generation = reader()->generation();
    EXPECT_THROW(writer(), std::system_error) << "one writer at a time";
  }
  auto r = reader();
  auto w = writer();
  EXPECT_EQ(r->generation(), generation + 1);
  EXPECT_EQ(versionOf(*r, 1), 10u);
  EXPECT_EQ(w->members(), 1u);
}

}  // namespace
