#include "plugin/SubagentOptions.h"

#include <charconv>

const char* const subagentUsage =
    "usage: ipsnmp-subagent [options]\n"
    "  --agentx-socket PATH   the master's AgentX socket (default: the configuration's agentXSocket,\n"
    "                         else /var/agentx/master)\n"
    "  --config FILE          a configuration file read besides ipsnmp-subagent.conf\n"
    "  --ping-interval SECS   seconds between pings of the master, and between attempts to reach it\n"
    "                         again once it is gone (default 5)\n"
    "  --log FILE             log here (default: stderr)\n"
    "  --debug TOKENS         net-snmp debug tokens, comma-separated\n"
    "  -h, --help             this text\n"
    "The agent's inputs come from the environment as for the plug-in: IPSNMP_SCENARIO, IPSNMP_SOURCE,\n"
    "IPSNMP_LINUX_TABLES, TARN_ROOT. SIGHUP reads the configuration again, SIGUSR2 writes the Flitlog\n"
    "ring, SIGTERM and SIGINT stop the sub-agent.\n";

std::variant<SubagentOptions, std::string> parseSubagentOptions(const std::vector<std::string>& args) {
  SubagentOptions options;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& option = args[i];
    if (option == "-h" || option == "--help") {
      options.help = true;
      continue;
    }
    std::string* text = option == "--agentx-socket" ? &options.agentxSocket
                        : option == "--config"      ? &options.config
                        : option == "--log"         ? &options.log
                        : option == "--debug"       ? &options.debugTokens
                                                    : nullptr;
    if (!text && option != "--ping-interval") return "unknown option '" + option + "'";
    if (i + 1 >= args.size() || args[i + 1].empty()) return option + " needs a value";
    const std::string& value = args[++i];
    if (text) {
      *text = value;
      continue;
    }
    int seconds = 0;
    auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), seconds);
    if (ec != std::errc() || end != value.data() + value.size() || seconds < 1)
      return "--ping-interval needs a whole number of seconds, at least 1, not '" + value + "'";
    options.pingInterval = seconds;
  }
  return options;
}
