// The forwarding table: FECs of up to 4 vias in one record, larger ones with chunks beside it, read
// whole even while a writer in another process rewrites them, and chunk room that deletions give back.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <set>

#include "platform/tarn/FecWriter.h"
#include "platform/tarn/ForwardingStatus.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using Tarn::Fib::Fec;
using Tarn::Fib::FecId;

// A FEC whose every via tells the write it belongs to: hop 10.<write>.<via>, interface "Ethernet<write>".
Fec fecOfWrite(U64 id, U32 write, U32 vias) {
  Fec fec;
  fec.fecId = FecId(id);
  for (U32 i = 0; i < vias; ++i)
    fec.viaAdd({Pelt::IpAddr(10, U8(write >> 8), U8(write), U8(i)), Pelt::IntfId("Ethernet" + std::to_string(write))});
  return fec;
}

// Which write a FEC read back came from, or -1 when its vias disagree.
long writeOf(const Fec& fec) {
  if (fec.viaCount == 0) return -1;
  U32 hop = fec.vias[0].hop.hostOrder();
  long write = (hop >> 8) & 0xffff;
  for (U32 i = 0; i < fec.viaCount; ++i)
    if (fec.vias[i].hop.hostOrder() >> 8 != hop >> 8 || (fec.vias[i].hop.hostOrder() & 0xff) != i ||
        fec.vias[i].intfId != Pelt::IntfId("Ethernet" + std::to_string(write)))
      return -1;
  return write;
}

class Heard : public Tarn::Fib::ForwardingStatus::NotifieeConst {
 public:
  void onFec(const FecId& id) override { fecs.insert(id.value()); }
  std::set<U64> fecs;
};

class FecTable : public TarnTest::TableDir {
 protected:
  void SetUp() override {
    TableDir::SetUp();
    ::setenv("TARN_CORRUPTION_DIR", (dir_ / "corruption").c_str(), 1);
    status_ = Quor::makePtr<Tarn::Fib::ForwardingStatus>(Quor::Name("forwarding/status"));
  }
  void TearDown() override {
    status_ = nullptr;
    ::unsetenv("TARN_CORRUPTION_DIR");
    TableDir::TearDown();
  }
  void mount() { status_->mount(dir_.string(), Tarn::TableType::sharedMemory); }
  Fec read(U64 id) { return status_->fec().lookup(FecId(id)).value(); }

  Quor::Ptr<Tarn::Fib::ForwardingStatus> status_;
};

TEST_F(FecTable, AFecOfFourViasIsOneRecordWithoutChunks) {
  Tarn::Fib::FecWriter writer(path("fec"));
  writer.put(fecOfWrite(7, 1, 4));
  writer.commit();
  EXPECT_EQ(writer.chunks(), 0u);
  mount();
  EXPECT_EQ(read(7), fecOfWrite(7, 1, 4));
  EXPECT_EQ(read(8), Fec());
  EXPECT_FALSE(status_->fec().lookup(FecId(8)).found());
}

TEST_F(FecTable, AFecOf128ViasTakesEightChunksAndReadsBackWhole) {
  Tarn::Fib::FecWriter writer(path("fec"));
  writer.put(fecOfWrite(7, 1, 128));
  writer.put(fecOfWrite(8, 2, 5));
  writer.commit();
  EXPECT_EQ(writer.chunks(), 9u);
  mount();
  Fec fec = read(7);
  EXPECT_EQ(fec, fecOfWrite(7, 1, 128));
  EXPECT_EQ(fec.via(Tarn::Fib::ViaIndex(127)).hop, Pelt::IpAddr(10, 0, 1, 127));
  EXPECT_EQ(read(8), fecOfWrite(8, 2, 5));
  std::set<U64> walked;
  Tarn::TarnMapIterator it;
  for (auto entry = status_->fec().first(it); entry; entry = status_->fec().next(entry.key(), it)) {
    EXPECT_EQ(writeOf(entry.value()), long(entry.key().value()) - 6);
    walked.insert(entry.key().value());
  }
  EXPECT_EQ(walked, (std::set<U64>{7, 8}));
}

TEST_F(FecTable, MoreThan128ViasAreRefusedAndChangeNothing) {
  Tarn::Fib::FecWriter writer(path("fec"));
  Fec fec = fecOfWrite(7, 1, 128);
  try {
    fec.viaAdd({});
    FAIL() << "a 129th via was taken";
  } catch (const Quor::RangeException& e) {
    EXPECT_EQ(e.text(), "ViaIndex::value < ViaIndex::min or > ViaIndex::max not allowed");
  }
  fec.viaCount = 129;
  EXPECT_THROW(writer.put(fec), Quor::RangeException);
  Fec longName = fecOfWrite(9, 1, 6);
  longName.vias[5].intfId = Pelt::IntfId("Ethernet1/1/1.4094-with-a-long-tail");
  EXPECT_THROW(writer.put(longName), Quor::RangeException);
  EXPECT_EQ(writer.members(), 0u);
  EXPECT_EQ(writer.chunks(), 0u);
  EXPECT_THROW(Tarn::Fib::ViaIndex(128), Quor::RangeException);
}

TEST_F(FecTable, ChunksOfReplacedAndDeletedFecsAreReused) {
  // Room for one FEC of 128 vias and the chunks of its next write, nothing more.
  Tarn::Fib::FecWriter writer(path("fec"), 16, 16);
  for (U32 write = 1; write <= 200; ++write) {
    writer.put(fecOfWrite(7, write, write % 3 ? 128 : 20));
    writer.commit();
    EXPECT_LE(writer.chunks(), 8u);
    if (write % 10 == 0) writer.erase(FecId(7));
  }
  EXPECT_EQ(writer.chunks(), 0u);
  writer.put(fecOfWrite(7, 201, 128));
  writer.put(fecOfWrite(8, 1, 128));
  EXPECT_THROW(writer.put(fecOfWrite(7, 202, 128)), Quor::RangeException);  // no room for a rewrite
  EXPECT_EQ(writer.chunks(), 16u);
  writer.commit();
  mount();
  EXPECT_EQ(writeOf(read(7)), 201);
  EXPECT_EQ(writeOf(read(8)), 1);
}

TEST_F(FecTable, ChunksThatNoFecNamesAreSweptByTheNextWriter) {
  {
    Tarn::Fib::FecWriter writer(path("fec"));
    writer.put(fecOfWrite(7, 1, 40));
  }
  {
    // A writer killed between a FEC's chunks and its record leaves chunks behind.
    Tarn::TableWriter chunks(path("fec.chunks"), Tarn::Fib::FecCodec::chunkType, Tarn::Fib::fecChunkGeometry(Tarn::Fib::FecWriter::defaultMaxChunks));
    Tarn::Fib::FecChunkRecord orphan{};
    orphan.fecId = 9;
    orphan.stamp = 1;
    chunks.put(&orphan);
    EXPECT_EQ(chunks.members(), 4u);
  }
  Tarn::Fib::FecWriter writer(path("fec"));
  EXPECT_EQ(writer.chunks(), 3u);
  mount();
  EXPECT_EQ(writeOf(read(7)), 1);
}

TEST_F(FecTable, AFecWhoseChunkIsMissingIsCorruptAndTheViewDetaches) {
  {
    Tarn::Fib::FecWriter writer(path("fec"));
    writer.put(fecOfWrite(7, 1, 40));
  }
  {
    Tarn::TableWriter chunks(path("fec.chunks"), Tarn::Fib::FecCodec::chunkType, Tarn::Fib::fecChunkGeometry(Tarn::Fib::FecWriter::defaultMaxChunks));
    std::vector<Tarn::Fib::FecChunkRecord> all;
    chunks.forEachRecord([&](const void* r) { all.push_back(*static_cast<const Tarn::Fib::FecChunkRecord*>(r)); });
    ASSERT_EQ(all.size(), 3u);
    chunks.erase(&all[1]);
  }
  mount();
  const auto& view = status_->fec();
  try {
    view.lookup(FecId(7));
    FAIL() << "a FEC without its chunk was read";
  } catch (const Tarn::CorruptionDetectedException& e) {
    EXPECT_NE(e.text().find("other parts are missing"), std::string::npos) << e.text();
    view.corruptionDetected(e.text());
  }
  EXPECT_EQ(view.mountStatus(), Tarn::MountStatus::awaitingFile);
  EXPECT_EQ(read(7), Fec());
}

TEST_F(FecTable, ChangedFecsReachTheReactorsByIdThroughTheEventLoop) {
  Tarn::Fib::FecWriter writer(path("fec"));
  writer.put(fecOfWrite(7, 1, 2));
  writer.put(fecOfWrite(8, 1, 60));
  writer.commit();
  mount();
  auto heard = Quor::makePtr<Heard>();
  heard->notifierIs(status_);
  for (U64 id : {7, 8}) ASSERT_TRUE(status_->fec().lookup(FecId(id)).found());  // its first pass
  writer.put(fecOfWrite(8, 2, 60));  // chunks only change, and the record with them
  writer.erase(FecId(7));
  writer.commit();
  EXPECT_TRUE(TarnTest::turnUntil([&] { return heard->fecs == std::set<U64>{7, 8}; }));
  EXPECT_EQ(writeOf(read(8)), 2);
  EXPECT_FALSE(status_->fec().lookup(FecId(7)).found());
}

TEST_F(FecTable, ReadersNeverCombineTwoWritesOfAFecWhileAnotherProcessRewritesIt) {
  { Tarn::Fib::FecWriter create(path("fec"), 16, 64); }
  pid_t writer = ::fork();
  if (writer == 0) {
    Tarn::Fib::FecWriter w(path("fec"), 16, 64, 5);
    auto stop = std::chrono::steady_clock::now() + std::chrono::milliseconds(800);
    // Sizes sweep across 0, 1..4 (inline only) and 5..128 (chunks), so that chunk counts change too.
    for (U32 write = 1; std::chrono::steady_clock::now() < stop; ++write) {
      w.put(fecOfWrite(1, write & 0xffff, write % 129));
      w.put(fecOfWrite(2, write & 0xffff, 128 - write % 129));
      if (write % 64 == 0) w.erase(FecId(2));
      w.commit();
    }
    ::_exit(0);
  }
  mount();
  U64 reads = 0, mixed = 0;
  std::set<long> writes;
  int status = 0;
  while (::waitpid(writer, &status, WNOHANG) == 0) {
    for (U64 id : {1, 2}) {
      auto found = status_->fec().lookup(FecId(id));
      if (!found || found.value().viaCount == 0) continue;
      long write = writeOf(found.value());
      ++reads;
      mixed += write < 0;
      writes.insert(write);
    }
  }
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(mixed, 0u) << "of " << reads << " reads";
  EXPECT_GT(writes.size(), 10u) << "the writer hardly changed anything while the reader read";
}

}  // namespace
