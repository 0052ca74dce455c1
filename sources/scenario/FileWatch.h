#pragma once
// Tells when a file has been saved, on the agent's event loop.
//
// The watch is on the file's directory, not on the file: an editor that saves by writing a new file
// and renaming it over the old one replaces the inode, and a watch on the old inode would go quiet.
// A save is a file of that name closed after writing, or renamed into place; a burst of events read
// at once is one save. The inotify descriptor is served by Quor::activityManager(): no thread, no
// polling.
#include <functional>
#include <string>

namespace Sources {

class FileWatch {
 public:
  // Raises std::system_error when the directory cannot be watched.
  FileWatch(const std::string& path, std::function<void()> saved);
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

 private:
  void onReadable();

  int fd_;
  std::string name_;
  std::function<void()> saved_;
};

}  // namespace Sources
