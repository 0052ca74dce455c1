// A signal becomes work on the event loop: nothing runs in the handler, signals that arrive together
// run the action once, and the signal's previous disposition comes back when the watch goes.
#include <gtest/gtest.h>

#include <csignal>

#include "platform/quor/Clock.h"
#include "plugin/SignalWatch.h"

namespace {

volatile std::sig_atomic_t previousHandlerRuns = 0;
extern "C" void previousHandler(int) { previousHandlerRuns = previousHandlerRuns + 1; }

TEST(SignalWatch, ActionRunsOnTheLoopOncePerBurst) {
  int runs = 0;
  SignalWatch watch(SIGUSR1, [&runs] { ++runs; });
  ::raise(SIGUSR1);
  ::raise(SIGUSR1);
  EXPECT_EQ(runs, 0);
  Quor::activityManager()->runOnce(1.0);
  EXPECT_EQ(runs, 1);
  Quor::activityManager()->runOnce(0.0);
  EXPECT_EQ(runs, 1);
  ::raise(SIGUSR1);
  Quor::activityManager()->runOnce(1.0);
  EXPECT_EQ(runs, 2);
}

TEST(SignalWatch, PreviousDispositionComesBack) {
  struct sigaction mine {}, saved {};
  mine.sa_handler = previousHandler;
  sigemptyset(&mine.sa_mask);
  ::sigaction(SIGUSR1, &mine, &saved);
  {
    int runs = 0;
    SignalWatch watch(SIGUSR1, [&runs] { ++runs; });
    ::raise(SIGUSR1);
    EXPECT_EQ(previousHandlerRuns, 0);
  }
  ::raise(SIGUSR1);
  EXPECT_EQ(previousHandlerRuns, 1);
  ::sigaction(SIGUSR1, &saved, nullptr);
}

TEST(SignalWatch, OneWatchPerSignal) {
  SignalWatch watch(SIGUSR1, [] {});
  EXPECT_THROW(SignalWatch(SIGUSR1, [] {}), std::invalid_argument);
  EXPECT_THROW(SignalWatch(0, [] {}), std::invalid_argument);
}

}  // namespace
