#include "sources/scenario/TableWriteProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "platform/quor/Clock.h"

namespace Sources {

namespace {

void writeAll(int fd, const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    ssize_t n = ::write(fd, text.data() + at, text.size() - at);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;
    at += static_cast<std::size_t>(n);
  }
}

}  // namespace

TableWriteProcess::TableWriteProcess(std::shared_ptr<const TablesScenario> tables, const std::string& root,
                                     double lockWait, Done done)
    : done_(std::move(done)) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  pid_ = ::fork();
  if (pid_ < 0) {
    int error = errno;
    ::close(ends[0]);
    ::close(ends[1]);
    throw std::system_error(error, std::generic_category(), "fork");
  }
  if (pid_ == 0) runChild(ends[1], *tables, root, lockWait);
  ::close(ends[1]);
  fd_ = ends[0];
  ::fcntl(fd_, F_SETFL, ::fcntl(fd_, F_GETFL) | O_NONBLOCK);
  Quor::activityManager()->fdReadIs(fd_, [this] { onReadable(); });
}

TableWriteProcess::~TableWriteProcess() {
  if (fd_ < 0) return;
  ::kill(pid_, SIGKILL);
  reap();
}

void TableWriteProcess::runChild(int reportFd, const TablesScenario& tables, const std::string& root,
                                 double lockWait) {
  // The agent's signal handlers mean nothing here, and none of its descriptors is needed: a child
  // that outlived a restart of the agent must not hold the agent's sockets.
  for (int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) ::signal(signal, SIG_DFL);
  if (reportFd != 3) {
    ::dup2(reportFd, 3);
    reportFd = 3;
  }
  ::close_range(4, ~0u, 0);
  std::string report;
  int status = 0;
  try {
    TableSyncCounts counts = syncTables(tables, root, lockWait);
    report = "ok " + std::to_string(counts.written) + " " + std::to_string(counts.erased);
  } catch (const std::exception& e) {
    report = e.what();
    status = 1;
  }
  writeAll(reportFd, report);
  ::_exit(status);
}

void TableWriteProcess::onReadable() {
  char buffer[4096];
  ssize_t n;
  while ((n = ::read(fd_, buffer, sizeof buffer)) > 0) report_.append(buffer, static_cast<std::size_t>(n));
  if (n < 0 && (errno == EAGAIN || errno == EINTR)) return;  // more to come, or a wake-up meant for another
  const int status = reap();

  std::string error;
  TableSyncCounts counts;
  unsigned long long written = 0, erased = 0;
  if (std::sscanf(report_.c_str(), "ok %llu %llu", &written, &erased) == 2) {
    counts = {written, erased};
  } else if (!report_.empty()) {
    error = report_;
  } else if (status != -1 && WIFSIGNALED(status)) {
    error = "the table writer was killed by signal " + std::to_string(WTERMSIG(status));
  } else {
    error = "the table writer ended without a report";
  }
  // Done may end this object: call it last, from a copy.
  Done done = std::move(done_);
  done(error, counts);
}

int TableWriteProcess::reap() {
  Quor::activityManager()->fdReadDel(fd_);
  ::close(fd_);
  fd_ = -1;
  int status = 0;
  return ::waitpid(pid_, &status, 0) == pid_ ? status : -1;
}

}  // namespace Sources
