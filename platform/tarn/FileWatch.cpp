#include "platform/tarn/FileWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <set>
#include <vector>

#include "platform/quor/Clock.h"
#include "platform/tarn/MappedFile.h"

namespace Tarn {

namespace {
constexpr U32 fileEvents = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr U32 dirEvents = IN_CREATE | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;
}  // namespace

// The process's inotify descriptor and which watches each watch descriptor serves. Several watches
// may share a descriptor: inotify gives the same one for the same inode.
class Inotify {
 public:
  static Inotify& instance() {
    static auto* inotify = new Inotify;  // never destroyed: watches may go in static destructors
    return *inotify;
  }

  void add(FileWatch* w, const std::string& path, U32 mask) {
    w->wd_ = ::inotify_add_watch(fd_.get(), path.c_str(), mask);
    if (w->wd_ >= 0) users_[w->wd_].push_back(w);
  }

  void remove(FileWatch* w) {
    if (w->wd_ < 0) return;
    auto it = users_.find(w->wd_);
    if (it != users_.end()) {
      std::erase(it->second, w);
      if (it->second.empty()) {
        ::inotify_rm_watch(fd_.get(), w->wd_);
        users_.erase(it);
      }
    }
    w->wd_ = -1;
  }

 private:
  Inotify() : fd_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (!fd_) throwSystemError("inotify_init1", "");
    Quor::activityManager()->fdReadIs(fd_.get(), [this] { readEvents(); });
  }

  // Drains the descriptor, then tells each concerned watch once. A watch whose file or directory
  // moved, went or appeared below it chooses again what to watch before it is told.
  void readEvents() {
    std::set<FileWatch*> told, moved;
    alignas(inotify_event) char buffer[16384];
    ssize_t n;
    while ((n = ::read(fd_.get(), buffer, sizeof buffer)) > 0) {
      for (char* p = buffer; p < buffer + n;) {
        auto* event = reinterpret_cast<inotify_event*>(p);
        p += sizeof(inotify_event) + event->len;
        if (event->mask & IN_Q_OVERFLOW) {
          for (auto& [wd, watches] : users_) told.insert(watches.begin(), watches.end());
          continue;
        }
        auto it = users_.find(event->wd);
        if (it == users_.end()) continue;
        if (event->mask & IN_IGNORED) {  // the kernel dropped the watch: the inode is gone
          for (FileWatch* w : it->second) w->wd_ = -1;
          moved.insert(it->second.begin(), it->second.end());
          told.insert(it->second.begin(), it->second.end());
          users_.erase(it);
          continue;
        }
        for (FileWatch* w : it->second) {
          bool relevant = w->watchingFile_ ? true : (event->mask & (IN_DELETE_SELF | IN_MOVE_SELF)) || event->len;
          if (!relevant) continue;
          if (!w->watchingFile_ || (event->mask & (IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF))) moved.insert(w);
          told.insert(w);
        }
      }
    }
    for (FileWatch* w : moved) w->rearm();
    // A watch told here may destroy other watches: tell only those still registered.
    for (FileWatch* w : told) {
      if (std::find(live_.begin(), live_.end(), w) == live_.end()) continue;
      std::function<void()> changed = w->changed_;  // the call may destroy the watch
      changed();
    }
  }

 public:
  std::vector<FileWatch*> live_;

 private:
  FileDescriptor fd_;
  std::map<int, std::vector<FileWatch*>> users_;
};

FileWatch::FileWatch(std::string path, std::function<void()> changed)
    : path_(std::move(path)), changed_(std::move(changed)) {
  Inotify::instance().live_.push_back(this);
  rearm();
}

FileWatch::~FileWatch() {
  Inotify& inotify = Inotify::instance();
  inotify.remove(this);
  std::erase(inotify.live_, this);
}

void FileWatch::rearm() {
  Inotify& inotify = Inotify::instance();
  inotify.remove(this);
  inotify.add(this, path_, fileEvents);
  watchingFile_ = wd_ >= 0;
  if (watchingFile_) return;
  for (std::filesystem::path dir = std::filesystem::path(path_).parent_path(); !dir.empty();
       dir = dir.parent_path()) {
    inotify.add(this, dir.string(), dirEvents);
    if (wd_ >= 0 || dir == dir.root_path()) return;
  }
}

}  // namespace Tarn
