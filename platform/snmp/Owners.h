#pragma once
// Owners of what the plug-in allocates or registers with net-snmp: each gives it back once, when the
// owner goes, unless it has been handed over to the agent with release().
#include <memory>
#include <utility>

#include "platform/snmp/NetSnmp.h"

namespace Snmp {

struct HandlerRegistrationFree {
  void operator()(netsnmp_handler_registration* reg) const { netsnmp_handler_registration_free(reg); }
};
// A registration not yet given to the agent; netsnmp_register_* takes it over (release()).
using HandlerRegistrationPtr = std::unique_ptr<netsnmp_handler_registration, HandlerRegistrationFree>;

// A one-shot alarm of the agent's timer list.
class Alarm {
 public:
  Alarm() noexcept = default;
  Alarm(struct timeval delay, SNMPAlarmCallback* callback, void* data);
  Alarm(Alarm&& other) noexcept : id_(std::exchange(other.id_, 0)) {}
  Alarm& operator=(Alarm&& other) noexcept;
  ~Alarm() { cancel(); }

  explicit operator bool() const noexcept { return id_ != 0; }
  void cancel() noexcept;
  // The alarm has fired: the agent drops a one-shot alarm itself once its callback returns.
  void fired() noexcept { id_ = 0; }

 private:
  unsigned int id_ = 0;
};

// A file descriptor watched by the agent's select loop.
class ReadFd {
 public:
  ReadFd(int fd, void (*callback)(int, void*), void* data);
  ReadFd(ReadFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  ReadFd& operator=(ReadFd&&) = delete;
  ~ReadFd();

  bool registered() const noexcept { return fd_ >= 0; }

 private:
  int fd_;
};

// A file descriptor of the plug-in's own, closed with its owner.
class UniqueFd {
 public:
  explicit UniqueFd(int fd) noexcept : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueFd& operator=(UniqueFd&&) = delete;
  ~UniqueFd();

  int get() const noexcept { return fd_; }

 private:
  int fd_;
};

}  // namespace Snmp
