// The plug-in's entry points, called by snmpd's dlmod: init_ipsnmp when the library is loaded
// ("dlmod ipsnmp /path/ipsnmp.so" in snmpd.conf), deinit_ipsnmp before it is unloaded (at a
// reconfiguration, and when snmpd stops). The agent they start and stop is the one the AgentX
// sub-agent runs (AgentProcess).
//
// snmpd loads the library while it reads its configuration, and the plug-in's own lines (such as
// ipsnmpTrace) follow the dlmod line: the loading only registers those tokens, and the agent starts
// once the whole configuration is read, so that its start-up is traced as configured. A library
// loaded at another time (through UCD-DLMOD-MIB) starts at the next turn of the agent's loop.
#include "platform/snmp/NetSnmp.h"
#include "platform/snmp/Owners.h"
#include "plugin/AgentProcess.h"

extern "C" {
void init_ipsnmp();
void deinit_ipsnmp();
}

namespace {

Snmp::Alarm nextTurn;

int onConfigurationRead(int, int, void*, void*) {
  nextTurn.cancel();
  AgentProcess::start();
  return SNMPERR_SUCCESS;
}

void onNextTurn(unsigned int, void*) {
  nextTurn.fired();
  AgentProcess::start();
}

}  // namespace

void init_ipsnmp() {
  AgentProcess::prepare();
  snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_POST_READ_CONFIG, onConfigurationRead, nullptr);
  nextTurn = Snmp::Alarm({0, 0}, onNextTurn, nullptr);
}

void deinit_ipsnmp() {
  nextTurn.cancel();
  snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_POST_READ_CONFIG, onConfigurationRead, nullptr, 1);
  AgentProcess::stop();
}
