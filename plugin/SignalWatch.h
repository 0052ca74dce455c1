#pragma once
// A signal turned into work on the event loop. The handler only writes a byte into a pipe (all that is
// safe inside a signal handler); the loop hears the pipe and runs the action between requests, so the
// action may do anything the agent's thread does. The signal's previous disposition comes back when
// the watch goes.
#include <signal.h>

#include <functional>

class SignalWatch {
 public:
  SignalWatch(int signal, std::function<void()> action);
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  void drain();

  int signal_;
  int readFd_ = -1;
  int writeFd_ = -1;
  struct sigaction previous_ {};
  std::function<void()> action_;
};

