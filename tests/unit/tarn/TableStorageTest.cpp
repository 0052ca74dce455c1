// Records by key in a table file: what a writer puts, a reader finds, whatever churn came before.
#include <filesystem>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <system_error>

#include "platform/quor/Exception.h"
#include "platform/tarn/TableReader.h"
#include "platform/tarn/TableWriter.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using TarnTest::CheckedRecord;

class TableStorage : public TarnTest::TableDir {
 protected:
  std::unique_ptr<Tarn::TableWriter> writer(U32 maxMembers = 1000, bool fresh = false) {
    return std::make_unique<Tarn::TableWriter>(path(), TarnTest::checkedType, TarnTest::checkedGeometry(maxMembers),
                                               0, fresh);
  }
  std::unique_ptr<Tarn::TableReader> reader() {
    return Tarn::TableReader::open(path(), TarnTest::checkedType, sizeof(U64), sizeof(CheckedRecord));
  }
  static void put(Tarn::TableWriter& w, U64 key, U64 version) {
    CheckedRecord r = CheckedRecord::make(key, version);
    w.put(&r);
  }
  static std::optional<U64> versionOf(const Tarn::TableReader& r, U64 key) {
    CheckedRecord out;
    if (!r.lookup(&key, &out)) return std::nullopt;
    EXPECT_TRUE(out.whole());
    return out.version;
  }
};

TEST_F(TableStorage, AReaderFindsWhatTheWriterPutAndNotWhatItErased) {
  auto w = writer();
  put(*w, 1, 10);
  put(*w, 2, 20);
  put(*w, 1, 11);
  U64 two = 2;
  EXPECT_TRUE(w->erase(&two));
  w->commit();
  auto r = reader();
  ASSERT_TRUE(r);
  EXPECT_EQ(versionOf(*r, 1), 11u);
  EXPECT_EQ(versionOf(*r, 2), std::nullopt);
  EXPECT_EQ(versionOf(*r, 3), std::nullopt);
  EXPECT_EQ(r->members(), 1u);
}

TEST_F(TableStorage, ErasingAnAbsentKeyChangesNothing) {
  auto w = writer();
  put(*w, 1, 10);
  U64 absent = 7;
  EXPECT_FALSE(w->erase(&absent));
  EXPECT_EQ(w->members(), 1u);
}

TEST_F(TableStorage, AMissingFileIsNoTable) { EXPECT_EQ(reader(), nullptr); }

TEST_F(TableStorage, AWalkVisitsEveryRecordOnce) {
  auto w = writer();
  for (U64 k = 1; k <= 300; ++k) put(*w, k, k);
  for (U64 k = 1; k <= 300; k += 3) w->erase(&k);
  auto r = reader();
  std::multiset<U64> seen;
  CheckedRecord out;
  for (U32 slot = r->nextOccupied(0, &out); slot < r->capacity(); slot = r->nextOccupied(slot + 1, &out))
    seen.insert(out.key);
  EXPECT_EQ(seen.size(), 200u);
  for (U64 k = 1; k <= 300; ++k) EXPECT_EQ(seen.count(k), k % 3 == 1 ? 0u : 1u) << k;
}

// Distinct keys come and go far more often than the table has slots: tombstones must not pile up
// until lookups fail or inserts find no room.
TEST_F(TableStorage, ChurnOfDistinctKeysKeepsEveryRecordFindable) {
  auto w = writer(500);
  auto r = reader();
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
      model.erase(victim);
    }
  }
  EXPECT_EQ(r->members(), model.size());
  for (const auto& [key, version] : model) ASSERT_EQ(versionOf(*r, key), version) << key;
  for (U64 key = 100000; key < 100100; ++key) EXPECT_EQ(versionOf(*r, key), std::nullopt);
}

TEST_F(TableStorage, AFullTableRefusesANewKeyButTakesUpdates) {
  auto w = writer(20);
  for (U64 k = 0; k < 20; ++k) put(*w, k, 1);
  CheckedRecord extra = CheckedRecord::make(99, 1);
  EXPECT_THROW(w->put(&extra), Quor::RangeException);
  put(*w, 5, 2);
  EXPECT_EQ(versionOf(*reader(), 5), 2u);
}

TEST_F(TableStorage, ANewWriterTakesTheFileOverWithItsRecordsAndANewGeneration) {
  writer().reset();
  U64 generation;
  {
    auto w = writer();
    put(*w, 1, 10);
    generation = reader()->generation();
  }
  auto r = reader();
  auto w = writer();
  EXPECT_EQ(r->generation(), generation + 1);
  EXPECT_EQ(versionOf(*r, 1), 10u);
  EXPECT_EQ(w->members(), 1u);
}

TEST_F(TableStorage, AFreshWriterReplacesTheFileAndOldReadersKeepTheirView) {
  {
    auto w = writer();
    put(*w, 1, 10);
  }
  auto old = reader();
  auto w = writer(1000, true);
  EXPECT_TRUE(old->unlinked());
  EXPECT_EQ(versionOf(*old, 1), 10u);
  EXPECT_EQ(versionOf(*reader(), 1), std::nullopt);
}

// Readers move to the rebuilt file as soon as it is in place: it must hold what the old one held.
TEST_F(TableStorage, AWriterOfAnotherGeometryRebuildsTheFileWithItsRecords) {
  {
    auto w = writer(1000);
    for (U64 k = 1; k <= 900; ++k) put(*w, k, k + 10);
    for (U64 k = 3; k <= 900; k += 3) w->erase(&k);
  }
  auto old = reader();
  auto w = writer(2000);
  EXPECT_TRUE(old->unlinked());
  EXPECT_EQ(w->members(), 600u);
  auto r = reader();
  EXPECT_EQ(r->geometry().maxMembers, 2000u);
  EXPECT_EQ(r->members(), 600u);
  EXPECT_FALSE(r->batchOpen());
  for (U64 k = 1; k <= 900; ++k) ASSERT_EQ(versionOf(*r, k), k % 3 ? std::optional<U64>(k + 10) : std::nullopt) << k;
  for (U64 k = 901; k <= 1900; ++k) put(*w, k, 1);
  EXPECT_EQ(w->members(), 1600u);
}

TEST_F(TableStorage, ARebuildTooSmallForTheRecordsIsRefusedAndTheFileKept) {
  {
    auto w = writer(100);
    for (U64 k = 1; k <= 30; ++k) put(*w, k, 1);
  }
  auto old = reader();
  EXPECT_THROW(writer(20), Quor::RangeException);
  EXPECT_FALSE(old->unlinked());
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_), {}), 1) << "the half-built file is left behind";
  auto w = writer(30);
  EXPECT_EQ(w->members(), 30u);
}

TEST_F(TableStorage, OnlyOneWriterAtATime) {
  auto first = writer();
  EXPECT_THROW(writer(), std::system_error);
  first.reset();
  EXPECT_NO_THROW(writer());
}

TEST_F(TableStorage, AReaderOfAnotherRecordTypeIsRefused) {
  writer().reset();
  EXPECT_THROW(Tarn::TableReader::open(path(), "Other::Record", sizeof(U64), sizeof(CheckedRecord)),
               Tarn::CorruptionDetectedException);
  EXPECT_THROW(Tarn::TableReader::open(path(), TarnTest::checkedType, sizeof(U64), 8), Tarn::CorruptionDetectedException);
}

}  // namespace
