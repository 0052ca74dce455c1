// Synchronous notification with snapshot iteration, exception isolation, replay on attach and the
// zombie protocol: what Entity::notify guarantees every reactor of the machines.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/quor/Entity.h"

namespace {

// A notifier with one attribute, written as every entity of the store is.
class Counter : public Quor::Entity {
 public:
  class NotifieeConst : public Quor::Notifiee<Counter> {
   public:
    virtual void onValue() {}
  };
  using Entity::Entity;
  int value() const { return value_; }
  void valueIs(int v) {
    if (v == value_) return;
    value_ = v;
    notify<NotifieeConst>(firstAttributeId, [](NotifieeConst& n) { n.onValue(); });
  }

 private:
  int value_ = 0;
};

struct Log {
  std::vector<std::string> lines;
};

class Watcher : public Counter::NotifieeConst {
 public:
  Watcher(Log& log, std::string name) : log_(log), name_(std::move(name)) {}
  void onValue() override {
    log_.lines.push_back(name_ + ":" + std::to_string(notifier()->value()));
    if (action) action();
  }
  void onNotifierIs() override { log_.lines.push_back(name_ + ":replay"); }
  void onNotificationException(Quor::AttributeId attr) override {
    log_.lines.push_back(name_ + ":raised@" + std::to_string(attr));
  }
  void handleDel() override { log_.lines.push_back(name_ + ":del"); }
  std::function<void()> action;

 private:
  Log& log_;
  std::string name_;
};

Quor::Ptr<Counter> counter() { return Quor::makePtr<Counter>(Quor::Name("c")); }

// One reactor's life: attaching replays once (the same notifier again does nothing); a reactor that
// raises is told and the next still runs; one dropped by an earlier reactor is not called; a zombie
// runs handleDel once, however often it is told, and hears nothing more.
TEST(Notification, AReactorIsReplayedToldAndDroppedAndAZombieOnlyOnce) {
  Log log;
  auto c = counter();
  auto a = Quor::makePtr<Watcher>(log, "a");
  auto b = Quor::makePtr<Watcher>(log, "b");
  a->notifierIs(c);
  a->notifierIs(c);
  b->notifierIs(c);
  EXPECT_EQ(log.lines, (std::vector<std::string>{"a:replay", "b:replay"}));
  a->action = [] { throw std::runtime_error("boom"); };
  log.lines.clear();
  c->valueIs(1);
  EXPECT_EQ(log.lines, (std::vector<std::string>{"a:1", "a:raised@258", "b:1"}));
  a->action = [&b] { b = nullptr; };
  log.lines.clear();
  c->valueIs(2);
  EXPECT_EQ(log.lines, (std::vector<std::string>{"a:2"}));

  log.lines.clear();
  a->quorDoZombieReactors(true);
  a->quorDoZombieReactors(true);
  c->valueIs(3);
  EXPECT_EQ(log.lines, (std::vector<std::string>{"a:del"}));
  EXPECT_TRUE(a->quorMarkedForDeletion());
}

}  // namespace
