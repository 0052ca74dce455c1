#pragma once
// Time, the clock reactors wait on, and the activity manager that runs timers and file descriptors
// on the agent's one thread.
//
// A reactor on the Clock asks for onTime() with timeMinIs(t): 0.0 means at the next opportunity,
// +infinity means never. Firing consumes the request (timeMin goes back to +infinity), so a reactor
// that wants to run again asks again. A run fires each due reactor once: one that asks for 0.0 from
// inside onTime() waits for the next run, so the host loop serves requests in between.
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
    std::multimap<double, NotifieeConst*>::iterator slot_;
  };

  using Entity::Entity;
  double nextDeadline() const noexcept { return schedule_.empty() ? never : schedule_.begin()->first; }
  void runDue();

 private:
  void notifieeAttached(Reactor* r) const override;
  void notifieeDetached(Reactor* r) const override;
  void schedule(NotifieeConst* n) const;
  void unschedule(NotifieeConst* n) const;
  mutable std::multimap<double, NotifieeConst*> schedule_;
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
