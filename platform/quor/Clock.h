#pragma once
// Time, the clock reactors wait on, and the activity manager that runs timers and file descriptors
// on the agent's one thread.
//
// A reactor on the Clock asks for onTime() with timeMinIs(t): 0.0 means at the next opportunity,
// +infinity means never. Firing consumes the request (timeMin goes back to +infinity), so a reactor
// that wants to run again asks again. A run fires each due reactor once: one that asks for 0.0 from
// inside onTime() waits for the next run, so the host loop serves requests in between.
//
// A run is one turn of the host loop's timers, and it has a budget (Clock::turnBudget): reactors
// that cut long work into slices end their slice at sliceDeadline(), never later than the turn's end,
// and once the budget is spent the run fires no further reactor. Those left over keep their places
// and fire first at the next run, so that several machines busy at once share the turns and none
// waits behind the others for long.
#include <functional>
#include <limits>
#include <map>

#include "platform/quor/Entity.h"

namespace Quor {

inline constexpr double never = std::numeric_limits<double>::infinity();

// Seconds on a monotonic clock.
double now();
// Replaces the time source (tests move time by hand); null restores the real clock.
void nowSourceIs(double (*source)());
// The end of the present run of due reactors, +infinity outside one.
double turnDeadline() noexcept;
// When a slice of at most `quantum` seconds that starts now must end: within the present turn.
double sliceDeadline(double quantum);

class Clock : public Entity {
 public:
  class NotifieeConst : public Notifiee<Clock> {
   public:
    double timeMin() const noexcept { return timeMin_; }
    void timeMinIs(double t);
    virtual void onTime() {}
    ~NotifieeConst() override;

   private:
    friend class Clock;
    double timeMin_ = never;
    bool scheduled_ = false;
    U64 armedSeq_ = 0;  // when it was last scheduled, in the clock's count of schedulings
    std::multimap<double, NotifieeConst*>::iterator slot_;
  };

  // The seconds of work that one run of due reactors aims to stay within.
  static inline double turnBudget = 0.008;
  // What no piece of work on the loop's thread should hold it for: a reactor's firing or a
  // descriptor's handler that takes longer is traced (facility "Loop", level 1; level 2 from half
  // of it).
  static inline double longTurn = 0.020;

  using Entity::Entity;
  double nextDeadline() const noexcept { return schedule_.empty() ? never : schedule_.begin()->first; }
  // Fires the reactors that were due when it began, in the order of their times and, for equal
  // times, of their requests, until the turn's budget is spent.
  void runDue();

 private:
  // The first reactor due at `t` whose request was made before the run began (scheduling `seq`).
  NotifieeConst* firstDue(double t, U64 seq) const;
  void notifieeAttached(Reactor* r) const override;
  void notifieeDetached(Reactor* r) const override;
  void schedule(NotifieeConst* n) const;
  void unschedule(NotifieeConst* n) const;
  mutable std::multimap<double, NotifieeConst*> schedule_;
  mutable U64 schedulings_ = 0;
};

class ActivityManager : public PtrInterface {
 public:
  // The loop that runs the agent (snmpd's, or runOnce below) and is told what to wait for.
  class Host {
   public:
    virtual ~Host() = default;
    virtual void wakeupIs(double deadline) = 0;
    virtual void fdAdded(int fd) = 0;
    virtual void fdRemoved(int fd) = 0;
  };

  ActivityManager();
  const Ptr<Clock>& clock() const noexcept { return clock_; }
  double nextDeadline() const noexcept { return clock_->nextDeadline(); }
  void runDue() { clock_->runDue(); }

  void fdReadIs(int fd, std::function<void()> onReadable);
  void fdReadDel(int fd);
  void runFd(int fd);

  void hostIs(Host* host);
  Host* host() const noexcept { return host_; }
  // Called when the earliest deadline may have changed.
  void deadlineChanged();
  // One turn of the stand-alone loop (tools and tests): waits for a file descriptor or the next
  // deadline, at most maxWait seconds, then runs what is ready.
  void runOnce(double maxWait);

 private:
  Ptr<Clock> clock_;
  std::map<int, std::function<void()>> fds_;
  Host* host_ = nullptr;
};

const Ptr<ActivityManager>& activityManager();

}  // namespace Quor
