// A reader learns of every key that changed, by the change log or by reconciling the whole table,
// deletions included, and never spends more than its time slice doing so.
#include <map>
#include <set>

#include "platform/quor/Clock.h"
#include "platform/tarn/ChangeFeed.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

class ChangeDelivery : public TarnTest::TableDir {
 protected:
  void SetUp() override {
    writer_ = writer(5000);
    put(1, 1);
    put(2, 1);
    writer_->commit();
    reader_ = reader();
    feed_.follow(*reader_);
  }
  void put(U64 key, U64 version) { TarnTest::put(*writer_, key, version); }
  void erase(U64 key) { writer_->erase(&key); }
  // Pumps until caught up and gives the keys delivered, with their counts.
  std::map<U64, int> drain(double slice = 1) {
    std::map<U64, int> keys;
    while (!feed_.pump(*reader_, Quor::now() + slice, [&](const std::byte* key) {
      U64 k;
      std::memcpy(&k, key, sizeof k);
      ++keys[k];
      return true;
    })) {
    }
    return keys;
  }

  std::unique_ptr<Tarn::TableWriter> writer_;
  std::unique_ptr<Tarn::TableReader> reader_;
  Tarn::ChangeFeed feed_;
};

TEST_F(ChangeDelivery, EachChangedKeyIsDeliveredOnceAndWhatWasThereBeforeNot) {
  EXPECT_TRUE(drain().empty());
  for (U64 v = 2; v < 50; ++v) put(1, v);
  put(3, 1);
  erase(2);
  EXPECT_EQ(drain(), (std::map<U64, int>{{1, 1}, {2, 1}, {3, 1}}));
  EXPECT_TRUE(feed_.caughtUp(*reader_));
}

// The writer laps the change log many times: the reader reconciles every slot instead, and every key
// that changed meanwhile, the deleted ones included, is delivered.
TEST_F(ChangeDelivery, AReaderLappedByTheWriterStillSeesEveryChangedKey) {
  U32 logCapacity = reader_->geometry().logCapacity;
  std::set<U64> changed{1};
  for (U64 k = 10; k < 10 + 4000; ++k) {
    put(k, 1);
    changed.insert(k);
  }
  drain();
  for (U64 round = 0; round < 4 * logCapacity / 4000 + 1; ++round)
    for (U64 k = 10; k < 10 + 4000; ++k) put(k, round + 2);
  for (U64 k = 10; k < 10 + 4000; k += 2) erase(k);
  erase(1);
  std::set<U64> delivered;
  for (const auto& [k, n] : drain()) delivered.insert(k);
  EXPECT_EQ(delivered, changed);
  EXPECT_EQ(feed_.resyncs(), 1u);
}

TEST_F(ChangeDelivery, ANewWriterIsReconciledSlotBySlotAndAReplacedFileDeliversOldAndNewKeys) {
  writer_ = nullptr;
  writer_ = writer(5000);
  put(7, 1);
  erase(1);
  writer_->commit();
  EXPECT_EQ(drain(), (std::map<U64, int>{{1, 1}, {7, 1}}));
  EXPECT_EQ(feed_.resyncs(), 1u);

  writer_ = nullptr;
  writer_ = writer(5000, true);
  put(8, 1);
  writer_->commit();
  reader_ = reader();
  feed_.refollow(*reader_);
  EXPECT_EQ(drain(), (std::map<U64, int>{{2, 1}, {7, 1}, {8, 1}}));
}

// A clock that moves 1 ms each time it is read.
double fakeTime = 0;
double tickingClock() { return fakeTime += 0.001; }

TEST_F(ChangeDelivery, DeliveryStopsAtTheDeadlineAndResumesWhereItStopped) {
  for (U64 k = 10; k < 3010; ++k) put(k, 1);
  Quor::nowSourceIs(tickingClock);
  std::set<U64> delivered;
  int pumps = 0;
  while (!feed_.pump(*reader_, Quor::now() + 0.003, [&](const std::byte* key) {
    U64 k;
    std::memcpy(&k, key, sizeof k);
    delivered.insert(k);
    return true;
  }))
    ++pumps;
  Quor::nowSourceIs(nullptr);
  EXPECT_GE(pumps, 3000 / 128 / 3 - 1);
  EXPECT_EQ(delivered.size(), 3000u);
}

}  // namespace
