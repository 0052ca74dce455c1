#pragma once
// The agent's start-up: the MIB containers at their fixed paths below the root, the shared-memory
// tables of the default VRF and of the agent, the statistics entities of the default VRF, and Root
// with every machine, wired in the binding order from the store (every machine makes its first pass
// inside its constructor, so the store is filled before this runs). The containers must exist before
// any unit registers, since a registration carries its container as a plain pointer taken once.
//
//   snmp/ip/ipmib          IpSnmp::IpMib         the default VRF's address, neighbour and statistics tables
//   snmp/ip/ipforwardmib   IpSnmp::IpForwardMib  the default VRF's routes
//   snmp/ip/ipvrfmib       IpSnmp::IpVrfMib      the VRF tables of the agent
//   snmp/ip/vrf            IpSnmp::VrfMibsDir    the containers of the other VRFs, as vrf.mibs/<vrf>
//
// The default VRF's route and forwarding tables, the one ARP table of all VRFs and the VRF id map
// are mounted from shared memory at "routing/status", "forwarding/status", "arp/status" and
// "vrf/idmap" below $TARN_ROOT; a VRF's own route tables are mounted by the VRF lifecycle.
#include "agent/Root.h"
#include "agent/SnmpContexts.h"
#include "platform/morvane/Store.h"

struct AgentStartup {
  // Builds the containers under `root` and the machines over `store`; `contexts` opens and closes
  // the VRFs' SNMP contexts and must outlive this.
  AgentStartup(const Quor::Ptr<Quor::Dir>& root, const Morvane::Store& store, IpSnmp::SnmpContexts* contexts);
  // The machines go first (Root's order), then the mounts; the containers stay while registrations
  // may still point at them.
  ~AgentStartup();
  AgentStartup(const AgentStartup&) = delete;
  AgentStartup& operator=(const AgentStartup&) = delete;

  Quor::Ptr<IpSnmp::IpMib> ipMib;
  Quor::Ptr<IpSnmp::IpForwardMib> ipForwardMib;
  Quor::Ptr<IpSnmp::IpVrfMib> ipVrfMib;
  Quor::Ptr<IpSnmp::VrfMibsDir> vrfMibsDir;
  Quor::Ptr<const Morvane::EntityManager> entityManager;
  Quor::Ptr<IpSnmp::Root> root;
};
