#pragma once
// The IP-MIB tables of one VRF: addresses (ipAddressTable), their prefixes (ipAddressPrefixTable),
// the IPv4 view of the addresses (ipAddrTable), the neighbours (arpTable) and the forwarding
// statistics per IP version.
//
// ipAddressPrefixTable holds, of all occurrences of an address, only the prefix of the master
// occurrence, through a small holder so that the row of a key can be swapped in place; ipAddrTable
// holds a row for every IPv4 row of ipAddressTable and never one for IPv6.
#include "model/ArpTableEntry.h"
#include "model/IpAddrEntry.h"
#include "model/IpAddressEntry.h"
#include "platform/quor/Entity.h"
#include "platform/quor/HashMap.h"
#include "stats/SwFwdStatsMap.h"

namespace IpSnmp {

// The member of ipAddressPrefixTable: the key and the one reference to the prefix row under it.
class QuorIpAddressPrefixTable : public Quor::PtrInterface, public Quor::RbTreeLink {
 public:
  explicit QuorIpAddressPrefixTable(Quor::Ptr<const IpAddressPrefixEntry> entry)
      : key_(entry->index()), entry_(std::move(entry)) {}
  const IpAddressPrefixKey& fwkKey() const noexcept { return key_; }
  const Quor::Ptr<const IpAddressPrefixEntry>& entry() const noexcept { return entry_; }
  void entryIs(Quor::Ptr<const IpAddressPrefixEntry> entry) noexcept { entry_ = std::move(entry); }

 private:
  const IpAddressPrefixKey key_;
  Quor::Ptr<const IpAddressPrefixEntry> entry_;
};

class IpMib : public Quor::Entity {
 public:
  using IpAddressTable = Quor::RbTreeMap<IpAddressEntry, InetAddress>;
  using IpAddressTableIterator = IpAddressTable::Iterator;
  using IpAddressTableIteratorConst = IpAddressTable::IteratorConst;
  using IpAddressPrefixTable = Quor::RbTreeMap<QuorIpAddressPrefixTable, IpAddressPrefixKey>;
  using IpAddressPrefixTableIterator = IpAddressPrefixTable::Iterator;
  using IpAddressPrefixTableIteratorConst = IpAddressPrefixTable::IteratorConst;
  using IpAddrTable = Quor::RbTreeMap<IpAddrEntry, Pelt::IpAddr>;
  using IpAddrTableIterator = IpAddrTable::Iterator;
  using IpAddrTableIteratorConst = IpAddrTable::IteratorConst;
  using ArpTable = Quor::RbTreeMap<ArpTableEntry, ArpTableIndex>;
  using ArpTableIterator = ArpTable::Iterator;
  using ArpTableIteratorConst = ArpTable::IteratorConst;
  using IpSwFwdStats = Ip::SwFwdStatsMap;
  using IpSwFwdStatsIteratorConst = IpSwFwdStats::IteratorConst;

  class NotifieeConst : public Quor::Notifiee<IpMib> {
   public:
    virtual void onIpAddressTable(const InetAddress&) {}
    virtual void onIpAddressPrefixTable(const IpAddressPrefixKey&) {}
    virtual void onIpAddrTable(const Pelt::IpAddr&) {}
    virtual void onArpTable(const ArpTableIndex&) {}
    virtual void onIpSwFwdStats(Ip::IpVersion) {}
  };

  using Entity::Entity;
  ~IpMib() override;
  const char* fwkType() const override { return "IpSnmp::IpMib"; }
  Quor::String8 attributeString(Quor::AttributeId id) const override;

  const IpAddressTable& ipAddressTable() const noexcept { return ipAddressTable_; }
  IpAddressEntry* ipAddressTable(const InetAddress& key) const { return ipAddressTable_.member(key); }
  // The row of the address, created when absent; an existing row is returned and nobody is told.
  Quor::ValidPtr<IpAddressEntry> ipAddressTableIs(const InetAddress& key);
  Quor::Ptr<IpAddressEntry> ipAddressTableDel(const InetAddress& key);

  const IpAddressPrefixTable& ipAddressPrefixTable() const noexcept { return ipAddressPrefixTable_; }
  Quor::Ptr<const IpAddressPrefixEntry> ipAddressPrefixTable(const IpAddressPrefixKey& key) const;
  // Puts `entry` under its key: creates the key, or swaps the row held there in place. Tells the
  // reactors unless the key already held this very row. A null entry is a range failure.
  void ipAddressPrefixTableIs(const Quor::Ptr<const IpAddressPrefixEntry>& entry);
  Quor::Ptr<const IpAddressPrefixEntry> ipAddressPrefixTableDel(const IpAddressPrefixKey& key);

  const IpAddrTable& ipAddrTable() const noexcept { return ipAddrTable_; }
  IpAddrEntry* ipAddrTable(Pelt::IpAddr key) const { return ipAddrTable_.member(key); }
  // The view of `masterEntry` under its IPv4 address; another row of the same address is a
  // name-in-use failure.
  Quor::ValidPtr<IpAddrEntry> ipAddrTableIs(const Quor::ValidPtr<IpAddressEntry>& masterEntry);
  Quor::Ptr<IpAddrEntry> ipAddrTableDel(Pelt::IpAddr key);

  const ArpTable& arpTable() const noexcept { return arpTable_; }
  ArpTableEntry* arpTable(const ArpTableIndex& key) const { return arpTable_.member(key); }
  // The row of the neighbour, created when absent; an existing row with another interface, table or
  // VRF id is a name-in-use failure.
  Quor::ValidPtr<ArpTableEntry> arpTableIs(const ArpTableIndex& key, Pelt::IntfId intfId,
                                           const Quor::Ptr<const Arp::Table::Status>& arpTarn,
                                           Vrf::VrfIdMap::VrfId arpTarnVrfId);
  Quor::Ptr<ArpTableEntry> arpTableDel(const ArpTableIndex& key);

  const IpSwFwdStats& ipSwFwdStats() const noexcept { return ipSwFwdStats_; }
  Quor::Ptr<Ip::SwFwdStats> ipSwFwdStats(Ip::IpVersion version) const { return ipSwFwdStats_.member(version); }
  // The statistics entity of `version`, made when absent; one of another VRF is a name-in-use failure.
  Quor::ValidPtr<Ip::SwFwdStats> ipSwFwdStatsIs(Ip::IpVersion version, const Quor::Name& vrfName);
  Quor::Ptr<Ip::SwFwdStats> ipSwFwdStatsDel(Ip::IpVersion version);

 private:
  template <class Param, class Key>
  void tell(Quor::AttributeId attr, void (NotifieeConst::*on)(Param), const Key& key) const {
    notify<NotifieeConst>(attr, [&](NotifieeConst& n) { (n.*on)(key); });
  }

  IpAddressTable ipAddressTable_;
  IpAddressPrefixTable ipAddressPrefixTable_;
  IpAddrTable ipAddrTable_;
  ArpTable arpTable_;
  IpSwFwdStats ipSwFwdStats_{this, firstAttributeId + 4};
};

}  // namespace IpSnmp
