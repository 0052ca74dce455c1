// A broken writer's damage is found by the reader, named, and never read as a record.
#include <fcntl.h>
#include <unistd.h>

#include "platform/tarn/TableReader.h"
#include "platform/tarn/TableWriter.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using TarnTest::CheckedRecord;

class Corruption : public TarnTest::TableDir {
 protected:
  void SetUp() override {
    TableDir::SetUp();
    Tarn::TableWriter w(path(), TarnTest::checkedType, TarnTest::checkedGeometry(100));
    for (U64 k = 1; k <= 10; ++k) {
      CheckedRecord r = CheckedRecord::make(k, 1);
      w.put(&r);
    }
    reader_ = Tarn::TableReader::open(path(), TarnTest::checkedType, sizeof(U64), sizeof(CheckedRecord));
    raw_ = std::make_unique<TarnTest::RawTable>(path());
  }
  // Expects a lookup of `key` to raise corruption with `words` in the message.
  void expectCorruption(U64 key, const std::string& words) {
    CheckedRecord out;
    try {
      reader_->lookup(&key, &out);
      ADD_FAILURE() << "no corruption detected";
    } catch (const Tarn::CorruptionDetectedException& e) {
      EXPECT_NE(e.text().find(words), std::string::npos) << e.text();
      EXPECT_NE(e.text().find(path()), std::string::npos) << e.text();
    }
  }
  std::unique_ptr<Tarn::TableReader> reader_;
  std::unique_ptr<TarnTest::RawTable> raw_;
};

TEST_F(Corruption, ADamagedRecordDoesNotMatchItsChecksum) {
  Tarn::CellHeader& cell = raw_->memory().current(raw_->slotOf(4));
  Tarn::TableMemory::record(cell)[20] ^= std::byte{0x40};
  expectCorruption(4, "checksum");
}

TEST_F(Corruption, AStrayStateWordIsNoState) {
  raw_->memory().current(raw_->slotOf(4)).state = 0x12345678;
  expectCorruption(4, "unknown state 0x12345678");
}

TEST_F(Corruption, ASlotThatNeverSettlesIsGivenUpAfterBoundedRetries) {
  Tarn::SlotControl& control = raw_->memory().control(raw_->slotOf(4));
  control.begun.store(control.published.load() + 7);
  expectCorruption(4, "kept changing");
  EXPECT_EQ(reader_->counters().retries, U64(Tarn::TableReader::maxReadAttempts));
}

TEST_F(Corruption, AHeaderChangedAfterMappingIsFoundOnTheNextRead) {
  raw_->header().capacity += 1;
  expectCorruption(1, "header changed");
}

TEST_F(Corruption, AFileWithoutTheMagicIsNoTable) {
  raw_->header().magic[0] = 'X';
  EXPECT_THROW(Tarn::TableReader::open(path(), TarnTest::checkedType, sizeof(U64), sizeof(CheckedRecord)),
               Tarn::CorruptionDetectedException);
}

TEST_F(Corruption, AHeaderThatLostItsSealIsRefusedAtOpen) {
  raw_->header().maxMembers = 7;
  EXPECT_THROW(Tarn::TableReader::open(path(), TarnTest::checkedType, sizeof(U64), sizeof(CheckedRecord)),
               Tarn::CorruptionDetectedException);
}

TEST_F(Corruption, ATruncatedFileIsRefusedAtOpen) {
  ASSERT_EQ(::truncate(path().c_str(), 4096), 0);
  EXPECT_THROW(Tarn::TableReader::open(path(), TarnTest::checkedType, sizeof(U64), sizeof(CheckedRecord)),
               Tarn::CorruptionDetectedException);
}

// A writer killed between announcing and publishing a write leaves the previous copy current.
TEST_F(Corruption, AWriteThatNeverFinishedLeavesThePreviousRecord) {
  U32 slot = raw_->slotOf(4);
  Tarn::SlotControl& control = raw_->memory().control(slot);
  U32 next = control.published.load() + 1;
  control.begun.store(next);
  std::memset(Tarn::TableMemory::record(raw_->memory().cell(slot, next & 1)), 0xee, sizeof(CheckedRecord));
  CheckedRecord out;
  U64 key = 4;
  ASSERT_TRUE(reader_->lookup(&key, &out));
  EXPECT_TRUE(out.whole());
  EXPECT_EQ(out.version, 1u);
}

TEST_F(Corruption, AWriterRebuildsAFileWhoseHeaderIsDamaged) {
  raw_->header().magic[0] = 'X';
  Tarn::TableWriter w(path(), TarnTest::checkedType, TarnTest::checkedGeometry(100));
  EXPECT_EQ(w.members(), 0u);
  EXPECT_NO_THROW(Tarn::TableReader::open(path(), TarnTest::checkedType, sizeof(U64), sizeof(CheckedRecord)));
}

}  // namespace

namespace {

TEST_F(Corruption, AWriterDoesNotTakeOverAFileWithADamagedRecord) {
  Tarn::TableMemory::record(raw_->memory().current(raw_->slotOf(4)))[9] ^= std::byte{1};
  Tarn::TableWriter w(path(), TarnTest::checkedType, TarnTest::checkedGeometry(100));
  EXPECT_EQ(w.members(), 0u);
  EXPECT_TRUE(reader_->unlinked());
}

}  // namespace
