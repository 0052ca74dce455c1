#pragma once
// The agent's start-up: the MIB containers of the default VRF and of the agent at their fixed paths
// below the root, the statistics entities of the default VRF, and the state machines, wired in their
// binding order from the store (every machine makes its first pass inside its constructor, so the
// store is filled before this runs). The containers must exist before any unit registers, since a
// registration carries its container as a plain pointer taken once.
//
//   snmp/ip/ipmib          IpSnmp::IpMib         the default VRF's address, neighbour and statistics tables
//   snmp/ip/ipforwardmib   IpSnmp::IpForwardMib  the default VRF's routes
//   snmp/ip/ipvrfmib       IpSnmp::IpVrfMib      the VRF tables of the agent
//   snmp/ip/vrf            IpSnmp::VrfMibsDir    the containers of the other VRFs, as vrf.mibs/<vrf>
#include "agent/IpAddressTableSm.h"
#include "agent/VrfIfTableSm.h"
#include "model/IpVrfMib.h"
#include "model/VrfMibs.h"
#include "platform/morvane/Store.h"

struct AgentStartup {
  // Builds the containers under `root` and the machines over `store`.
  AgentStartup(const Quor::Ptr<Quor::Dir>& root, const Morvane::Store& store);
  ~AgentStartup();
  AgentStartup(const AgentStartup&) = delete;
  AgentStartup& operator=(const AgentStartup&) = delete;

  Quor::Ptr<IpSnmp::IpMib> ipMib;
  Quor::Ptr<IpSnmp::IpForwardMib> ipForwardMib;
  Quor::Ptr<IpSnmp::IpVrfMib> ipVrfMib;
  Quor::Ptr<IpSnmp::VrfMibsDir> vrfMibsDir;
  Quor::Ptr<IpSnmp::IpAddressTableSm> ipAddressTableSm;
  Quor::Ptr<IpSnmp::VrfIfTableSm> vrfIfTableSm;
};
