#pragma once
// The command line of ipsnmp-subagent.
#include <string>
#include <variant>
#include <vector>

struct SubagentOptions {
  // The master's AgentX socket; empty leaves net-snmp's default (/var/agentx/master) or the
  // configuration's agentXSocket.
  std::string agentxSocket;
  // A configuration file read besides the default ones (the sub-agent's are ipsnmp-subagent.conf).
  std::string config;
  // Seconds between pings of the master; a lost master is sought again at the same pace.
  int pingInterval = 5;
  // The log file; empty logs to stderr.
  std::string log;
  // net-snmp debug tokens, comma-separated.
  std::string debugTokens;
  bool help = false;
};

// The options of `args` (without the program's name), or the error that refuses them.
std::variant<SubagentOptions, std::string> parseSubagentOptions(const std::vector<std::string>& args);

extern const char* const subagentUsage;
