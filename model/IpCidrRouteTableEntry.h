#pragma once
// One row of ipCidrRouteTable: one next hop of one route. Everything but the key is fixed at
// creation; a route that changes is deleted and added again.
//
// A plain value of 32 bytes, kept by value in its table (Quor::BlockMap): a table holds a row for
// every route of its VRF, millions of them, so a row carries no reference count and no links.
#include "model/IpCidrRouteTableIndex.h"
#include "platform/pelt/RouteAttributes.h"

namespace IpSnmp {

class IpCidrRouteTableEntry {
 public:
  IpCidrRouteTableEntry() = default;
  IpCidrRouteTableEntry(const IpCidrRouteTableIndex& index, U32 ifIndex, Routing::RouteMetric metric,
                        Routing::RoutePreference preference, Routing::Fib::RouteType protocol)
      : index_(index), ifIndex_(ifIndex), metric_(metric), protocol_(protocol), preference_(preference) {}

  const IpCidrRouteTableIndex& fwkKey() const noexcept { return index_; }
  const IpCidrRouteTableIndex& index() const noexcept { return index_; }
  Pelt::IpAddr dest() const noexcept { return index_.dest; }
  Pelt::IpAddr mask() const noexcept { return index_.mask; }
  U32 tos() const noexcept { return index_.tos; }
  Pelt::IpAddr nextHop() const noexcept { return index_.nextHop; }
  U32 ifIndex() const noexcept { return ifIndex_; }
  Routing::RouteMetric metric() const noexcept { return metric_; }
  Routing::RoutePreference preference() const noexcept { return preference_; }
  Routing::Fib::RouteType protocol() const noexcept { return protocol_; }

 private:
  IpCidrRouteTableIndex index_;
  U32 ifIndex_ = 0;
  Routing::RouteMetric metric_;
  Routing::Fib::RouteType protocol_ = Routing::Fib::routeTypeInvalid;
  Routing::RoutePreference preference_;
};
static_assert(sizeof(IpCidrRouteTableEntry) == 32);

}  // namespace IpSnmp
