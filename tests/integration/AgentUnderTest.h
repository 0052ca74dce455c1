#pragma once
// The real agent as a user starts it: the launcher, on a free loopback UDP port, serving a scenario
// file in a directory of its own, which the test may rewrite while the agent runs. The agent is the
// plug-in inside snmpd, or the AgentX sub-agent behind snmpd as master; IPSNMP_AGENT_MODE=agentx in
// the environment makes the sub-agent the default, so that whole suites run against either.
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "SnmpTools.h"
#include "Subprocess.h"

namespace IntegrationTest {

enum class AgentMode { plugin, subagent };

// The mode that IPSNMP_AGENT_MODE names: "agentx" the sub-agent, anything else the plug-in.
AgentMode agentModeOfEnvironment();
const char* agentModeName(AgentMode mode);

class AgentUnderTest {
 public:
  // Starts the launcher and waits for its "ready"; ready() tells whether it came. `tables` is the
  // root of the shared-memory tables, for a test that writes them itself (default: a private one);
  // `launcherOptions` go to the launcher as they are ("--source", "linux").
  explicit AgentUnderTest(const std::string& scenario, const std::string& tables = "",
                          AgentMode mode = agentModeOfEnvironment(),
                          const std::vector<std::string>& launcherOptions = {});
  ~AgentUnderTest();
  AgentUnderTest(const AgentUnderTest&) = delete;
  AgentUnderTest& operator=(const AgentUnderTest&) = delete;

  bool ready() const noexcept { return ready_; }
  bool running() { return process_->running(); }
  const std::string& address() const noexcept { return address_; }
  const SnmpTools& tools() const noexcept { return tools_; }

  AgentMode mode() const noexcept { return mode_; }
  // Makes snmpd reload its configuration, and with it the plug-in (the sub-agent reads its own again).
  void reload() { process_->signal(SIGHUP); }
  // The sub-agent's master dies (SIGKILL); true once the launcher has started it again.
  bool masterKilled();
  // The Flitlog ring as the agent writes it on SIGUSR2 (through the launcher); empty when no file
  // came within a few seconds.
  std::string flitlogDump();
  // Replaces the scenario file in one step, as an editor that saves by renaming does.
  void scenarioIs(const std::string& scenario);
  // snmpd's log, the plug-in's messages among it.
  std::string log() const;
  // How often the log says `text`.
  std::size_t logCount(const std::string& text) const;
  // What a failing test prints: the launcher's output and the log.
  std::string diagnostics() const;

 private:
  std::string dir_;
  std::string scenarioPath_;
  std::string address_;
  SnmpTools tools_;
  AgentMode mode_;
  std::unique_ptr<BackgroundProcess> process_;
  bool ready_ = false;
};

}  // namespace IntegrationTest
