// The forwarding table: FECs of up to 4 vias in one record, larger ones with chunks beside it, read
// whole even while a writer in another process rewrites them.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <map>
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

class FecTable : public TarnTest::TableDir {
 protected:
  void SetUp() override {
    ::setenv("TARN_CORRUPTION_DIR", (dir_ / "corruption").c_str(), 1);
    status_ = Quor::makePtr<Tarn::Fib::ForwardingStatus>(Quor::Name("forwarding/status"));
  }
  void TearDown() override {
    status_ = nullptr;
    ::unsetenv("TARN_CORRUPTION_DIR");
  }
  void mount() { status_->mount(dir_.path(), Tarn::TableType::sharedMemory); }
  Fec read(U64 id) { return status_->fec().lookup(FecId(id)).value(); }

  Quor::Ptr<Tarn::Fib::ForwardingStatus> status_;
};

TEST_F(FecTable, FecsOfUpToFourViasTakeNoChunkAndLargerOnesReadBackWhole) {
  Tarn::Fib::FecWriter writer(path("fec"));
  const std::map<U64, Fec> written{{6, fecOfWrite(6, 3, 4)}, {7, fecOfWrite(7, 1, 128)}, {8, fecOfWrite(8, 2, 5)}};
  writer.put(written.at(6));
  EXPECT_EQ(writer.chunks(), 0u);
  writer.put(written.at(7));
  writer.put(written.at(8));
  writer.commit();
  EXPECT_EQ(writer.chunks(), 9u);
  mount();
  EXPECT_EQ(read(9), Fec());
  std::map<U64, Fec> walked;
  Tarn::TarnMapIterator it;
  for (auto entry = status_->fec().first(it); entry; entry = status_->fec().next(entry.key(), it))
    walked[entry.key().value()] = entry.value();
  EXPECT_EQ(walked, written);
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
