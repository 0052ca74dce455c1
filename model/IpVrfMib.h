#pragma once
// The agent-wide VRF tables: one row per VRF (vrfTable) and one per interface that sits in a
// non-default VRF (vrfIfTable).
#include "model/VrfIfTableEntry.h"
#include "model/VrfTableEntry.h"

namespace IpSnmp {

class IpVrfMib : public Quor::Entity {
 public:
  using VrfTable = Quor::RbTreeMap<VrfTableEntry, Snmp::String>;
  using VrfTableIterator = VrfTable::Iterator;
  using VrfTableIteratorConst = VrfTable::IteratorConst;
  using VrfIfTable = Quor::RbTreeMap<VrfIfTableEntry, U32>;
  using VrfIfTableIterator = VrfIfTable::Iterator;
  using VrfIfTableIteratorConst = VrfIfTable::IteratorConst;

  class NotifieeConst : public Quor::Notifiee<IpVrfMib> {
   public:
    virtual void onVrfTable(const Snmp::String&) {}
    virtual void onVrfIfTable(U32) {}
  };

  using Entity::Entity;
  const char* fwkType() const override { return "IpSnmp::IpVrfMib"; }
  Quor::String8 attributeString(Quor::AttributeId id) const override;

  const VrfTable& vrfTable() const noexcept { return vrfTable_; }
  VrfTableEntry* vrfTable(const Snmp::String& name) const { return vrfTable_.member(name); }
  // The row of `name`, created when absent; an existing row with another configuration or local
  // status object is a name-in-use failure.
  Quor::ValidPtr<VrfTableEntry> vrfTableIs(const Snmp::String& name, const Quor::Ptr<const Ip::VrfConfig>& vrfConfig,
                                           const Quor::Ptr<const Ip::VrfStatusLocal>& vrfStatusLocal);
  Quor::Ptr<VrfTableEntry> vrfTableDel(const Snmp::String& name);

  const VrfIfTable& vrfIfTable() const noexcept { return vrfIfTable_; }
  VrfIfTableEntry* vrfIfTable(U32 ifIndex) const { return vrfIfTable_.member(ifIndex); }
  Quor::ValidPtr<VrfIfTableEntry> vrfIfTableIs(U32 ifIndex);
  Quor::Ptr<VrfIfTableEntry> vrfIfTableDel(U32 ifIndex);

 private:
  void vrfTableNotify(const Snmp::String& name) const;
  void vrfIfTableNotify(U32 ifIndex) const;
  VrfTable vrfTable_;
  VrfIfTable vrfIfTable_;
};

}  // namespace IpSnmp
