#include "platform/snmp/AgentLoop.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <net-snmp/library/large_fd_set.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <vector>

namespace Snmp {

namespace {

// Rounded up, so that the alarm never fires before the deadline it stands for.
struct timeval delayUntil(double deadline) {
  double micros = std::ceil((deadline - Quor::now()) * 1e6);
  long whole = micros < 1 ? 1 : static_cast<long>(micros);
  return {whole / 1000000, whole % 1000000};
}

}  // namespace

AgentLoop::AgentLoop(const Quor::Ptr<Quor::ActivityManager>& manager)
    : manager_(manager),
      wakeFd_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      wakeWatch_(wakeFd_.get(), &AgentLoop::onWakeFd, this) {
  if (wakeFd_.get() < 0) snmp_log(LOG_ERR, "ipsnmp: no eventfd, timers due now wait for the next request\n");
  manager_->hostIs(this);
}

AgentLoop::~AgentLoop() { manager_->hostIs(nullptr); }

void AgentLoop::wakeupIs(double deadline) {
  if (std::isinf(deadline)) {
    alarm_.cancel();
    alarmDeadline_ = Quor::never;
  } else if (deadline <= Quor::now()) {
    alarm_.cancel();
    alarmDeadline_ = Quor::never;
    wakeSoon();
  } else if (!alarm_ || deadline != alarmDeadline_) {
    alarm_ = Alarm(delayUntil(deadline), &AgentLoop::onAlarm, this);
    alarmDeadline_ = deadline;
  }
}

void AgentLoop::fdAdded(int fd) { watched_.try_emplace(fd, fd, &AgentLoop::onFd, this); }

void AgentLoop::fdRemoved(int fd) {
  watched_.erase(fd);
  readyFds_.erase(fd);
}

void AgentLoop::wakeSoon() {
  if (wakePending_ || wakeFd_.get() < 0) return;
  wakePending_ = ::eventfd_write(wakeFd_.get(), 1) == 0;
}

void AgentLoop::onAlarm(unsigned int, void* self) {
  auto* loop = static_cast<AgentLoop*>(self);
  loop->alarm_.fired();
  loop->alarmDeadline_ = Quor::never;
  loop->runDue();
}

void AgentLoop::onWakeFd(int fd, void* self) {
  auto* loop = static_cast<AgentLoop*>(self);
  eventfd_t count;
  ::eventfd_read(fd, &count);
  loop->wakePending_ = false;
  loop->runAfterRequests();
}

void AgentLoop::onFd(int fd, void* self) {
  auto* loop = static_cast<AgentLoop*>(self);
  loop->readyFds_.insert(fd);
  loop->runAfterRequests();
}

// An alarm due now fires in this pass's run_alarms(), after its requests.
void AgentLoop::runAfterRequests() {
  if (!afterRequests_) afterRequests_ = Alarm({0, 0}, &AgentLoop::onAfterRequests, this);
}

void AgentLoop::onAfterRequests(unsigned int, void* self) {
  auto* loop = static_cast<AgentLoop*>(self);
  loop->afterRequests_.fired();
  // A handler may remove descriptors, its own or others'.
  while (!loop->readyFds_.empty()) {
    const int fd = loop->readyFds_.extract(loop->readyFds_.begin()).value();
    try {
      loop->manager_->runFd(fd);
    } catch (const std::exception& e) {
      snmp_log(LOG_ERR, "ipsnmp: handler of file descriptor %d failed: %s\n", fd, e.what());
    }
  }
  loop->runDue();
}

bool AgentLoop::requestsWaiting() {
  netsnmp_large_fd_set sessions;
  netsnmp_large_fd_set_init(&sessions, FD_SETSIZE);
  int numfds = 0, block = 0;
  struct timeval timeout = {0, 0};
  snmp_sess_select_info2_flags(nullptr, &numfds, &sessions, &timeout, &block, NETSNMP_SELECT_NOALARMS);
  std::vector<pollfd> polled;
  for (int fd = 0; fd < numfds; ++fd)
    if (NETSNMP_LARGE_FD_ISSET(fd, &sessions)) polled.push_back({fd, POLLIN, 0});
  netsnmp_large_fd_set_cleanup(&sessions);
  if (::poll(polled.data(), polled.size(), 0) <= 0) return false;
  return std::any_of(polled.begin(), polled.end(), [](const pollfd& p) { return p.revents & POLLIN; });
}

// Runs what is due; the manager then reports its next deadline through wakeupIs.
void AgentLoop::runDue() noexcept {
  try {
    if (putOff_ < maxPutOff && requestsWaiting()) {
      ++putOff_;
      wakeSoon();
      return;
    }
    putOff_ = 0;
    manager_->runDue();
  } catch (const std::exception& e) {
    snmp_log(LOG_ERR, "ipsnmp: timer failed: %s\n", e.what());
  }
}

}  // namespace Snmp
