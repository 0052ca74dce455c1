#include "agent/RouteFamilies.h"

#include "model/Mask.h"

namespace IpSnmp {

namespace {

// Deletes the rows from the first key of `first` on while `samePrefix` holds of them.
template <class Table, class Key, class SamePrefix, class Del>
void deleteFrom(const Table& table, const Key& first, SamePrefix samePrefix, Del del) {
  while (const auto* row = table.startAtMember(first)) {
    if (!samePrefix(row->index())) break;
    const Key index = row->index();
    del(index);
  }
}

}  // namespace

void Ipv4Routes::rowsDel(IpForwardMib& mib, const Prefix& prefix) {
  const Pelt::IpAddr dest = prefix.addr();
  const Pelt::IpAddr mask = maskOfLength(prefix.len());
  deleteFrom(
      mib.ipCidrRouteTable(), IpCidrRouteTableIndex(dest, mask, 0, Pelt::IpAddr()),
      [&](const IpCidrRouteTableIndex& key) { return key.dest == dest && key.mask == mask; },
      [&](const IpCidrRouteTableIndex& key) { mib.ipCidrRouteTableDel(key); });
}

void Ipv4Routes::rowIs(IpForwardMib& mib, const Prefix& prefix, const Via& via, U32 ifIndex,
                       const Tarn::Fib::Route& route) {
  mib.ipCidrRouteTableIs({prefix.addr(), maskOfLength(prefix.len()), 0, via.hop}, ifIndex, route.metric,
                         route.preference, route.routeType);
}

void Ipv6Routes::rowsDel(IpForwardMib& mib, const Prefix& prefix) {
  deleteFrom(
      mib.inetCidrRoute6Table(), InetCidrRoute6Index(prefix.addr(), prefix.len(), {}, {}, 0),
      [&](const InetCidrRoute6Index& key) { return key.dest == prefix.addr() && key.pfxLen == prefix.len(); },
      [&](const InetCidrRoute6Index& key) { mib.inetCidrRoute6TableDel(key); });
}

void Ipv6Routes::rowIs(IpForwardMib& mib, const Prefix& prefix, const Via& via, U32 ifIndex,
                       const Tarn::Fib::Route6& route) {
  mib.inetCidrRoute6TableIs(InetCidrRoute6Index::of(prefix.addr(), prefix.len(), via.hop, ifIndex), ifIndex,
                            route.metric, route.preference, route.routeType);
}

}  // namespace IpSnmp
