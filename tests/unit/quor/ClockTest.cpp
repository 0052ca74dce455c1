// The clock that drives time-sliced work: busy reactors share its runs, and the reaper frees in its
// slices. (When a request fires, once and neither early nor late, is the agent loop's test.)
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <sys/mman.h>

#include "platform/quor/Clock.h"
#include "platform/quor/Reaper.h"

namespace {

double fakeTime = 100.0;
double fakeNow() { return fakeTime; }

class ClockTest : public ::testing::Test {
 protected:
  void SetUp() override { Quor::nowSourceIs(fakeNow); }
  void TearDown() override { Quor::nowSourceIs(nullptr); }
  const Quor::Ptr<Quor::Clock>& clock = Quor::activityManager()->clock();
};

// Takes `cost` seconds of the fake time at each firing, notes its name, and asks again.
class Worker : public Quor::Clock::NotifieeConst {
 public:
  Worker(char name, std::string* log) : name_(name), log_(log) {}
  void onTime() override {
    *log_ += name_;
    fakeTime += 0.006;
    timeMinIs(0.0);
  }

 private:
  char name_;
  std::string* log_;
};

// Three machines busy at once, each taking 6 ms a slice against a budget of 8 ms: a run fires until
// its budget is spent (the second starts within it), and those left over fire first at the next run.
TEST_F(ClockTest, BusyReactorsShareTheRunsInTurn) {
  std::string fired;
  std::vector<Quor::Ptr<Worker>> workers;
  for (char name : {'A', 'B', 'C'}) {
    workers.push_back(Quor::makePtr<Worker>(name, &fired));
    workers.back()->notifierIs(clock);
    workers.back()->timeMinIs(0.0);
  }
  for (int run = 0; run < 3; ++run) {
    clock->runDue();
    fired += '|';
    EXPECT_EQ(Quor::turnDeadline(), Quor::never);  // outside a run
  }
  EXPECT_EQ(fired, "AB|CA|BC|");
}

// The reaper frees what it is handed in slices of the clock (a sliced pass of the default quantum,
// whose finish() is reapAll), in the order handed over, each step holding what it frees until it
// says it is done; a large mapping goes back a piece at a time.
TEST_F(ClockTest, TheReaperFreesInSlicesInTheOrderHandedOver) {
  std::string freed;
  auto owner = [&](char name, int steps) {
    return [&freed, name, steps, held = std::make_shared<int>(0)]() mutable {
      fakeTime += 0.001;
      freed += name;
      return ++*held < steps;
    };
  };
  Quor::reap(owner('A', 3));
  Quor::reap(owner('B', 20));
  clock->runDue();
  EXPECT_EQ(freed.substr(0, 3), "AAA");
  EXPECT_LT(freed.size(), 10u) << "one slice of the default quantum";
  EXPECT_EQ(Quor::reapsPending(), 1u);

  // What a step held may hand over more as it goes: that runs too.
  struct HandsOverMore {
    std::string* freed;
    ~HandsOverMore() {
      Quor::reap([f = freed] {
        *f += 'C';
        return false;
      });
    }
  };
  Quor::reap([held = std::make_shared<HandsOverMore>(&freed)] { return false; });
  for (int run = 0; run < 100 && Quor::reapsPending(); ++run) clock->runDue();
  EXPECT_EQ(freed, "AAA" + std::string(20, 'B') + "C");

  const std::size_t bytes = std::size_t(64) << 20;
  void* mapping = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(mapping, MAP_FAILED);
  Quor::reapMapping(mapping, bytes);
  Quor::reapAll();
  EXPECT_EQ(Quor::reapsPending(), 0u);
  unsigned char resident = 0;
  EXPECT_NE(::mincore(static_cast<char*>(mapping) + bytes - 4096, 4096, &resident), 0) << "unmapped to its end";
}

}  // namespace
