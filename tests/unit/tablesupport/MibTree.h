#pragma once
// The MIB containers at the paths where the registrations look them up, below a root entity that
// the agent's lookup uses while the tree exists, and short ways to fill them.
#include "model/IpForwardMib.h"
#include "model/IpMib.h"
#include "model/IpVrfMib.h"
#include "model/VrfMibs.h"

namespace TableTest {

class MibTree {
 public:
  // "/switch/snmp/ip/{ipmib,ipforwardmib,ipvrfmib,vrf}", made the agent's root.
  MibTree();
  ~MibTree();
  MibTree(const MibTree&) = delete;
  MibTree& operator=(const MibTree&) = delete;

  // The route container of VRF `name` ("snmp/ip/vrf.mibs/<name>.ipforwardmib").
  IpSnmp::IpForwardMib& vrfIpForwardMib(const char* name);

  Quor::Ptr<Quor::Dir> root;
  Quor::Ptr<IpSnmp::IpMib> ipMib;
  Quor::Ptr<IpSnmp::IpForwardMib> ipForwardMib;
  Quor::Ptr<IpSnmp::IpVrfMib> ipVrfMib;
  Quor::Ptr<IpSnmp::VrfMibsDir> vrfMibs;
};

// A route row: `dest`/`length` via `nextHop`.
IpSnmp::IpCidrRouteTableEntry addRoute(IpSnmp::IpForwardMib& mib, const char* dest, unsigned length,
                                       const char* nextHop, U32 ifIndex = 1, U32 metric = 0,
                                       U8 preference = 0, U32 tos = 0);
IpSnmp::IpCidrRouteTableIndex routeKey(const char* dest, unsigned length, const char* nextHop, U32 tos = 0);
// An IPv6 route row: `dest`/`length` via `nextHop` on the interface of index `ifIndex`.
IpSnmp::InetCidrRoute6Entry addRoute6(IpSnmp::IpForwardMib& mib, const char* dest, unsigned length,
                                                      const char* nextHop, U32 ifIndex = 1, U32 metric = 0,
                                                      U8 preference = 0);
// `count` routes 10.x.y.0/24 via 192.0.2.1, in key order.
void addRoutes(IpSnmp::IpForwardMib& mib, std::size_t count);

// An IPv4 address `address`/`length` on `ifIndex`, as the address machines enter it: the row of
// ipAddressTable with its occurrence, the prefix row and the ipAddrTable view.
void addIpv4Address(IpSnmp::IpMib& mib, const char* address, unsigned length, U32 ifIndex);
void addIpv6Address(IpSnmp::IpMib& mib, const char* address, unsigned length, U32 ifIndex);

}  // namespace TableTest
