#pragma once
// The real agent as a user starts it: the launcher, on a free loopback UDP port, serving a scenario
// file in a directory of its own, which the test may rewrite while the agent runs.
#include <csignal>
#include <memory>
#include <string>

#include "SnmpTools.h"
#include "Subprocess.h"

namespace IntegrationTest {

class AgentUnderTest {
 public:
  // Starts the launcher and waits for its "ready"; ready() tells whether it came. `tables` is the
  // root of the shared-memory tables, for a test that writes them itself (default: a private one).
  explicit AgentUnderTest(const std::string& scenario, const std::string& tables = "");
  ~AgentUnderTest();
  AgentUnderTest(const AgentUnderTest&) = delete;
  AgentUnderTest& operator=(const AgentUnderTest&) = delete;

  bool ready() const noexcept { return ready_; }
  bool running() { return process_->running(); }
  const std::string& address() const noexcept { return address_; }
  const SnmpTools& tools() const noexcept { return tools_; }

  // Makes snmpd reload its configuration, and with it the plug-in.
  void reload() { process_->signal(SIGHUP); }
  // Replaces the scenario file in one step, as an editor that saves by renaming does.
  void scenarioIs(const std::string& scenario);
  // snmpd's log, the plug-in's messages among it.
  std::string log() const;
  // What a failing test prints: the launcher's output and the log.
  std::string diagnostics() const;

 private:
  std::string dir_;
  std::string scenarioPath_;
  std::string address_;
  SnmpTools tools_;
  std::unique_ptr<BackgroundProcess> process_;
  bool ready_ = false;
};

}  // namespace IntegrationTest
