#pragma once
// The forwarding table of one VRF: the rows of ipCidrRouteTable, whose count is ipCidrRouteNumber.
//
// The rows are values in a Quor::BlockMap (about 40 bytes a row): a lookup's pointer holds until the
// table next changes, and an iterator reads its own copy of its row, which stays readable after the
// row is removed. The ordered walk (begin, startAt: the row of a key or the next above it, findNext:
// the next above a key) and the iterator's guarantees are those of the framework's collections.
#include "model/IpCidrRouteTableEntry.h"
#include "platform/quor/BlockMap.h"
#include "platform/quor/Entity.h"

namespace IpSnmp {

class IpForwardMib : public Quor::Entity {
 public:
  using IpCidrRouteTable = Quor::BlockMap<IpCidrRouteTableEntry, IpCidrRouteTableIndex>;
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

 private:
  IpCidrRouteTable ipCidrRouteTable_;
};

}  // namespace IpSnmp
