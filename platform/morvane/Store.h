#pragma once
// The tree of the store's entities and the one call that builds it.
//
// buildStore(root) makes these entities under `root`, each empty (routing off, no members):
//
//   Morvane/routing/config                 Routing::Config         IPv4 routing of the default VRF
//   Morvane/routing/vrf/config             Routing::VrfConfigDir   IPv4 routing per other VRF,
//                                                                  reached as .vrfConfig/<vrf>
//   Morvane/routing/vrf/info               Quor::Dir               one entry per VRF whose routing
//                                                                  side is up, named by the VRF
//   Morvane/routing6/config                Routing6::Config        IPv6 routing of the default VRF
//   Morvane/ip/config                      Ip::Config              IPv4 interface configuration
//   Morvane/ip/status                      Ip::Status              IPv4 interface status
//   Morvane/ip/vrf/config                  Ip::AllVrfConfig        VRF configuration
//   Morvane/ip/vrf/status/local            Ip::AllVrfStatusLocal   VRF local status
//   Morvane/ip6/config                     Ip6::Config             IPv6 interface configuration
//   Morvane/ip6/status                     Ip6::Status             IPv6 interface status
//   Morvane/interface/status/all           Interface::AllIntfStatusDir  interfaces that exist
//   Morvane/snmp/status                    Snmp::Status            the SNMP agent's status
//
// The intermediate names are Quor::Dir. The Store returned holds a writable pointer to each entity
// (for the sources that fill the store; the system's readers take them as const) and the
// EntityManager of the tree.
#include "platform/morvane/EntityManager.h"
#include "platform/morvane/IntfStatus.h"
#include "platform/morvane/Ip6Intf.h"
#include "platform/morvane/IpIntf.h"
#include "platform/morvane/IpVrf.h"
#include "platform/morvane/RoutingConfig.h"
#include "platform/morvane/SnmpStatus.h"

namespace Morvane {

struct Store {
  Quor::Ptr<Quor::Dir> root;
  Quor::Ptr<EntityManager> entityManager;
  Quor::Ptr<Routing::Config> routingConfig;
  Quor::Ptr<Routing6::Config> routing6Config;
  Quor::Ptr<Routing::VrfConfigDir> routingVrfConfigDir;
  Quor::Ptr<Quor::Dir> routingVrfInfoDir;
  Quor::Ptr<Ip::Config> ipConfig;
  Quor::Ptr<Ip::Status> ipStatus;
  Quor::Ptr<Ip::AllVrfConfig> allVrfConfig;
  Quor::Ptr<Ip::AllVrfStatusLocal> allVrfStatusLocal;
  Quor::Ptr<Ip6::Config> ip6Config;
  Quor::Ptr<Ip6::Status> ip6Status;
  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir;
  Quor::Ptr<Snmp::Status> snmpStatus;
};

// Builds the tree above under `root` and returns its entities. Raises Quor::NameInUseException
// when `root` already holds a "Morvane" entry.
Store buildStore(const Quor::Ptr<Quor::Dir>& root);

}  // namespace Morvane
