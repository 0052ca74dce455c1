#pragma once
// A scenario as read from its file: the state that the store and the shared-memory tables are to
// hold, checked and typed, before any of it is applied. What a scenario leaves out is absent from the
// store (see docs/scenario.md).
#include <map>
#include <optional>
#include <set>

#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/IntfId.h"
#include "platform/pelt/IpAddr.h"
#include "platform/pelt/RouteDistinguisher.h"
#include "platform/pelt/VrfName.h"
#include "platform/pelt/VrfState.h"
#include "sources/scenario/TableScenario.h"

namespace Sources {

// Routing of the default VRF.
struct RoutingScenario {
  bool ipv4 = false;
  bool ipv6 = false;
};

struct VrfStatusScenario {
  Ip::VrfState state = Ip::vrfStateActive;
  Quor::String8 networkNamespace;
  std::optional<U64> nsInode;
};

// A VRF other than the default; each part that is present is one entity of the store.
struct VrfScenario {
  std::optional<bool> routingIpv4;                 // Routing::Config under routing/vrf/config
  bool published = false;                          // entry of routing/vrf/info
  std::optional<Pelt::RouteDistinguisher> config;  // Ip::VrfConfig with its route distinguisher
  std::optional<VrfStatusScenario> status;         // Ip::VrfStatusLocal
};

// One side, configuration or status, of an interface's addressing.
struct IntfSideScenario {
  std::optional<L3::VrfName> vrf;  // absent: no L3 object
  Pelt::IpAddrWithMask ipv4;
  std::set<Pelt::Ip6AddrWithMask> ipv6;
};

struct IntfPresence {
  Quor::Name kind;
  S32 ifIndex;
};

struct IntfScenario {
  std::optional<IntfPresence> presence;     // Interface::IntfStatus
  std::optional<IntfSideScenario> config;   // Ip::IpIntfConfig and Ip6::IntfConfig
  std::optional<IntfSideScenario> status;   // Ip::IpIntfStatus and Ip6::IntfStatus
};

// The agent's status; a flag left out is not managed by the scenario.
struct SnmpScenario {
  std::optional<bool> initialized;
  std::optional<bool> coldStart;
};

struct Scenario {
  RoutingScenario routing;
  std::map<L3::VrfName, VrfScenario> vrfs;
  std::map<Pelt::IntfId, IntfScenario> interfaces;
  SnmpScenario snmp;
  TablesScenario tables;  // the shared-memory tables, not the store
};

}  // namespace Sources
