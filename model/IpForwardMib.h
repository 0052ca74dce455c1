#pragma once
// The forwarding table of one VRF: the rows of ipCidrRouteTable, whose count is ipCidrRouteNumber,
// and the IPv6 rows that inetCidrRouteTable shows after them (InetCidrRouteView.h).
#include "model/InetCidrRouteView.h"
#include "platform/quor/Entity.h"

namespace IpSnmp {

class IpForwardMib : public Quor::Entity {
 public:
  using IpCidrRouteTable = IpSnmp::IpCidrRouteTable;
  using InetCidrRoute6Table = IpSnmp::InetCidrRoute6Table;
  using IpCidrRouteTableIterator = IpCidrRouteTable::Iterator;
  using IpCidrRouteTableIteratorConst = IpCidrRouteTable::IteratorConst;

  class NotifieeConst : public Quor::Notifiee<IpForwardMib> {
   public:
    virtual void onIpCidrRouteTable(const IpCidrRouteTableIndex&) {}
    virtual void onInetCidrRoute6Table(const InetCidrRoute6Index&) {}
  };

  using Entity::Entity;
  const char* fwkType() const override { return "IpSnmp::IpForwardMib"; }
  Quor::String8 attributeString(Quor::AttributeId id) const override;

  const IpCidrRouteTable& ipCidrRouteTable() const noexcept { return ipCidrRouteTable_; }
  // The row of `key`, null when absent; valid until the table next changes.
  const IpCidrRouteTableEntry* ipCidrRouteTable(const IpCidrRouteTableIndex& key) const {
    return ipCidrRouteTable_.member(key);
  }
  // The row of `key`, created when absent; an existing row with any other value is a name-in-use
  // failure naming the first differing parameter. Returns a copy of the row.
  IpCidrRouteTableEntry ipCidrRouteTableIs(const IpCidrRouteTableIndex& key, U32 ifIndex, Routing::RouteMetric metric,
                                           Routing::RoutePreference preference, Routing::Fib::RouteType protocol);
  // Adds the row of `key`, which must be absent, without notifying.
  IpCidrRouteTableEntry newIpCidrRouteTable(const IpCidrRouteTableIndex& key, U32 ifIndex, Routing::RouteMetric metric,
                                            Routing::RoutePreference preference, Routing::Fib::RouteType protocol);
  // Removes the row of `key`; false when there was none.
  bool ipCidrRouteTableDel(const IpCidrRouteTableIndex& key);
  bool ipCidrRouteTableDel(const IpCidrRouteTableIterator& it) { return ipCidrRouteTableDel(it.key()); }
  void ipCidrRouteTableDelAll();
  void ipCidrRouteTableNotify(const IpCidrRouteTableIndex& key) const;
  // The row count, which is the value of ipCidrRouteNumber.
  std::size_t ipCidrRouteTables() const noexcept { return ipCidrRouteTable_.members(); }

  const InetCidrRoute6Table& inetCidrRoute6Table() const noexcept { return inetCidrRoute6Table_; }
  const InetCidrRoute6Entry* inetCidrRoute6Table(const InetCidrRoute6Index& key) const {
    return inetCidrRoute6Table_.member(key);
  }
  // As ipCidrRouteTableIs, for an IPv6 row.
  InetCidrRoute6Entry inetCidrRoute6TableIs(const InetCidrRoute6Index& key, U32 ifIndex, Routing::RouteMetric metric,
                                            Routing::RoutePreference preference, Routing::Fib::RouteType protocol);
  bool inetCidrRoute6TableDel(const InetCidrRoute6Index& key);
  void inetCidrRoute6TableDelAll();
  void inetCidrRoute6TableNotify(const InetCidrRoute6Index& key) const;

  // Every row of both families in the order of inetCidrRouteTable; its size is inetCidrRouteNumber.
  InetCidrRouteView inetCidrRouteTable() const noexcept { return {ipCidrRouteTable_, inetCidrRoute6Table_}; }

 private:
  IpCidrRouteTable ipCidrRouteTable_;
  InetCidrRoute6Table inetCidrRoute6Table_;
};

}  // namespace IpSnmp
