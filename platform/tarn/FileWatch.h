#pragma once
// Wake-ups for the readers of table files, through one inotify descriptor that the activity
// manager's loop selects on. No thread and no polling: a writer's commit is a write(2) into the file,
// which inotify reports; its exit (even by SIGKILL) closes the file, which inotify reports too.
//
// Why inotify rather than a FIFO or an eventfd handed over a socket: the writer needs to know nothing
// of its readers (no registration, no socket to serve), a tool that lives for a millisecond wakes
// every reader like a daemon does, readers may come and go and the writer may restart, and the kernel
// merges wake-ups that pile up. The event carries no data; what changed is in the table itself.
//
// A watch follows a path, not a file: while the file is missing it watches the nearest existing
// directory above it, and when the file is replaced it moves to the new one.
#include <functional>
#include <string>

#include "platform/quor/Types.h"

namespace Tarn {

class FileWatch {
 public:
  // Calls `changed` from the event loop when the file at `path` is written, closed by a writer,
  // created, replaced or removed.
  FileWatch(std::string path, std::function<void()> changed);
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  const std::string& path() const noexcept { return path_; }
  // Whether the file itself, rather than a directory above it, is being watched.
  bool watchingFile() const noexcept { return watchingFile_; }
  // Chooses again what to watch; called by the dispatcher when the watched thing moved or went.
  void rearm();

 private:
  friend class Inotify;
  std::string path_;
  std::function<void()> changed_;
  int wd_ = -1;
  bool watchingFile_ = false;
};

}  // namespace Tarn
