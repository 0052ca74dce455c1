#pragma once
// The forwarding table of one VRF: the rows of ipCidrRouteTable, whose count is ipCidrRouteNumber.
#include "model/IpCidrRouteTableEntry.h"
#include "platform/quor/Entity.h"

namespace IpSnmp {

class IpForwardMib : public Quor::Entity {
 public:
  using IpCidrRouteTable = Quor::RbTreeMap<IpCidrRouteTableEntry, IpCidrRouteTableIndex>;
  using IpCidrRouteTableIterator = IpCidrRouteTable::Iterator;
  using IpCidrRouteTableIteratorConst = IpCidrRouteTable::IteratorConst;

  class NotifieeConst : public Quor::Notifiee<IpForwardMib> {
   public:
    virtual void onIpCidrRouteTable(const IpCidrRouteTableIndex&) {}
  };

  using Entity::Entity;
  const char* fwkType() const override { return "IpSnmp::IpForwardMib"; }
  Quor::String8 attributeString(Quor::AttributeId id) const override;

  const IpCidrRouteTable& ipCidrRouteTable() const noexcept { return ipCidrRouteTable_; }
  IpCidrRouteTableEntry* ipCidrRouteTable(const IpCidrRouteTableIndex& key) const { return ipCidrRouteTable_.member(key); }
  // The row of `key`, created when absent; an existing row with any other value is a name-in-use
  // failure naming the first differing parameter.
  Quor::ValidPtr<IpCidrRouteTableEntry> ipCidrRouteTableIs(const IpCidrRouteTableIndex& key, U32 ifIndex,
                                                            Routing::RouteMetric metric,
                                                            Routing::RoutePreference preference,
                                                            Routing::Fib::RouteType protocol);
  Quor::Ptr<IpCidrRouteTableEntry> newIpCidrRouteTable(const IpCidrRouteTableIndex& key, U32 ifIndex,
                                                       Routing::RouteMetric metric,
                                                       Routing::RoutePreference preference,
                                                       Routing::Fib::RouteType protocol);
  Quor::Ptr<IpCidrRouteTableEntry> ipCidrRouteTableDel(const IpCidrRouteTableIndex& key);
  Quor::Ptr<IpCidrRouteTableEntry> ipCidrRouteTableDel(const IpCidrRouteTableIterator& it) {
    return ipCidrRouteTableDel(it.key());
  }
  void ipCidrRouteTableDelAll();
  void ipCidrRouteTableNotify(const IpCidrRouteTableIndex& key) const;
  // The row count, which is the value of ipCidrRouteNumber.
  std::size_t ipCidrRouteTables() const noexcept { return ipCidrRouteTable_.members(); }

 private:
  IpCidrRouteTable ipCidrRouteTable_;
};

}  // namespace IpSnmp
