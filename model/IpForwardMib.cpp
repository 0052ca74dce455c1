#include "model/IpForwardMib.h"

#include "model/Reinstantiation.h"

namespace IpSnmp {

namespace {
constexpr std::string_view attributeNames[] = {"ipCidrRouteTable"};
}

Quor::String8 IpForwardMib::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

Quor::ValidPtr<IpCidrRouteTableEntry> IpForwardMib::ipCidrRouteTableIs(const IpCidrRouteTableIndex& key, U32 ifIndex,
                                                                        Routing::RouteMetric metric,
                                                                        Routing::RoutePreference preference,
                                                                        Routing::Fib::RouteType protocol) {
  if (IpCidrRouteTableEntry* row = ipCidrRouteTable_.member(key)) {
    checkConstructorParameter("_ifIndex", ifIndex, row->ifIndex());
    checkConstructorParameter("_metric", metric, row->metric());
    checkConstructorParameter("_preference", preference, row->preference());
    checkConstructorParameter("_protocol", protocol, row->protocol());
    return row;
  }
  Quor::Ptr<IpCidrRouteTableEntry> row = newIpCidrRouteTable(key, ifIndex, metric, preference, protocol);
  ipCidrRouteTableNotify(key);
  return row;
}

Quor::Ptr<IpCidrRouteTableEntry> IpForwardMib::newIpCidrRouteTable(const IpCidrRouteTableIndex& key, U32 ifIndex,
                                                                   Routing::RouteMetric metric,
                                                                   Routing::RoutePreference preference,
                                                                   Routing::Fib::RouteType protocol) {
  auto row = Quor::makePtr<IpCidrRouteTableEntry>(key, ifIndex, metric, preference, protocol);
  ipCidrRouteTable_.memberIs(row);
  return row;
}

Quor::Ptr<IpCidrRouteTableEntry> IpForwardMib::ipCidrRouteTableDel(const IpCidrRouteTableIndex& key) {
  Quor::Ptr<IpCidrRouteTableEntry> row = ipCidrRouteTable_.deleteMember(key);
  if (row) ipCidrRouteTableNotify(key);
  return row;
}

void IpForwardMib::ipCidrRouteTableDelAll() {
  while (IpCidrRouteTableEntry* row = ipCidrRouteTable_.firstMember()) ipCidrRouteTableDel(row->index());
}

void IpForwardMib::ipCidrRouteTableNotify(const IpCidrRouteTableIndex& key) const {
  notify<NotifieeConst>(firstAttributeId, [&](NotifieeConst& n) { n.onIpCidrRouteTable(key); });
}

}  // namespace IpSnmp
