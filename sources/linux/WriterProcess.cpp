#include "sources/linux/WriterProcess.h"

#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/quor/Trace.h"

extern char** environ;

namespace Sources::Linux {

namespace {

const Quor::Tracer tracer("Linux", "WriterProcess");
constexpr double firstPause = 1.0;
constexpr double longestPause = 30.0;
// A writer that ran this long is taken as having worked: its next start waits the first pause.
constexpr double healthyRun = 60.0;

}  // namespace

class WriterProcess::Restart final : public Quor::Clock::NotifieeConst {
 public:
  explicit Restart(WriterProcess* owner) : owner_(owner) { notifierIs(Quor::activityManager()->clock()); }
  void onTime() override { owner_->spawn(); }

 private:
  WriterProcess* owner_;
};

WriterProcess::WriterProcess(std::string path, std::vector<std::string> args)
    : path_(std::move(path)), args_(std::move(args)), restart_(Quor::makePtr<Restart>(this)) {
  spawn();
}

WriterProcess::~WriterProcess() {
  restart_->notifierIs(nullptr);
  if (pidfd_ >= 0) {
    Quor::activityManager()->fdReadDel(pidfd_);
    ::close(pidfd_);
  }
  if (pid_ > 0) {
    ::kill(pid_, SIGTERM);
    ::waitpid(pid_, nullptr, 0);
  }
}

void WriterProcess::spawn() {
  std::vector<char*> argv{path_.data()};
  for (std::string& arg : args_) argv.push_back(arg.data());
  argv.push_back(nullptr);
  pid_t child = 0;
  if (int error = ::posix_spawn(&child, path_.c_str(), nullptr, nullptr, argv.data(), environ); error != 0) {
    QTRACE(tracer, 0, "cannot start " << path_ << ": " << std::strerror(error));
    restart_->timeMinIs(Quor::now() + pause_);
    pause_ = std::min(pause_ * 2, longestPause);
    return;
  }
  pid_ = child;
  ++starts_;
  startedAt_ = Quor::now();
  pidfd_ = static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
  if (pidfd_ < 0) {
    QTRACE(tracer, 0, "cannot follow " << path_ << " (pidfd_open: " << std::strerror(errno) << "); not restarted");
    return;
  }
  Quor::activityManager()->fdReadIs(pidfd_, [this] { onExit(); });
  QTRACE(tracer, 1, "started " << path_ << " as " << pid_);
}

void WriterProcess::onExit() {
  int status = 0;
  if (::waitpid(pid_, &status, WNOHANG) != pid_) return;
  Quor::activityManager()->fdReadDel(pidfd_);
  ::close(pidfd_);
  pidfd_ = -1;
  pid_ = 0;
  if (Quor::now() - startedAt_ >= healthyRun) pause_ = firstPause;
  QTRACE(tracer, 0, path_ << " ended (" << (WIFEXITED(status) ? "status " : "signal ")
                          << (WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status)) << "); starting it again in "
                          << pause_ << " s");
  restart_->timeMinIs(Quor::now() + pause_);
  pause_ = std::min(pause_ * 2, longestPause);
}

}  // namespace Sources::Linux
