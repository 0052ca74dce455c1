#pragma once
// Running the real programs of an integration test: the command-line tools, which run to their end,
// and the agent, which runs until the test stops it.
#include <sys/types.h>

#include <string>
#include <vector>

namespace IntegrationTest {

struct CommandResult {
  int exitStatus;      // the program's exit status; 128 + signal when a signal ended it
  std::string output;  // stdout and stderr, interleaved
};

// Runs `argv` to its end, killing it after `timeoutSeconds`.
CommandResult runCommand(const std::vector<std::string>& argv, double timeoutSeconds = 30.0);

// A program started in a process group of its own, whose stdout is read line by line.
class BackgroundProcess {
 public:
  explicit BackgroundProcess(const std::vector<std::string>& argv);
  // Stops the whole group: SIGTERM, then SIGKILL for whatever is left after a grace period.
  ~BackgroundProcess();
  BackgroundProcess(const BackgroundProcess&) = delete;
  BackgroundProcess& operator=(const BackgroundProcess&) = delete;

  // Reads stdout until a line equal to `line` appears: false at end of output or after the timeout.
  bool waitForLine(const std::string& line, double timeoutSeconds);
  bool running();
  void signal(int number);
  // Everything read from stdout so far.
  const std::string& output() const noexcept { return output_; }

 private:
  pid_t pid_ = -1;
  bool reaped_ = false;
  int stdout_ = -1;
  std::string output_;
  std::string pending_;
};

}  // namespace IntegrationTest
