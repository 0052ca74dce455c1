// A writer in another process and a reader in the event loop: records are read whole while they
// change, the reader ends up knowing every change, also while the table grows, and a writer killed
// mid-batch harms nothing. (A table that appears late and a damaged record reach the reader through
// the views of ViewsTest and the agent of FaultInjectionTest.)
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>
#include <utility>

#include "platform/quor/Clock.h"
#include "platform/tarn/TableFollower.h"
#include "platform/tarn/TableWriter.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using TarnTest::CheckedRecord;

// Keeps a copy of the table from the keys it is told about, reading each one as a reactor would.
class Mirror : public Tarn::TableFollower::Client {
 public:
  void keyChanged(const std::byte* key) override {
    U64 k;
    std::memcpy(&k, key, sizeof k);
    CheckedRecord out;
    if (follower->reader()->lookup(&k, &out)) {
      if (!out.whole()) ++torn;
      model[k] = out.version;
    } else {
      model.erase(k);
    }
    ++told;
  }
  void attachedIs(bool) override {}
  void corruptionDetected(const std::string& message) override { ADD_FAILURE() << message; }

  Quor::Ptr<Tarn::TableFollower> follower;
  std::map<U64, U64> model;
  U64 told = 0, torn = 0;
};

class CrossProcess : public TarnTest::TableDir {
 protected:
  void SetUp() override {
    mirror_.follower = Quor::makePtr<Tarn::TableFollower>(path(), TarnTest::checkedType, sizeof(U64),
                                                           sizeof(CheckedRecord));
  }
  void TearDown() override { mirror_.follower->detach(false); }
  static constexpr U32 tableSize = 120000;
  Tarn::TableGeometry geometry() const { return TarnTest::checkedGeometry(tableSize); }

  // Runs `write` in a child process that exits when it returns.
  pid_t spawnWriter(const std::function<void(Tarn::TableWriter&)>& write) {
    pid_t pid = ::fork();
    if (pid == 0) {
      try {
        Tarn::TableWriter w(path(), TarnTest::checkedType, geometry(), 5);
        write(w);
      } catch (...) {
        ::_exit(2);
      }
      ::_exit(0);
    }
    return pid;
  }

  // Turns the event loop until the reader has caught up with a writer that has finished.
  void settle() {
    ASSERT_TRUE(TestSupport::turnUntil(
        [&] { return mirror_.follower->reader() && mirror_.follower->feed().caughtUp(*mirror_.follower->reader()); }, 20))
        << "the reader never caught up";
  }

  Mirror mirror_;
};

void putRange(Tarn::TableWriter& w, U64 from, U64 to, U64 version) {
  for (U64 k = from; k < to; ++k) {
    CheckedRecord r = CheckedRecord::make(k, version);
    w.put(&r);
    if (k % 1000 == 999) w.commit();
  }
  w.commit();
}

TEST_F(CrossProcess, EveryChangeOfAWriterInAnotherProcessReachesTheReaderWhole) {
  { Tarn::TableWriter(path(), TarnTest::checkedType, geometry()); }  // an empty table to start from
  ASSERT_TRUE(mirror_.follower->attach(&mirror_));
  pid_t child = spawnWriter([](Tarn::TableWriter& w) {
    std::mt19937_64 random(7);
    U64 changes = 0;
    for (U64 k = 0; k < 100000; ++k, ++changes) {
      CheckedRecord r = CheckedRecord::make(k, 1);
      w.put(&r);
      if (k % 1000 == 999) w.commit();
    }
    for (U64 round = 2; round < 6; ++round) {
      for (U64 i = 0; i < 25000; ++i, ++changes) {
        U64 k = random() % 110000;
        if (random() % 5 == 0) {
          w.erase(&k);
        } else {
          CheckedRecord r = CheckedRecord::make(k, round);
          w.put(&r);
        }
        if (i % 500 == 499) w.commit();
      }
    }
    w.commit();
  });
  // Meanwhile the agent serves: lookups and walks, every record whole.
  std::mt19937_64 random(11);
  int status = 0;
  U64 reads = 0;
  while (::waitpid(child, &status, WNOHANG) == 0) {
    Quor::activityManager()->runOnce(0.001);
    const Tarn::TableReader* reader = mirror_.follower->reader();
    CheckedRecord out;
    for (int i = 0; i < 200; ++i, ++reads) {
      U64 k = random() % 110000;
      if (reader->lookup(&k, &out)) {
        ASSERT_TRUE(out.whole() && out.key == k);
      }
    }
    U32 slot = reader->nextOccupied(static_cast<U32>(random() % reader->capacity()), &out);
    for (int i = 0; i < 200 && slot < reader->capacity(); ++i, ++reads) {
      ASSERT_TRUE(out.whole());
      slot = reader->nextOccupied(slot + 1, &out);
    }
  }
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  settle();
  EXPECT_EQ(mirror_.torn, 0u);
  EXPECT_EQ(TarnTest::differences(mirror_.model, TarnTest::contentOf(*mirror_.follower->reader())), "");
  EXPECT_GT(mirror_.model.size(), 80000u);
  RecordProperty("reads", std::to_string(reads));
  RecordProperty("keysTold", std::to_string(mirror_.told));
  RecordProperty("resyncs", std::to_string(mirror_.follower->feed().resyncs()));
}

// A save that grows a table rebuilds the file at the larger size, then adds to it. The writer stops
// between the two steps: the reader has moved to the new file by then and must still find every key.
TEST_F(CrossProcess, AReaderWatchingATableThatGrowsNeverSeesAKeyVanish) {
  constexpr U64 before = 800, after = 50000;
  { Tarn::TableWriter(path(), TarnTest::checkedType, TarnTest::checkedGeometry(1000)); }
  ASSERT_TRUE(mirror_.follower->attach(&mirror_));
  {
    Tarn::TableWriter w(path(), TarnTest::checkedType, TarnTest::checkedGeometry(1000));
    putRange(w, 0, before, 1);
  }
  settle();
  ASSERT_EQ(mirror_.model.size(), before);
  const U64 toldBefore = mirror_.told;

  // The child waits on `resume` after the rebuild; if the test stops early, closing it lets it go.
  struct Pipes {
    int rebuilt[2] = {-1, -1}, resume[2] = {-1, -1};
    ~Pipes() {
      for (int fd : {rebuilt[0], rebuilt[1], resume[0], resume[1]}) ::close(fd);
    }
  } pipes;
  ASSERT_EQ(::pipe(pipes.rebuilt), 0);
  ASSERT_EQ(::pipe(pipes.resume), 0);
  pid_t child = spawnWriter([&](Tarn::TableWriter& w) {
    ::close(pipes.resume[1]);
    char step = 0;
    if (::write(pipes.rebuilt[1], &step, 1) != 1 || ::read(pipes.resume[0], &step, 1) != 1) ::_exit(3);
    putRange(w, before, after, 2);
  });
  ::close(std::exchange(pipes.rebuilt[1], -1));  // a child that dies early ends the wait below
  char step = 0;
  ASSERT_EQ(::read(pipes.rebuilt[0], &step, 1), 1);
  ASSERT_TRUE(TestSupport::turnUntil([&] {
    const Tarn::TableReader* r = mirror_.follower->reader();
    return r && r->geometry().maxMembers == tableSize && mirror_.follower->feed().caughtUp(*r);
  })) << "the reader never moved to the rebuilt file";
  auto rebuiltFile = reader();
  CheckedRecord out;
  U64 missing = 0;
  for (U64 k = 0; k < before; ++k) missing += !rebuiltFile->lookup(&k, &out);
  EXPECT_EQ(missing, 0u) << "keys missing from the rebuilt file";
  EXPECT_EQ(mirror_.model.size(), before) << "a key vanished from the reader's copy";
  EXPECT_GE(mirror_.told - toldBefore, before) << "the move to the new file is delivered key by key";

  ASSERT_EQ(::write(pipes.resume[1], &step, 1), 1);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  settle();
  EXPECT_EQ(mirror_.torn, 0u);
  EXPECT_EQ(mirror_.model.size(), after);
  EXPECT_EQ(TarnTest::differences(mirror_.model, TarnTest::contentOf(*mirror_.follower->reader())), "");
}

TEST_F(CrossProcess, AWriterKilledInABatchLeavesWholeRecordsAndNoLostChange) {
  { Tarn::TableWriter(path(), TarnTest::checkedType, geometry()); }
  ASSERT_TRUE(mirror_.follower->attach(&mirror_));
  pid_t child = spawnWriter([](Tarn::TableWriter& w) {
    for (U64 round = 1;; ++round) {
      for (U64 k = 0; k < 20000; ++k) {
        CheckedRecord r = CheckedRecord::make(k, round);
        w.put(&r);
      }
      w.commit();
    }
  });
  const Tarn::TableReader* reader = mirror_.follower->reader();
  while (reader->logHead() < 50000) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  settle();
  EXPECT_EQ(mirror_.torn, 0u);
  EXPECT_EQ(TarnTest::differences(mirror_.model, TarnTest::contentOf(*reader)), "");
  EXPECT_EQ(mirror_.model.size(), 20000u);
}

}  // namespace
