#include "Subprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace IntegrationTest {

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point after(double seconds) {
  return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

int millisUntil(Clock::time_point deadline) {
  auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return left < 0 ? 0 : static_cast<int>(left);
}

// Forks `argv` with stdout (and stderr too when `mergeStderr`) on a pipe; returns the read end.
pid_t spawn(const std::vector<std::string>& argv, bool mergeStderr, bool ownGroup, int& readEnd) {
  int fds[2];
  if (::pipe2(fds, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
  std::vector<char*> args;
  for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  pid_t pid = ::fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    if (ownGroup) ::setpgid(0, 0);
    ::dup2(fds[1], STDOUT_FILENO);
    if (mergeStderr) ::dup2(fds[1], STDERR_FILENO);
    // Nothing else is passed on: a descriptor of the test's, such as that of the lock the suite runs
    // under (flock), would stay held by a daemon or an agent that outlives a killed test.
    ::close_range(3, ~0u, 0);
    ::execvp(args[0], args.data());
    ::_exit(127);
  }
  if (ownGroup) ::setpgid(pid, pid);
  ::close(fds[1]);
  readEnd = fds[0];
  return pid;
}

int statusOf(int waitStatus) {
  return WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : 128 + WTERMSIG(waitStatus);
}

// Reads what is available within the deadline; false at end of output.
bool readSome(int fd, std::string& into, Clock::time_point deadline) {
  pollfd p{fd, POLLIN, 0};
  if (::poll(&p, 1, millisUntil(deadline)) <= 0) return true;
  char buffer[4096];
  ssize_t n = ::read(fd, buffer, sizeof buffer);
  if (n <= 0) return false;
  into.append(buffer, static_cast<std::size_t>(n));
  return true;
}

}  // namespace

CommandResult runCommand(const std::vector<std::string>& argv, double timeoutSeconds) {
  int out;
  pid_t pid = spawn(argv, true, false, out);
  CommandResult result{-1, {}};
  const auto deadline = after(timeoutSeconds);
  while (Clock::now() < deadline && readSome(out, result.output, deadline)) {
  }
  ::close(out);
  if (Clock::now() >= deadline) ::kill(pid, SIGKILL);
  int status = 0;
  ::waitpid(pid, &status, 0);
  result.exitStatus = statusOf(status);
  return result;
}

BackgroundProcess::BackgroundProcess(const std::vector<std::string>& argv) {
  pid_ = spawn(argv, false, true, stdout_);
}

BackgroundProcess::~BackgroundProcess() {
  if (pid_ > 0) {
    // The launcher stops its agent on SIGTERM; the group's SIGKILL is for what outlives the grace.
    ::kill(-pid_, SIGTERM);
    const auto deadline = after(15.0);
    while (running() && Clock::now() < deadline) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ::kill(-pid_, SIGKILL);
    if (!reaped_) ::waitpid(pid_, nullptr, 0);
  }
  if (stdout_ >= 0) ::close(stdout_);
}

bool BackgroundProcess::waitForLine(const std::string& line, double timeoutSeconds) {
  const auto deadline = after(timeoutSeconds);
  while (true) {
    for (auto eol = pending_.find('\n'); eol != std::string::npos; eol = pending_.find('\n')) {
      std::string got = pending_.substr(0, eol);
      pending_.erase(0, eol + 1);
      if (got == line) return true;
    }
    if (Clock::now() >= deadline) return false;
    std::string chunk;
    if (!readSome(stdout_, chunk, deadline)) return false;
    output_ += chunk;
    pending_ += chunk;
  }
}

void BackgroundProcess::signal(int number) {
  if (running()) ::kill(pid_, number);
}

bool BackgroundProcess::running() {
  if (pid_ <= 0 || reaped_) return false;
  reaped_ = ::waitpid(pid_, nullptr, WNOHANG) == pid_;
  return !reaped_;
}

}  // namespace IntegrationTest
