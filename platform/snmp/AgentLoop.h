#pragma once
// Runs the framework's activity manager inside snmpd's own select loop, on the agent's one thread.
//
// snmpd's loop selects on its sockets and on the descriptors of register_readfd, with a timeout that
// ends at its earliest alarm, dispatches the ready descriptors of register_readfd, then reads the
// requests on its sockets, and then calls run_alarms(). The framework's work all runs from
// run_alarms(), after the requests of the pass: a ready descriptor of the framework, dispatched
// before the requests are read, only notes that it is ready and asks for an alarm at once; that
// alarm reads the noted descriptors and then runs the due timers. So a request waits for at most
// one pass of the framework's work, never for two back to back.
//
// snmp_read2() takes one request a session a pass, so requests that queue up during a slice would
// each wait for one more slice. While requests wait on the agent's sessions, the framework's due
// work is put off to the next pass, for `maxPutOff` passes in a row at most: enough to drain what
// queued up during a slice, while a client that polls back to back delays the work by a fraction
// of a millisecond and never stops it.
//
// A future deadline of the framework becomes one agent alarm (microsecond resolution). A deadline
// that is already due, the "next opportunity" of a reactor that cuts long work into slices, is not
// run from the alarm that asks for it: run_alarms() keeps firing alarms as long as one is due, so a
// reactor that asks for 0.0 from inside its own firing would run again and again in one pass and
// starve the requests. It writes to an eventfd instead; the next select returns at once with that
// descriptor and every request that has arrived meanwhile, and the requests come first.
#include "platform/quor/Clock.h"
#include "platform/snmp/Owners.h"

#include <map>
#include <set>

namespace Snmp {

class AgentLoop final : public Quor::ActivityManager::Host {
 public:
  // Passes in a row whose due work waits for requests, at most.
  static constexpr int maxPutOff = 16;

  // Becomes the host of `manager` and takes over its descriptors and deadline.
  explicit AgentLoop(const Quor::Ptr<Quor::ActivityManager>& manager);
  // Gives the manager back without a host and unregisters everything from the agent.
  ~AgentLoop() override;
  AgentLoop(const AgentLoop&) = delete;
  AgentLoop& operator=(const AgentLoop&) = delete;

  void wakeupIs(double deadline) override;
  void fdAdded(int fd) override;
  void fdRemoved(int fd) override;

 private:
  static void onAlarm(unsigned int clientreg, void* self);
  static void onWakeFd(int fd, void* self);
  static void onFd(int fd, void* self);
  static void onAfterRequests(unsigned int clientreg, void* self);
  void runDue() noexcept;
  static bool requestsWaiting();
  void wakeSoon();
  void runAfterRequests();

  Quor::Ptr<Quor::ActivityManager> manager_;
  UniqueFd wakeFd_;
  ReadFd wakeWatch_;
  bool wakePending_ = false;
  Alarm alarm_;
  Alarm afterRequests_;
  std::set<int> readyFds_;
  double alarmDeadline_ = Quor::never;
  int putOff_ = 0;  // passes in a row whose due work was put off for waiting requests
  std::map<int, ReadFd> watched_;
};

}  // namespace Snmp
