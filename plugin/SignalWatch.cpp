#include "plugin/SignalWatch.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "platform/quor/Clock.h"

namespace {

// The write end of each watched signal's pipe plus one, read by the handler; 0 when the signal is
// not watched.
volatile std::sig_atomic_t pipeOf[NSIG] = {};

extern "C" void onSignal(int signal) {
  const int saved = errno;
  const int fd = pipeOf[signal] - 1;
  const char byte = 1;
  // A full pipe already holds a wake-up for this signal: losing this byte loses nothing.
  if (fd >= 0) {
    const ssize_t written = ::write(fd, &byte, 1);
    static_cast<void>(written);
  }
  errno = saved;
}

}  // namespace

SignalWatch::SignalWatch(int signal, std::function<void()> action) : signal_(signal), action_(std::move(action)) {
  if (signal <= 0 || signal >= NSIG || pipeOf[signal] != 0)
    throw std::invalid_argument("signal " + std::to_string(signal) + " cannot be watched");
  int fds[2];
  if (::pipe2(fds, O_NONBLOCK | O_CLOEXEC) != 0)
    throw std::runtime_error(std::string("no pipe for a signal: ") + std::strerror(errno));
  readFd_ = fds[0];
  writeFd_ = fds[1];
  pipeOf[signal] = writeFd_ + 1;
  Quor::activityManager()->fdReadIs(readFd_, [this] { drain(); });
  struct sigaction wanted {};
  wanted.sa_handler = onSignal;
  sigemptyset(&wanted.sa_mask);
  // No SA_RESTART: the agent's select returns at once and the loop turns.
  ::sigaction(signal, &wanted, &previous_);
}

SignalWatch::~SignalWatch() {
  ::sigaction(signal_, &previous_, nullptr);
  pipeOf[signal_] = 0;
  Quor::activityManager()->fdReadDel(readFd_);
  ::close(readFd_);
  ::close(writeFd_);
}

// Signals that came together run the action once.
void SignalWatch::drain() {
  char bytes[64];
  bool signalled = false;
  while (::read(readFd_, bytes, sizeof bytes) > 0) signalled = true;
  if (signalled) action_();
}

