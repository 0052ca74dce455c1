// The plug-in's entry points, called by snmpd's dlmod: init_ipsnmp when the library is loaded
// ("dlmod ipsnmp /path/ipsnmp.so" in snmpd.conf), deinit_ipsnmp before it is unloaded (at a
// reconfiguration, and when snmpd stops). The agent they start and stop is the one the AgentX
// sub-agent runs (AgentProcess).
#include "plugin/AgentProcess.h"

extern "C" {
void init_ipsnmp();
void deinit_ipsnmp();
}

void init_ipsnmp() { AgentProcess::start(); }

void deinit_ipsnmp() { AgentProcess::stop(); }
