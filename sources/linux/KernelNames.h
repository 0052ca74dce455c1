#pragma once
// How the kernel's objects are named and classed in the store and the tables.
//
// Interface names. The store knows an interface by its name alone, across all VRFs, while every
// namespace has its own "eth0" and "lo". So an interface of a VRF's namespace is named
// "<vrf>:<name>" ("red:eth0"), and one of the default VRF by its kernel name. Table records hold at
// most 24 bytes of name: when "<vrf>:" would not fit, the VRF is written as '#' and six hex digits
// of a hash of its name ("#1f2e3d:eth0"), still unique in practice and never longer than 23 bytes.
//
// Interface kinds. The store's kinds decide who answers the interface index: a loopback device is
// "loopback", a VLAN "vlan", a bond or team "portChannel", anything else "ethernet"; each of them
// answers the kernel's ifindex.
//
// Route origins. The kernel's route protocol and type become a route type of the route table:
//   RTN_BLACKHOLE, RTN_UNREACHABLE, RTN_PROHIBIT   dropped (3)
//   RTN_LOCAL, RTN_BROADCAST                       receive (1), receiveBcast (2)
//   unicast, by protocol: kernel (the connected routes of addresses)  connected (8)
//                         boot (ip route add), static, and 196, FRR's
//                         staticd                                     staticConfig (4)
//                         bgp 19, ospf 12, isis 9, rip 7 (the numbers FRR's daemons use too),
//                         anything else kernel (5)
// and the preference is the usual administrative distance of that origin: connected 0, static 1,
// eBGP 20, OSPF 110, IS-IS 115, RIP 120, others 254 (the kernel's own and those of unknown
// daemons: below any configured route's).
#include <string>

#include "platform/pelt/IntfId.h"
#include "platform/pelt/RouteAttributes.h"
#include "platform/pelt/VrfName.h"
#include "platform/quor/String.h"
#include "sources/linux/RtnlMessages.h"

namespace Sources::Linux {

// The store's name of kernel interface `name` in `vrf` ("default" for the process's namespace).
Pelt::IntfId qualifiedIntfName(const L3::VrfName& vrf, std::string_view name);
// The store's kind of a kernel link.
Quor::Name intfKind(const KernelLink& link);

Routing::Fib::RouteType routeTypeOf(U8 type, U8 protocol);
template <class Route>
Routing::Fib::RouteType routeTypeOf(const Route& route) {
  return routeTypeOf(route.type, route.protocol);
}
Routing::RoutePreference preferenceOf(Routing::Fib::RouteType type);

}  // namespace Sources::Linux
