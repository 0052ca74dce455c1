#include "plugin/AgentProcess.h"

#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "platform/morvane/Store.h"
#include "platform/quor/Reaper.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/AgentLoop.h"
#include "platform/snmp/ContextTeardown.h"
#include "platform/snmp/SnmpUtil.h"
#include "platform/snmp/TraceToSnmpLog.h"
#include "plugin/AgentContexts.h"
#include "plugin/AgentStartup.h"
#include "plugin/OperatorControls.h"
#include "plugin/SubagentContexts.h"
#include "plugin/VrfCommunities.h"
#include "sources/linux/LinuxSource.h"
#include "sources/scenario/ScenarioSource.h"

namespace AgentProcess {

namespace {

// What the agent runs, in the order it is built; members go in the reverse order.
struct Agent {
  Agent(const std::string& scenarioPath, VrfCommunities* vrfCommunities);

  Quor::Ptr<Quor::Dir> root;
  Morvane::Store store;
  Sources::ScenarioSource scenario;
  std::unique_ptr<Sources::LinuxSource> kernel;
  AgentContexts contexts;
  std::unique_ptr<AgentStartup> machines;
  Snmp::AgentLoop loop{Quor::activityManager()};
};

std::unique_ptr<OperatorControls> controls;
// In snmpd only: the sub-agent sees no community.
std::unique_ptr<VrfCommunities> communities;
std::unique_ptr<Agent> agent;
// In the master of ipsnmp-subagent, instead of the agent.
std::unique_ptr<SubagentContexts> subagentContexts;

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

Agent::Agent(const std::string& scenarioPath, VrfCommunities* vrfCommunities)
    : root(Quor::makePtr<Quor::Dir>(systemName())),
      store(Morvane::buildStore(root)),
      scenario(store, scenarioPath),
      contexts(vrfCommunities) {}

void feed(Agent& a, const std::string& scenarioPath) {
  if (environment("IPSNMP_SOURCE") == "linux") {
    a.kernel = std::make_unique<Sources::LinuxSource>(
        a.store, Sources::LinuxSource::Options{.tableWriter = environment("IPSNMP_LINUX_TABLES")});
    if (std::string error = a.kernel->start(); !error.empty())
      snmp_log(LOG_ERR, "ipsnmp: the kernel cannot be followed, the store stays empty: %s\n", error.c_str());
    return;
  }
  if (std::string error = a.scenario.load(); !error.empty())
    snmp_log(LOG_ERR, "ipsnmp: scenario refused, the store stays empty: %s\n", error.c_str());
  if (!scenarioPath.empty())
    if (std::string error = a.scenario.watch(); !error.empty())
      snmp_log(LOG_ERR, "ipsnmp: edits of the scenario will not be seen: %s\n", error.c_str());
}

}  // namespace

void prepare() {
  if (controls) return;
  Snmp::traceToSnmpLog();
  controls = std::make_unique<OperatorControls>();
  if (!controls->inSubagent()) communities = std::make_unique<VrfCommunities>();
}

bool start() {
  if (agent || subagentContexts) return true;
  const std::string scenarioPath = environment("IPSNMP_SCENARIO");
  try {
    prepare();
    if (communities && controls->mode() == OperatorControls::Mode::master) {
      subagentContexts = std::make_unique<SubagentContexts>(*communities);
      snmp_log(LOG_INFO, "ipsnmp: master of sub-agents: serving no objects, following the contexts they register\n");
      return true;
    }
    agent = std::make_unique<Agent>(scenarioPath, communities.get());
    SnmpUtil::rootIs(agent->root);
    feed(*agent, scenarioPath);
    // The containers exist before any registration takes its pointer; the VRF lifecycle opens the
    // other contexts as their VRFs come up, from here on.
    agent->machines = std::make_unique<AgentStartup>(agent->root, agent->store, &agent->contexts);
    agent->contexts.defaultContextIs();
  } catch (const std::exception& e) {
    snmp_log(LOG_ERR, "ipsnmp: start failed: %s\n", e.what());
    stop();
    return false;
  }
  const std::string source = agent->kernel           ? "the Linux kernel"
                             : scenarioPath.empty() ? "the built-in scenario"
                                                    : scenarioPath;
  snmp_log(LOG_INFO, "ipsnmp: serving the default context and %zu VRF contexts, fed by %s\n",
           agent->machines->root->vrfRootDir()->vrfRoots().members(), source.c_str());
  return true;
}

void configurationReset() {
  if (controls) controls->configurationReset();
}

void stop() {
  subagentContexts.reset();
  // The machines first: the VRF lifecycle closes the VRFs' contexts as it goes.
  if (agent) agent->machines.reset();
  Quor::reapAll();  // what VRFs left to the reaper goes before the plug-in's code does
  Snmp::unregisterHandlersOfThisLibrary();
  agent.reset();
  SnmpUtil::rootIs(nullptr);
  communities.reset();
  controls.reset();
  Quor::traceSinkIs(nullptr);
}

}  // namespace AgentProcess
