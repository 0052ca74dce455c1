#pragma once
// Writes a scenario's tables (TableSync.h) in a child process, so that the agent's thread never
// waits on a table: not for a million routes, not for another writer's lock. The agent only forks
// and later hears, on the activity manager's loop, how the write ended.
//
// The child is a fork of the agent that runs the write and leaves with _exit, touching nothing else
// of the process it came from; it closes the agent's descriptors, so that it holds none of its
// sockets. It does share the agent's memory mappings, and with them the open files behind them: a
// table writer's lock held in the agent would stay held while a child lives, which is one more
// reason why the agent itself never writes a table. It reports through a pipe: "ok <written> <erased>" when the tables
// are in line, else the error. A child that dies (killed, out of memory, out of room in /dev/shm)
// leaves every record whole, as the table format guarantees, and the agent serves what the
// tables hold.
#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>

#include "sources/scenario/TableSync.h"

namespace Sources {

class TableWriteProcess {
 public:
  // Runs on the loop once the child has ended: `error` empty on success, with what was written.
  using Done = std::function<void(const std::string& error, const TableSyncCounts& counts)>;

  // Starts the child. Raises std::system_error when it cannot be made.
  TableWriteProcess(std::shared_ptr<const TablesScenario> tables, const std::string& root, double lockWait, Done done);
  // A child still running is killed: what it wrote stays, whole record by whole record.
  ~TableWriteProcess();
  TableWriteProcess(const TableWriteProcess&) = delete;
  TableWriteProcess& operator=(const TableWriteProcess&) = delete;

 private:
  [[noreturn]] static void runChild(int reportFd, const TablesScenario& tables, const std::string& root,
                                    double lockWait);
  void onReadable();
  // Stops following the pipe and collects the child: its wait status, -1 when it was collected
  // elsewhere (then the report alone tells).
  int reap();

  pid_t pid_ = -1;
  int fd_ = -1;
  std::string report_;
  Done done_;
};

}  // namespace Sources
