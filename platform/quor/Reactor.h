#pragma once
// The base of every reactor and state machine: the zombie protocol.
//
// A reactor follows one notifier. Deleting a reactor is always: remove it from its owner's
// collection, then quorDoZombieReactors(true), which silences it, runs its handleDel() while the
// reactor and what it remembers still exist, and passes the flag to the reactors nested in it.
// A zombie ignores notifications.
#include "platform/quor/Ptr.h"

namespace Quor {

class Entity;
using AttributeId = S32;

class Reactor : public PtrInterface {
 public:
  void quorDoZombieReactors(bool flag);
  bool quorMarkedForDeletion() const noexcept { return zombie_; }

  // Silences or wakes the reactor; composites pass it to the reactors below them.
  void hasNotificationActiveIs(bool active) override { active_ = active; }
  bool notificationActive() const noexcept { return active_; }

  // A handler of this reactor raised: the notifier calls this and goes on with the next reactor.
  virtual void onNotificationException(AttributeId attr);

  // Whether a notification of `notifier` reaches this reactor now.
  bool listensTo(const Entity* notifier) const noexcept {
    return attached_ == notifier && active_ && !zombie_ && references() > 1;
  }

 protected:
  Reactor() = default;
  // Undoes what this reactor contributed. Runs on every change of the zombie flag.
  virtual void handleDel() {}
  // Passes the zombie flag to the reactors nested in this one.
  virtual void quorZombieNested(bool) {}

 private:
  friend class Entity;
  const Entity* attached_ = nullptr;
  bool zombie_ = false;
  bool active_ = true;
};

}  // namespace Quor
