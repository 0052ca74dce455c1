#include "model/IpForwardMib.h"

#include "model/Reinstantiation.h"

namespace IpSnmp {

namespace {

constexpr std::string_view attributeNames[] = {"ipCidrRouteTable", "inetCidrRoute6Table"};
constexpr Quor::AttributeId inetCidrRoute6TableAttr = Quor::Entity::firstAttributeId + 1;

// The row of `key` in `table`, made when absent; an existing one must have the same values.
template <class Table>
Quor::ValidPtr<typename Table::Member> rowIs(Table& table, const typename Table::Key& key, U32 ifIndex,
                                             Routing::RouteMetric metric, Routing::RoutePreference preference,
                                             Routing::Fib::RouteType protocol, bool& made) {
  made = false;
  if (typename Table::Member* row = table.member(key)) {
    checkConstructorParameter("_ifIndex", ifIndex, row->ifIndex());
    checkConstructorParameter("_metric", metric, row->metric());
    checkConstructorParameter("_preference", preference, row->preference());
    checkConstructorParameter("_protocol", protocol, row->protocol());
    return row;
  }
  auto row = Quor::makePtr<typename Table::Member>(key, ifIndex, metric, preference, protocol);
  table.memberIs(row);
  made = true;
  return row;
}

}  // namespace

Quor::String8 IpForwardMib::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

Quor::ValidPtr<IpCidrRouteTableEntry> IpForwardMib::ipCidrRouteTableIs(const IpCidrRouteTableIndex& key, U32 ifIndex,
                                                                        Routing::RouteMetric metric,
                                                                        Routing::RoutePreference preference,
                                                                        Routing::Fib::RouteType protocol) {
  bool made = false;
  auto row = rowIs(ipCidrRouteTable_, key, ifIndex, metric, preference, protocol, made);
  if (made) ipCidrRouteTableNotify(key);
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

Quor::ValidPtr<InetCidrRoute6Entry> IpForwardMib::inetCidrRoute6TableIs(const InetCidrRoute6Index& key, U32 ifIndex,
                                                                        Routing::RouteMetric metric,
                                                                        Routing::RoutePreference preference,
                                                                        Routing::Fib::RouteType protocol) {
  bool made = false;
  auto row = rowIs(inetCidrRoute6Table_, key, ifIndex, metric, preference, protocol, made);
  if (made) inetCidrRoute6TableNotify(key);
  return row;
}

Quor::Ptr<InetCidrRoute6Entry> IpForwardMib::inetCidrRoute6TableDel(const InetCidrRoute6Index& key) {
  Quor::Ptr<InetCidrRoute6Entry> row = inetCidrRoute6Table_.deleteMember(key);
  if (row) inetCidrRoute6TableNotify(key);
  return row;
}

void IpForwardMib::inetCidrRoute6TableDelAll() {
  while (InetCidrRoute6Entry* row = inetCidrRoute6Table_.firstMember()) inetCidrRoute6TableDel(row->index());
}

void IpForwardMib::inetCidrRoute6TableNotify(const InetCidrRoute6Index& key) const {
  notify<NotifieeConst>(inetCidrRoute6TableAttr, [&](NotifieeConst& n) { n.onInetCidrRoute6Table(key); });
}

}  // namespace IpSnmp
