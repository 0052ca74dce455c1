// The plug-in's entry points, called by snmpd's dlmod: init_ipsnmp when the library is loaded
// ("dlmod ipsnmp /path/ipsnmp.so" in snmpd.conf), deinit_ipsnmp before it is unloaded (at a
// reconfiguration, and when snmpd stops).
//
// Start: the root entity of the process and the store below it, the scenario that fills the store
// (IPSNMP_SCENARIO names its file; without it the embedded default scenario), the bridge that runs
// the framework's timers and descriptors in snmpd's loop, the MIB containers and the state machines
// over the filled store, every enrolled unit in the default context, and the contexts of the VRFs. Stop undoes it in the reverse order, and leaves the agent no
// registration, timer or descriptor that points into the library.
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "platform/morvane/Store.h"
#include "platform/quor/Exception.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/AgentLoop.h"
#include "platform/snmp/ContextTeardown.h"
#include "platform/snmp/HandlerRegistration.h"
#include "platform/snmp/SnmpUtil.h"
#include "platform/snmp/TraceToSnmpLog.h"
#include "plugin/AgentContexts.h"
#include "plugin/AgentStartup.h"
#include "sources/linux/LinuxSource.h"
#include "sources/scenario/ScenarioSource.h"

extern "C" {
void init_ipsnmp();
void deinit_ipsnmp();
}

namespace {

// What the plug-in runs, in the order it is built; members go in the reverse order.
struct Plugin {
  explicit Plugin(const std::string& scenarioPath);

  Quor::Ptr<Quor::Dir> root;
  Morvane::Store store;
  Sources::ScenarioSource scenario;
  std::unique_ptr<Sources::LinuxSource> kernel;
  AgentContexts contexts;
  std::unique_ptr<AgentStartup> agent;
  Snmp::AgentLoop loop{Quor::activityManager()};
};

std::unique_ptr<Plugin> plugin;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// The root is named after the system, as the traces that name entities show it.
Quor::Name systemName() {
  char name[256] = {};
  if (::gethostname(name, sizeof name - 1) != 0 || !*name) return Quor::Name("ipsnmp");
  return Quor::Name(name);
}

Plugin::Plugin(const std::string& scenarioPath)
    : root(Quor::makePtr<Quor::Dir>(systemName())),
      store(Morvane::buildStore(root)),
      scenario(store, scenarioPath) {}

void configureTraces() {
  Snmp::traceToSnmpLog();
  // Refused scenarios and applied ones belong in the agent's log in any case.
  Quor::traceConfigure("Scenario:0-1");
  const std::string spec = environment("IPSNMP_TRACE");
  try {
    Quor::traceConfigure(spec);
  } catch (const Quor::RangeException& e) {
    snmp_log(LOG_ERR, "ipsnmp: IPSNMP_TRACE ignored: %s\n", e.what());
  }
}

}  // namespace

void init_ipsnmp() {
  if (plugin) return;
  configureTraces();
  const std::string scenarioPath = environment("IPSNMP_SCENARIO");
  try {
    plugin = std::make_unique<Plugin>(scenarioPath);
    SnmpUtil::rootIs(plugin->root);
    if (environment("IPSNMP_SOURCE") == "linux") {
      plugin->kernel = std::make_unique<Sources::LinuxSource>(
          plugin->store, Sources::LinuxSource::Options{.tableWriter = environment("IPSNMP_LINUX_TABLES")});
      if (std::string error = plugin->kernel->start(); !error.empty())
        snmp_log(LOG_ERR, "ipsnmp: the kernel cannot be followed, the store stays empty: %s\n", error.c_str());
    } else {
      if (std::string error = plugin->scenario.load(); !error.empty())
        snmp_log(LOG_ERR, "ipsnmp: scenario refused, the store stays empty: %s\n", error.c_str());
      if (!scenarioPath.empty())
        if (std::string error = plugin->scenario.watch(); !error.empty())
          snmp_log(LOG_ERR, "ipsnmp: edits of the scenario will not be seen: %s\n", error.c_str());
    }
    // The containers exist before any registration takes its pointer; the VRF lifecycle opens the
    // other contexts as their VRFs come up, from here on.
    plugin->agent = std::make_unique<AgentStartup>(plugin->root, plugin->store, &plugin->contexts);
    Snmp::registerAllInContext("");
  } catch (const std::exception& e) {
    snmp_log(LOG_ERR, "ipsnmp: start failed: %s\n", e.what());
    deinit_ipsnmp();
    return;
  }
  const std::string source = plugin->kernel ? "the Linux kernel" : scenarioPath.empty() ? "the built-in scenario" : scenarioPath;
  snmp_log(LOG_INFO, "ipsnmp: serving the default context and %zu VRF contexts, fed by %s\n",
           plugin->agent->root->vrfRootDir()->vrfRoots().members(), source.c_str());
}

void deinit_ipsnmp() {
  // The machines first: the VRF lifecycle closes the VRFs' contexts as it goes.
  if (plugin) plugin->agent.reset();
  Snmp::unregisterHandlersOfThisLibrary();
  plugin.reset();
  SnmpUtil::rootIs(nullptr);
  Quor::traceSinkIs(nullptr);
}
