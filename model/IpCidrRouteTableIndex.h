#pragma once
// The key of ipCidrRouteTable: destination, mask, type of service, next hop, each deciding only when
// the earlier ones are equal.
#include <iosfwd>

#include "model/KeyOperators.h"
#include "platform/pelt/IpAddr.h"
#include "platform/quor/Strep.h"

namespace IpSnmp {

struct IpCidrRouteTableIndex : KeyOperators<IpCidrRouteTableIndex> {
  Pelt::IpAddr dest;
  Pelt::IpAddr mask;
  U32 tos = 0;
  Pelt::IpAddr nextHop;

  IpCidrRouteTableIndex() = default;
  IpCidrRouteTableIndex(Pelt::IpAddr d, Pelt::IpAddr m, U32 t, Pelt::IpAddr n)
      : dest(d), mask(m), tos(t), nextHop(n) {}
  IpCidrRouteTableIndex(Quor::StrepIterator& position, const Quor::StrepIterator& end);

  friend bool operator==(const IpCidrRouteTableIndex& a, const IpCidrRouteTableIndex& b) {
    return a.dest == b.dest && a.mask == b.mask && a.tos == b.tos && a.nextHop == b.nextHop;
  }
  friend bool operator<(const IpCidrRouteTableIndex& a, const IpCidrRouteTableIndex& b) {
    if (!(a.dest == b.dest)) return a.dest < b.dest;
    if (!(a.mask == b.mask)) return a.mask < b.mask;
    if (a.tos != b.tos) return a.tos < b.tos;
    return a.nextHop < b.nextHop;
  }
};

Quor::String8 valueToStrep(const IpCidrRouteTableIndex& key);
std::ostream& operator<<(std::ostream& out, const IpCidrRouteTableIndex& key);

}  // namespace IpSnmp
