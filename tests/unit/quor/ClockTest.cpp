// The clock that drives time-sliced work: a request of 0.0 fires at the next run, once.
#include <gtest/gtest.h>

#include "platform/quor/Clock.h"

namespace {

double fakeTime = 100.0;
double fakeNow() { return fakeTime; }

class Ticker : public Quor::Clock::NotifieeConst {
 public:
  void onTime() override {
    ++fired;
    if (rearm) timeMinIs(0.0);
  }
  int fired = 0;
  bool rearm = false;
};

class ClockTest : public ::testing::Test {
 protected:
  void SetUp() override { Quor::nowSourceIs(fakeNow); }
  void TearDown() override { Quor::nowSourceIs(nullptr); }
  const Quor::Ptr<Quor::Clock>& clock = Quor::activityManager()->clock();
};

TEST_F(ClockTest, ZeroMeansNextRunAndFiringConsumesTheRequest) {
  auto t = Quor::makePtr<Ticker>();
  t->notifierIs(clock);
  t->timeMinIs(0.0);
  clock->runDue();
  clock->runDue();
  EXPECT_EQ(t->fired, 1);
  EXPECT_EQ(t->timeMin(), Quor::never);
}

TEST_F(ClockTest, ARequestFromInsideOnTimeWaitsForTheNextRun) {
  auto t = Quor::makePtr<Ticker>();
  t->notifierIs(clock);
  t->rearm = true;
  t->timeMinIs(0.0);
  clock->runDue();
  EXPECT_EQ(t->fired, 1);
  EXPECT_EQ(clock->nextDeadline(), 0.0);
  clock->runDue();
  EXPECT_EQ(t->fired, 2);
}

TEST_F(ClockTest, FutureTimesWaitForTheClockAndDestroyedReactorsLeaveTheSchedule) {
  auto t = Quor::makePtr<Ticker>();
  t->notifierIs(clock);
  t->timeMinIs(fakeTime + 5);
  clock->runDue();
  EXPECT_EQ(t->fired, 0);
  fakeTime += 5;
  clock->runDue();
  EXPECT_EQ(t->fired, 1);
  t->timeMinIs(fakeTime + 1);
  t = nullptr;
  EXPECT_EQ(clock->nextDeadline(), Quor::never);
}

TEST_F(ClockTest, ARequestMadeBeforeAttachingCountsOnceAttached) {
  auto t = Quor::makePtr<Ticker>();
  t->timeMinIs(0.0);
  EXPECT_EQ(clock->nextDeadline(), Quor::never);
  t->notifierIs(clock);
  EXPECT_EQ(clock->nextDeadline(), 0.0);
  clock->runDue();
  EXPECT_EQ(t->fired, 1);
}

}  // namespace
