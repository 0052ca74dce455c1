#pragma once
// The agent in a process that hosts net-snmp's agent library, whether snmpd with the plug-in loaded
// or the AgentX sub-agent: the operator's controls, the root entity and the store below it, the
// source that fills the store, the bridge that runs the framework's timers and descriptors in the
// agent's loop, the MIB containers and the state machines, every unit in the default context, and
// the contexts of the VRFs as they come up.
//
// Its inputs come from the environment: IPSNMP_SOURCE ("linux" mirrors the kernel, with the table
// writer IPSNMP_LINUX_TABLES; anything else serves a scenario), IPSNMP_SCENARIO (the scenario file,
// watched for edits; without it the built-in default scenario), TARN_ROOT (the shared-memory tables).
namespace AgentProcess {

// The configuration tokens (in snmpd those of the VRFs' communities too), the Flitlog ring and its
// dump signal, before the agent's configuration is read; start() does it when it has not been done.
void prepare();
// Builds and registers everything; on failure logs why, leaves nothing of the agent behind and
// returns false. Does nothing while the agent runs. In snmpd with "ipsnmpMode master" it builds no
// agent and only follows the contexts that sub-agents register, for their communities.
bool start();
// Forgets what the configuration tokens said, before the configuration is read again.
void configurationReset();
// Undoes start() and prepare() in the reverse order, leaving the agent no registration, timer,
// descriptor or configuration token of ours.
void stop();

}  // namespace AgentProcess
