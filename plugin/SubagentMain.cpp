// ipsnmp-subagent: the agent of the plug-in as an AgentX sub-agent of a master agent (any snmpd with
// "master agentx"). The same start-up runs as in the plug-in; the registrations, the default
// context's and each VRF's, go to the master with their context names. net-snmp's sub-agent pings
// the master every --ping-interval seconds; when the master goes, it tries again at that pace and,
// once connected, registers every subtree of every context again.
//
// One thread: net-snmp's loop (agent_check_and_process) serves the master's requests, the agent's
// timers and descriptors, and the signals, which reach it through SignalWatch.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "platform/snmp/NetSnmp.h"
#include "plugin/AgentProcess.h"
#include "plugin/SignalWatch.h"
#include "plugin/SubagentOptions.h"

namespace {

const char* const appName = "ipsnmp-subagent";

void configureAgentLibrary(const SubagentOptions& options) {
  // The sub-agent names no object by its MIB name: loading the system's MIB files would only fill
  // its log with the modules that Debian leaves out. MIBS set by the caller still counts.
  ::setenv("MIBS", "", 0);
  if (options.log.empty())
    snmp_enable_stderrlog();
  else
    snmp_enable_filelog(options.log.c_str(), 1);
  if (!options.debugTokens.empty()) {
    debug_register_tokens(options.debugTokens.c_str());
    snmp_set_do_debugging(1);
  }
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 1);  // a sub-agent
  if (!options.agentxSocket.empty())
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, options.agentxSocket.c_str());
  if (!options.config.empty())
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG, options.config.c_str());
  // A master that dies under a write must be a closed connection, found again later, not the end of
  // the sub-agent (snmpd ignores SIGPIPE the same way).
  std::signal(SIGPIPE, SIG_IGN);
  // The sub-agent keeps nothing between runs.
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
}

// The configuration tokens again, without the sub-agent's session: net-snmp's own reconfiguration
// would open a second session to the master.
void rereadConfiguration(const SubagentOptions& options) {
  AgentProcess::configurationReset();
  read_config_files(NORMAL_CONFIG);
  if (!options.config.empty()) read_config_with_type(options.config.c_str(), appName);
  snmp_log(LOG_INFO, "%s: configuration read again\n", appName);
}

}  // namespace

int main(int argc, char** argv) {
  auto parsed = parseSubagentOptions(std::vector<std::string>(argv + 1, argv + argc));
  if (const std::string* error = std::get_if<std::string>(&parsed)) {
    std::fprintf(stderr, "%s: %s\n%s", appName, error->c_str(), subagentUsage);
    return 2;
  }
  const SubagentOptions& options = std::get<SubagentOptions>(parsed);
  if (options.help) {
    std::fputs(subagentUsage, stdout);
    return 0;
  }
  configureAgentLibrary(options);
  init_agent(appName);
  // After init_agent, which sets net-snmp's default of 15 s; an agentxPingInterval line still wins.
  netsnmp_ds_set_int(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_AGENTX_PING_INTERVAL, options.pingInterval);
  // The tokens exist before init_snmp reads the configuration and, as its last step, connects.
  AgentProcess::prepare();
  init_snmp(appName);
  if (!AgentProcess::start()) {
    AgentProcess::stop();
    snmp_shutdown(appName);
    return 1;
  }
  bool running = true;
  {
    SignalWatch terminate(SIGTERM, [&running] { running = false; });
    SignalWatch interrupt(SIGINT, [&running] { running = false; });
    SignalWatch reconfigure(SIGHUP, [&options] { rereadConfiguration(options); });
    snmp_log(LOG_INFO, "%s: running\n", appName);
    while (running) agent_check_and_process(1);
  }
  snmp_log(LOG_INFO, "%s: stopping\n", appName);
  AgentProcess::stop();
  snmp_shutdown(appName);
  return 0;
}
