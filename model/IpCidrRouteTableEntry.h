#pragma once
// One row of ipCidrRouteTable: one next hop of one route. Everything but the key is fixed at
// creation; a route that changes is deleted and added again.
#include "model/IpCidrRouteTableIndex.h"
#include "platform/pelt/RouteAttributes.h"
#include "platform/quor/RbTreeMap.h"

namespace IpSnmp {

class IpCidrRouteTableEntry : public Quor::PtrInterface, public Quor::RbTreeLink {
 public:
  IpCidrRouteTableEntry(const IpCidrRouteTableIndex& index, U32 ifIndex, Routing::RouteMetric metric,
                        Routing::RoutePreference preference, Routing::Fib::RouteType protocol)
      : index_(index), ifIndex_(ifIndex), metric_(metric), preference_(preference), protocol_(protocol) {}

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
  const IpCidrRouteTableIndex index_;
  const U32 ifIndex_;
  const Routing::RouteMetric metric_;
  const Routing::RoutePreference preference_;
  const Routing::Fib::RouteType protocol_;
};

}  // namespace IpSnmp
