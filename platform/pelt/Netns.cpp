#include "platform/pelt/Netns.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/quor/Trace.h"

namespace Pelt {

namespace {

const Quor::Tracer tracer("Pelt", "Netns");

// The process's own namespace, opened once on first use and kept open for the process's life, so
// that "default" finds the way back whatever namespace the thread is in by then.
int ownNamespace() {
  static const int fd = ::open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC);
  return fd;
}

bool enter(int fd, const char* name) {
  if (fd >= 0 && ::setns(fd, CLONE_NEWNET) == 0) return true;
  QTRACE(tracer, 1, "cannot enter network namespace " << name << ": " << std::strerror(errno));
  return false;
}

}  // namespace

bool setNsByName(const char* name) {
  int own = ownNamespace();
  if (std::strcmp(name, "default") == 0) return enter(own, name);
  std::string path = std::string("/var/run/netns/") + name;
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  bool entered = enter(fd, name);
  if (fd >= 0) ::close(fd);
  return entered;
}

}  // namespace Pelt
