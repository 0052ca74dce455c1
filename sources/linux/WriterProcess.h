#pragma once
// The table writer of the Linux source, ipsnmp-linux-tables, run as a child process and kept
// running: a writer that dies is started again after a pause that doubles from one second up to
// thirty while it keeps dying. Meanwhile the tables stay as it left them, so the agent goes on
// serving the last state written; a new writer takes the files over and brings them up to date.
//
// The child's end is learnt through a pidfd on the event loop, and only this child is reaped, so
// that other children of the agent are left to whoever made them. The child ends itself when the
// agent dies (it asks for SIGTERM at its parent's death); the destructor ends it with SIGTERM.
#include <sys/types.h>

#include <string>
#include <vector>

#include "platform/quor/Clock.h"

namespace Sources::Linux {

class WriterProcess {
 public:
  // Starts `path` with `args`; the environment is passed on (TARN_ROOT among it).
  WriterProcess(std::string path, std::vector<std::string> args);
  ~WriterProcess();
  WriterProcess(const WriterProcess&) = delete;
  WriterProcess& operator=(const WriterProcess&) = delete;

  // The child's process id, 0 while none runs.
  pid_t pid() const noexcept { return pid_; }
  // How many times it was started.
  U32 starts() const noexcept { return starts_; }

 private:
  class Restart;
  void spawn();
  void onExit();

  std::string path_;
  std::vector<std::string> args_;
  pid_t pid_ = 0;
  int pidfd_ = -1;
  U32 starts_ = 0;
  double pause_ = 1.0;
  double startedAt_ = 0.0;
  Quor::Ptr<Restart> restart_;
};

}  // namespace Sources::Linux
