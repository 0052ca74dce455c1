#include "platform/quor/Clock.h"

#include <cxxabi.h>
#include <poll.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <typeinfo>
#include <utility>
#include <vector>

#include "platform/quor/Trace.h"

namespace Quor {

namespace {

double steadyNow() {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}

double (*timeSource)() = steadyNow;
double runEnds = never;

// The deadline of one run of due reactors, and the one before it back when the run ends (a reactor
// may run another clock's reactors inside its own).
class TurnScope {
 public:
  explicit TurnScope(double deadline) : outer_(std::exchange(runEnds, std::min(runEnds, deadline))) {}
  ~TurnScope() { runEnds = outer_; }
  TurnScope(const TurnScope&) = delete;
  TurnScope& operator=(const TurnScope&) = delete;

 private:
  double outer_;
};

const Tracer& loopTracer() {
  static const Tracer tracer("Loop", "Loop");
  return tracer;
}

std::string demangled(const std::type_info& type) {
  int status = 0;
  std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
  return status == 0 && name ? name.get() : type.name();
}

double threadCpu() {
  timespec t{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// Times one piece of work on the loop's thread and reports it when it held the loop longer than a
// turn should: level 1 beyond Clock::longTurn, level 2 beyond half of it (beyond a slice); with the thread's CPU
// time, which tells work from time the thread waited for a processor.
class HoldTimer {
 public:
  HoldTimer() : wall_(now()), cpu_(loopTracer().handle.enabled(1) || loopTracer().handle.enabled(2) ? threadCpu() : 0) {}
  template <class What>
  void report(What what) const {
    const double seconds = now() - wall_;
    const int level = seconds > Clock::longTurn ? 1 : seconds > Clock::longTurn / 2 ? 2 : 0;
    if (level)
      QTRACE(loopTracer(), level,
             "held the loop " << seconds * 1e3 << " ms (" << (threadCpu() - cpu_) * 1e3 << " ms CPU): " << what());
  }

 private:
  double wall_;
  double cpu_;
};

}  // namespace

double now() { return timeSource(); }

void nowSourceIs(double (*source)()) { timeSource = source ? source : steadyNow; }

double turnDeadline() noexcept { return runEnds; }

double sliceDeadline(double quantum) { return std::min(now() + quantum, runEnds); }

void Clock::NotifieeConst::timeMinIs(double t) {
  const Clock* clock = notifier().ptr();
  if (clock) clock->unschedule(this);
  timeMin_ = t;
  if (clock) clock->schedule(this);
  activityManager()->deadlineChanged();
}

// Leaves the clock while this is still a clock reactor, so the schedule never holds a dangling entry.
Clock::NotifieeConst::~NotifieeConst() { notifierIs(nullptr); }

void Clock::schedule(NotifieeConst* n) const {
  if (n->scheduled_ || std::isinf(n->timeMin_)) return;
  n->slot_ = schedule_.emplace(n->timeMin_, n);
  n->scheduled_ = true;
  n->armedSeq_ = ++schedulings_;
}

void Clock::unschedule(NotifieeConst* n) const {
  if (!n->scheduled_) return;
  schedule_.erase(n->slot_);
  n->scheduled_ = false;
}

void Clock::notifieeAttached(Reactor* r) const {
  schedule(static_cast<NotifieeConst*>(r));
  activityManager()->deadlineChanged();
}

void Clock::notifieeDetached(Reactor* r) const { unschedule(static_cast<NotifieeConst*>(r)); }

Clock::NotifieeConst* Clock::firstDue(double t, U64 seq) const {
  for (auto it = schedule_.begin(); it != schedule_.end() && it->first <= t; ++it)
    if (it->second->armedSeq_ <= seq) return it->second;
  return nullptr;
}

void Clock::runDue() {
  const double t = now();
  const U64 seq = schedulings_;
  TurnScope turn(t + turnBudget);
  for (bool first = true;; first = false) {
    NotifieeConst* due = firstDue(t, seq);
    // At least one reactor fires in every run, so that a spent budget still makes progress.
    if (!due || (!first && now() > turnDeadline())) break;
    Ptr<NotifieeConst> n(due);
    unschedule(due);
    due->timeMin_ = never;
    if (!n->listensTo(this)) continue;
    const HoldTimer timer;
    try {
      n->onTime();
    } catch (const std::exception&) {
      n->onNotificationException(firstAttributeId);
    }
    timer.report([&] { return demangled(typeid(*n)); });
  }
  activityManager()->deadlineChanged();
}

ActivityManager::ActivityManager() : clock_(makePtr<Clock>(Name("clock"))) {}

void ActivityManager::fdReadIs(int fd, std::function<void()> onReadable) {
  bool added = fds_.insert_or_assign(fd, std::move(onReadable)).second;
  if (added && host_) host_->fdAdded(fd);
}

void ActivityManager::fdReadDel(int fd) {
  if (fds_.erase(fd) && host_) host_->fdRemoved(fd);
}

void ActivityManager::runFd(int fd) {
  auto it = fds_.find(fd);
  if (it == fds_.end()) return;
  std::function<void()> handler = it->second;  // the handler may remove itself
  const HoldTimer timer;
  handler();
  timer.report([&] { return "descriptor " + std::to_string(fd); });
}

void ActivityManager::hostIs(Host* host) {
  host_ = host;
  if (!host_) return;
  for (const auto& [fd, handler] : fds_) host_->fdAdded(fd);
  host_->wakeupIs(nextDeadline());
}

void ActivityManager::deadlineChanged() {
  if (host_) host_->wakeupIs(nextDeadline());
}

void ActivityManager::runOnce(double maxWait) {
  double wait = std::clamp(nextDeadline() - now(), 0.0, maxWait);
  std::vector<pollfd> polled;
  for (const auto& [fd, handler] : fds_) polled.push_back({fd, POLLIN, 0});
  if (::poll(polled.data(), polled.size(), static_cast<int>(std::ceil(wait * 1000))) > 0)
    for (const pollfd& p : polled)
      if (p.revents) runFd(p.fd);
  runDue();
}

const Ptr<ActivityManager>& activityManager() {
  // Never destroyed: reactors torn down by static destructors still reach it.
  static const auto* manager = new Ptr<ActivityManager>(makePtr<ActivityManager>());
  return *manager;
}

}  // namespace Quor
