#include "model/IpForwardMib.h"

#include "model/Reinstantiation.h"

namespace IpSnmp {

namespace {
constexpr std::string_view attributeNames[] = {"ipCidrRouteTable"};
}

Quor::String8 IpForwardMib::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

IpCidrRouteTableEntry IpForwardMib::ipCidrRouteTableIs(const IpCidrRouteTableIndex& key, U32 ifIndex,
                                                       Routing::RouteMetric metric,
                                                       Routing::RoutePreference preference,
                                                       Routing::Fib::RouteType protocol) {
  if (const IpCidrRouteTableEntry* row = ipCidrRouteTable_.member(key)) {
    checkConstructorParameter("_ifIndex", ifIndex, row->ifIndex());
    checkConstructorParameter("_metric", metric, row->metric());
    checkConstructorParameter("_preference", preference, row->preference());
    checkConstructorParameter("_protocol", protocol, row->protocol());
    return *row;
  }
  const IpCidrRouteTableEntry row = newIpCidrRouteTable(key, ifIndex, metric, preference, protocol);
  ipCidrRouteTableNotify(key);
  return row;
}

IpCidrRouteTableEntry IpForwardMib::newIpCidrRouteTable(const IpCidrRouteTableIndex& key, U32 ifIndex,
                                                        Routing::RouteMetric metric,
                                                        Routing::RoutePreference preference,
                                                        Routing::Fib::RouteType protocol) {
  const IpCidrRouteTableEntry row(key, ifIndex, metric, preference, protocol);
  ipCidrRouteTable_.memberIs(row);
  return row;
}

bool IpForwardMib::ipCidrRouteTableDel(const IpCidrRouteTableIndex& key) {
  if (!ipCidrRouteTable_.deleteMember(key)) return false;
  ipCidrRouteTableNotify(key);
  return true;
}

void IpForwardMib::ipCidrRouteTableDelAll() {
  while (const IpCidrRouteTableEntry* row = ipCidrRouteTable_.firstMember()) {
    const IpCidrRouteTableIndex key = row->index();
    ipCidrRouteTableDel(key);
  }
}

void IpForwardMib::ipCidrRouteTableNotify(const IpCidrRouteTableIndex& key) const {
  notify<NotifieeConst>(firstAttributeId, [&](NotifieeConst& n) { n.onIpCidrRouteTable(key); });
}

}  // namespace IpSnmp
