#include "model/IpForwardMib.h"

#include "model/Reinstantiation.h"

namespace IpSnmp {

namespace {

constexpr std::string_view attributeNames[] = {"ipCidrRouteTable", "inetCidrRoute6Table"};
constexpr Quor::AttributeId inetCidrRoute6TableAttr = Quor::Entity::firstAttributeId + 1;

// The row of `key` in `table`, made when absent (`made` says so); an existing one must have the
// same values.
template <class Table, class Row = typename Table::Member>
Row rowIs(Table& table, const typename Table::Key& key, U32 ifIndex, Routing::RouteMetric metric,
          Routing::RoutePreference preference, Routing::Fib::RouteType protocol, bool& made) {
  made = false;
  if (const Row* row = table.member(key)) {
    checkConstructorParameter("_ifIndex", ifIndex, row->ifIndex());
    checkConstructorParameter("_metric", metric, row->metric());
    checkConstructorParameter("_preference", preference, row->preference());
    checkConstructorParameter("_protocol", protocol, row->protocol());
    return *row;
  }
  const Row row(key, ifIndex, metric, preference, protocol);
  table.memberIs(row);
  made = true;
  return row;
}

// Removes every row of `table` through `del`, which tells of each.
template <class Table, class Del>
void delAll(const Table& table, Del del) {
  while (const auto* row = table.firstMember()) {
    const typename Table::Key key = row->index();
    del(key);
  }
}

}  // namespace

Quor::String8 IpForwardMib::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

IpCidrRouteTableEntry IpForwardMib::ipCidrRouteTableIs(const IpCidrRouteTableIndex& key, U32 ifIndex,
                                                       Routing::RouteMetric metric,
                                                       Routing::RoutePreference preference,
                                                       Routing::Fib::RouteType protocol) {
  bool made = false;
  const IpCidrRouteTableEntry row = rowIs(ipCidrRouteTable_, key, ifIndex, metric, preference, protocol, made);
  if (made) ipCidrRouteTableNotify(key);
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
  delAll(ipCidrRouteTable_, [this](const IpCidrRouteTableIndex& key) { ipCidrRouteTableDel(key); });
}

void IpForwardMib::ipCidrRouteTableNotify(const IpCidrRouteTableIndex& key) const {
  notify<NotifieeConst>(firstAttributeId, [&](NotifieeConst& n) { n.onIpCidrRouteTable(key); });
}

InetCidrRoute6Entry IpForwardMib::inetCidrRoute6TableIs(const InetCidrRoute6Index& key, U32 ifIndex,
                                                        Routing::RouteMetric metric,
                                                        Routing::RoutePreference preference,
                                                        Routing::Fib::RouteType protocol) {
  bool made = false;
  const InetCidrRoute6Entry row = rowIs(inetCidrRoute6Table_, key, ifIndex, metric, preference, protocol, made);
  if (made) inetCidrRoute6TableNotify(key);
  return row;
}

bool IpForwardMib::inetCidrRoute6TableDel(const InetCidrRoute6Index& key) {
  if (!inetCidrRoute6Table_.deleteMember(key)) return false;
  inetCidrRoute6TableNotify(key);
  return true;
}

void IpForwardMib::inetCidrRoute6TableDelAll() {
  delAll(inetCidrRoute6Table_, [this](const InetCidrRoute6Index& key) { inetCidrRoute6TableDel(key); });
}

void IpForwardMib::inetCidrRoute6TableNotify(const InetCidrRoute6Index& key) const {
  notify<NotifieeConst>(inetCidrRoute6TableAttr, [&](NotifieeConst& n) { n.onInetCidrRoute6Table(key); });
}

}  // namespace IpSnmp
