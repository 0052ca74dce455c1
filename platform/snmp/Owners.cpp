#include "platform/snmp/Owners.h"

#include <unistd.h>

namespace Snmp {

Alarm::Alarm(struct timeval delay, SNMPAlarmCallback* callback, void* data)
    : id_(snmp_alarm_register_hr(delay, 0, callback, data)) {
  if (!id_) snmp_log(LOG_ERR, "ipsnmp: the agent refused a timer\n");
}

Alarm& Alarm::operator=(Alarm&& other) noexcept {
  if (this != &other) {
    cancel();
    id_ = std::exchange(other.id_, 0);
  }
  return *this;
}

void Alarm::cancel() noexcept {
  if (id_) snmp_alarm_unregister(std::exchange(id_, 0));
}

ReadFd::ReadFd(int fd, void (*callback)(int, void*), void* data) : fd_(fd) {
  if (fd < 0) return;
  if (register_readfd(fd, callback, data) != FD_REGISTERED_OK) {
    snmp_log(LOG_ERR, "ipsnmp: the agent cannot watch file descriptor %d\n", fd);
    fd_ = -1;
  }
}

ReadFd::~ReadFd() {
  if (fd_ >= 0) unregister_readfd(fd_);
}

UniqueFd::~UniqueFd() {
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace Snmp
