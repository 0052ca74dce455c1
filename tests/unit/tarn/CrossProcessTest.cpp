// A writer in another process and a reader in the event loop: records are read whole while they
// change, the reader ends up knowing every change, also while the table grows, and a writer killed
// mid-batch harms nothing. (A damaged record reaches the reader through the agent of
// FaultInjectionTest.)
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>
#include <utility>

#include "platform/quor/Clock.h"
#include "platform/tarn/TableFollower.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using TarnTest::CheckedRecord;
using TarnTest::put;

// Keeps a copy of the table from the keys it is told about, reading each one as a reactor would.
class Mirror : public Tarn::TableFollower::Client {
 public:
  void keyChanged(const std::byte* key) override {
    U64 k;
    std::memcpy(&k, key, sizeof k);
    CheckedRecord out;
    if (follower->reader()->lookup(&k, &out)) {
      torn += !out.whole();
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

void putRange(Tarn::TableWriter& w, U64 from, U64 to, U64 version) {
  for (U64 k = from; k < to; ++k) {
    put(w, k, version);
    if (k % 1000 == 999) w.commit();
  }
  w.commit();
}

class CrossProcess : public TarnTest::TableDir {
 protected:
  static constexpr U32 tableSize = 120000;
  // Makes the table with `maxMembers` and follows it.
  void SetUp() override { follow(tableSize); }
  void follow(U32 maxMembers) {
    writer(maxMembers).reset();
    mirror_.follower = Quor::makePtr<Tarn::TableFollower>(path(), TarnTest::checkedType, sizeof(U64), sizeof(CheckedRecord));
    ASSERT_TRUE(mirror_.follower->attach(&mirror_));
  }
  void TearDown() override { mirror_.follower->detach(false); }

  // Runs `write` in a child process, with a writer of the table at its full size, that exits when it
  // returns.
  pid_t spawnWriter(const std::function<void(Tarn::TableWriter&)>& write) {
    pid_t pid = ::fork();
    if (pid == 0) {
      try {
        write(*writer(tableSize, false, 5));
      } catch (...) {
        ::_exit(2);
      }
      ::_exit(0);
    }
    return pid;
  }

  // Turns the event loop until the reader has caught up with a writer that has finished, then
  // expects its copy to be the table, read whole.
  void expectCaughtUp() {
    ASSERT_TRUE(TestSupport::turnUntil(
        [&] { return mirror_.follower->reader() && mirror_.follower->feed().caughtUp(*mirror_.follower->reader()); }, 20))
        << "the reader never caught up";
    EXPECT_EQ(mirror_.torn, 0u);
    EXPECT_EQ(TarnTest::differences(mirror_.model, TarnTest::contentOf(*mirror_.follower->reader())), "");
  }

  Mirror mirror_;
};

TEST_F(CrossProcess, EveryChangeOfAWriterInAnotherProcessReachesTheReaderWhole) {
  pid_t child = spawnWriter([](Tarn::TableWriter& w) {
    putRange(w, 0, 100000, 1);
    std::mt19937_64 random(7);
    for (U64 i = 0; i < 100000; ++i) {
      U64 k = random() % 110000;
      if (random() % 5 == 0) w.erase(&k);
      else put(w, k, 2 + i / 25000);
      if (i % 500 == 499) w.commit();
    }
    w.commit();
  });
  // Meanwhile the agent serves: lookups and walks, every record whole.
  std::mt19937_64 random(11);
  int status = 0;
  while (::waitpid(child, &status, WNOHANG) == 0) {
    Quor::activityManager()->runOnce(0.001);
    const Tarn::TableReader* reader = mirror_.follower->reader();
    CheckedRecord out;
    for (int i = 0; i < 200; ++i) {
      U64 k = random() % 110000;
      if (reader->lookup(&k, &out)) {
        ASSERT_TRUE(out.whole() && out.key == k);
      }
    }
    U32 slot = reader->nextOccupied(static_cast<U32>(random() % reader->capacity()), &out);
    for (int i = 0; i < 200 && slot < reader->capacity(); ++i, slot = reader->nextOccupied(slot + 1, &out))
      ASSERT_TRUE(out.whole());
  }
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  expectCaughtUp();
  EXPECT_GT(mirror_.model.size(), 80000u);
}

// A save that grows a table rebuilds the file at the larger size with the records of the old one (not
// its deleted ones), then adds to it. The writer stops between the two steps: the reader has moved to
// the new file by then and must still find every key.
TEST_F(CrossProcess, AReaderWatchingATableThatGrowsNeverSeesAKeyVanish) {
  constexpr U64 before = 800, kept = before - (before + 2) / 3, after = 50000;
  mirror_.follower->detach(false);
  std::filesystem::remove(path());
  follow(1000);
  {
    auto w = writer(1000);
    putRange(*w, 0, before, 1);
    for (U64 k = 0; k < before; k += 3) w->erase(&k);
    w->commit();
  }
  expectCaughtUp();
  ASSERT_EQ(mirror_.model.size(), kept);
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
  EXPECT_EQ(TarnTest::differences(TarnTest::contentOf(*reader()), mirror_.model), "") << "the rebuilt file";
  EXPECT_EQ(mirror_.model.size(), kept) << "a key vanished from the reader's copy";
  EXPECT_GE(mirror_.told - toldBefore, kept) << "the move to the new file is delivered key by key";

  ASSERT_EQ(::write(pipes.resume[1], &step, 1), 1);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  expectCaughtUp();
  EXPECT_EQ(mirror_.model.size(), kept + after - before);
}

TEST_F(CrossProcess, AWriterKilledInABatchLeavesWholeRecordsAndNoLostChange) {
  pid_t child = spawnWriter([](Tarn::TableWriter& w) {
    for (U64 round = 1;; ++round) {
      for (U64 k = 0; k < 20000; ++k) put(w, k, round);
      w.commit();
    }
  });
  while (mirror_.follower->reader()->logHead() < 50000) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  expectCaughtUp();
  EXPECT_EQ(mirror_.model.size(), 20000u);
}

}  // namespace
