#pragma once
// What the route machine needs to know of an address family: its tables in shared memory and how a
// prefix's rows are written into the VRF's IpForwardMib, ipCidrRouteTable for IPv4 and the IPv6 rows
// of inetCidrRouteTable for IPv6.
#include "agent/PrefixList.h"
#include "agent/PrefixSet.h"
#include "model/IpForwardMib.h"
#include "platform/tarn/FecRouteListSm.h"

namespace IpSnmp {

struct Ipv4Routes {
  using Prefix = Pelt::Prefix;
  using RouteStatus = Tarn::Fib::RouteStatus;
  using ForwardingStatus = Tarn::Fib::ForwardingStatus;
  using FecRouteListSm = FibUtils::FecRouteListSm;
  using Via = Tarn::Fib::Via;
  using PrefixList = IpSnmp::PrefixList;
  using PrefixSet = IpSnmp::PrefixSet;

  // Deletes every row of `prefix`.
  static void rowsDel(IpForwardMib& mib, const Prefix& prefix);
  // The row of one via of the route; Quor::NameInUseException when its key has a row of other values.
  static void rowIs(IpForwardMib& mib, const Prefix& prefix, const Via& via, U32 ifIndex,
                    const Tarn::Fib::Route& route);
};

struct Ipv6Routes {
  using Prefix = Pelt::Ip6AddrWithMask;
  using RouteStatus = Tarn::Fib::Route6Status;
  using ForwardingStatus = Tarn::Fib::Forwarding6Status;
  using FecRouteListSm = FibUtils::FecRoute6ListSm;
  using Via = Tarn::Fib::Via6;
  using PrefixList = IpSnmp::Prefix6List;
  using PrefixSet = IpSnmp::Prefix6Set;

  static void rowsDel(IpForwardMib& mib, const Prefix& prefix);
  static void rowIs(IpForwardMib& mib, const Prefix& prefix, const Via& via, U32 ifIndex,
                    const Tarn::Fib::Route6& route);
};

}  // namespace IpSnmp
