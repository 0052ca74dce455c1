// A broken writer's damage is found by the reader, named, and never read as a record; a writer does
// not take a damaged file over but builds a new one. (A writer killed in the middle of a write, which
// must leave the previous record, is the cross-process test's.)
#include <unistd.h>

#include <filesystem>
#include <functional>

#include "tests/unit/tarn/TableFixture.h"

namespace {

using TarnTest::CheckedRecord;
using TarnTest::put;
using TarnTest::RawTable;

class Corruption : public TarnTest::TableDir {
 protected:
  void SetUp() override { build(); }
  // A table of keys 1 to 10, made anew.
  void build() {
    reader_.reset();
    raw_.reset();
    std::filesystem::remove(path());
    auto w = writer(100);
    for (U64 k = 1; k <= 10; ++k) put(*w, k, 1);
    w.reset();
    reader_ = reader();
    raw_ = std::make_unique<RawTable>(path());
  }
  std::unique_ptr<Tarn::TableReader> reader_;
  std::unique_ptr<RawTable> raw_;
};

struct Damage {
  const char* what;
  std::function<void(RawTable&)> damage;
  const char* words;  // in the message of the lookup of key 4; null: the file is refused at open
};

const Damage damages[] = {
    {"a flipped bit of a record", [](RawTable& t) { t.recordOf(4)[20] ^= std::byte{0x40}; }, "checksum"},
    {"a stray state word", [](RawTable& t) { t.memory().current(t.slotOf(4)).state = 0x12345678; },
     "unknown state 0x12345678"},
    {"a slot that never settles",
     [](RawTable& t) {
       Tarn::SlotControl& control = t.memory().control(t.slotOf(4));
       control.begun.store(control.published.load() + 7);
     },
     "kept changing"},
    {"a header changed after mapping", [](RawTable& t) { t.header().capacity += 1; }, "header changed"},
    {"no magic", [](RawTable& t) { t.header().magic[0] = 'X'; }, nullptr},
    {"a header that lost its seal", [](RawTable& t) { t.header().maxMembers = 7; }, nullptr},
};

TEST_F(Corruption, EachDamageIsFoundNamedAndNeverRead) {
  for (const Damage& d : damages) {
    SCOPED_TRACE(d.what);
    build();
    d.damage(*raw_);
    if (!d.words) {
      EXPECT_THROW(reader(), Tarn::CorruptionDetectedException);
      continue;
    }
    CheckedRecord out;
    U64 key = 4;
    const std::string failure = TestSupport::failureOf([&] { reader_->lookup(&key, &out); });
    EXPECT_NE(failure.find(d.words), std::string::npos) << failure;
    EXPECT_NE(failure.find(path()), std::string::npos) << failure;
  }
}

TEST_F(Corruption, AWriterBuildsANewFileInPlaceOfADamagedOne) {
  raw_->recordOf(4)[9] ^= std::byte{1};
  EXPECT_EQ(writer(100)->members(), 0u) << "a damaged record";
  EXPECT_TRUE(reader_->unlinked());
  RawTable(path()).header().magic[0] = 'X';
  EXPECT_EQ(writer(100)->members(), 0u) << "a damaged header";
  EXPECT_NO_THROW(reader());
}

}  // namespace
