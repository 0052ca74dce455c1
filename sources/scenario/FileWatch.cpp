#include "sources/scenario/FileWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/quor/Clock.h"

namespace Sources {

namespace {

std::system_error lastError(const std::string& what) { return std::system_error(errno, std::generic_category(), what); }

}  // namespace

FileWatch::FileWatch(const std::string& path, std::function<void()> saved)
    : fd_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), saved_(std::move(saved)) {
  if (fd_ < 0) throw lastError("inotify_init1");
  auto slash = path.rfind('/');
  std::string dir = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  name_ = slash == std::string::npos ? path : path.substr(slash + 1);
  if (::inotify_add_watch(fd_, dir.c_str(), IN_CLOSE_WRITE | IN_MOVED_TO) < 0) {
    std::system_error failure = lastError("cannot watch " + dir);
    ::close(fd_);
    throw failure;
  }
  Quor::activityManager()->fdReadIs(fd_, [this] { onReadable(); });
}

FileWatch::~FileWatch() {
  Quor::activityManager()->fdReadDel(fd_);
  ::close(fd_);
}

void FileWatch::onReadable() {
  alignas(inotify_event) char buffer[4096];
  bool ours = false;
  for (ssize_t n; (n = ::read(fd_, buffer, sizeof buffer)) > 0;) {
    for (ssize_t at = 0; at < n;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
      if (event->len && name_ == event->name) ours = true;
      at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
  }
  if (ours) saved_();
}

}  // namespace Sources
