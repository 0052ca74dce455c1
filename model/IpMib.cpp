#include "model/IpMib.h"

#include "model/Reinstantiation.h"

namespace IpSnmp {

namespace {
constexpr std::string_view attributeNames[] = {"ipAddressTable", "ipAddressPrefixTable", "ipAddrTable", "arpTable",
                                               "ipSwFwdStats"};
constexpr Quor::AttributeId ipAddressTableAttr = Quor::Entity::firstAttributeId;
constexpr Quor::AttributeId ipAddressPrefixTableAttr = ipAddressTableAttr + 1;
constexpr Quor::AttributeId ipAddrTableAttr = ipAddressTableAttr + 2;
constexpr Quor::AttributeId arpTableAttr = ipAddressTableAttr + 3;
constexpr Quor::AttributeId ipSwFwdStatsAttr = ipAddressTableAttr + 4;
}  // namespace

IpMib::~IpMib() = default;

Quor::String8 IpMib::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

Quor::ValidPtr<IpAddressEntry> IpMib::ipAddressTableIs(const InetAddress& key) {
  if (IpAddressEntry* row = ipAddressTable_.member(key)) return row;
  auto row = Quor::makePtr<IpAddressEntry>(key);
  ipAddressTable_.memberIs(row);
  tell(ipAddressTableAttr, &NotifieeConst::onIpAddressTable, key);
  return row;
}

Quor::Ptr<IpAddressEntry> IpMib::ipAddressTableDel(const InetAddress& key) {
  Quor::Ptr<IpAddressEntry> row = ipAddressTable_.deleteMember(key);
  if (row) tell(ipAddressTableAttr, &NotifieeConst::onIpAddressTable, key);
  return row;
}

Quor::Ptr<const IpAddressPrefixEntry> IpMib::ipAddressPrefixTable(const IpAddressPrefixKey& key) const {
  QuorIpAddressPrefixTable* holder = ipAddressPrefixTable_.member(key);
  return holder ? holder->entry() : nullptr;
}

void IpMib::ipAddressPrefixTableIs(const Quor::Ptr<const IpAddressPrefixEntry>& entry) {
  if (!entry)
    Quor::throwRangeException(
        "null _ipAddressPrefixTable parameter to mutator for IpSnmp::IpMib::ipAddressPrefixTable not allowed\"");
  const IpAddressPrefixKey& key = entry->index();
  if (QuorIpAddressPrefixTable* holder = ipAddressPrefixTable_.member(key)) {
    if (holder->entry() == entry) return;
    holder->entryIs(entry);
  } else {
    ipAddressPrefixTable_.memberIs(Quor::makePtr<QuorIpAddressPrefixTable>(entry));
  }
  tell(ipAddressPrefixTableAttr, &NotifieeConst::onIpAddressPrefixTable, key);
}

Quor::Ptr<const IpAddressPrefixEntry> IpMib::ipAddressPrefixTableDel(const IpAddressPrefixKey& key) {
  Quor::Ptr<QuorIpAddressPrefixTable> holder = ipAddressPrefixTable_.deleteMember(key);
  if (!holder) return nullptr;
  tell(ipAddressPrefixTableAttr, &NotifieeConst::onIpAddressPrefixTable, key);
  return holder->entry();
}

Quor::ValidPtr<IpAddrEntry> IpMib::ipAddrTableIs(const Quor::ValidPtr<IpAddressEntry>& masterEntry) {
  Pelt::IpAddr key = masterEntry->ipAdEntAddr();
  if (IpAddrEntry* row = ipAddrTable_.member(key)) {
    checkConstructorParameter("_masterEntry", Quor::Ptr<IpAddressEntry>(masterEntry),
                              Quor::Ptr<IpAddressEntry>(row->masterEntry()));
    return row;
  }
  auto row = Quor::makePtr<IpAddrEntry>(masterEntry);
  ipAddrTable_.memberIs(row);
  tell(ipAddrTableAttr, &NotifieeConst::onIpAddrTable, key);
  return row;
}

Quor::Ptr<IpAddrEntry> IpMib::ipAddrTableDel(Pelt::IpAddr key) {
  Quor::Ptr<IpAddrEntry> row = ipAddrTable_.deleteMember(key);
  if (row) tell(ipAddrTableAttr, &NotifieeConst::onIpAddrTable, key);
  return row;
}

Quor::ValidPtr<ArpTableEntry> IpMib::arpTableIs(const ArpTableIndex& key, Pelt::IntfId intfId,
                                               const Quor::Ptr<const Arp::Table::Status>& arpTarn,
                                               Vrf::VrfIdMap::VrfId arpTarnVrfId) {
  if (ArpTableEntry* row = arpTable_.member(key)) {
    checkConstructorParameter("_intfId", intfId, row->intfId());
    checkConstructorParameter("_arpTarn", arpTarn, row->arpTarn());
    checkConstructorParameter("_arpTarnVrfId", arpTarnVrfId, row->arpTarnVrfId());
    return row;
  }
  auto row = Quor::makePtr<ArpTableEntry>(key, intfId, arpTarn, arpTarnVrfId);
  arpTable_.memberIs(row);
  tell(arpTableAttr, &NotifieeConst::onArpTable, key);
  return row;
}

Quor::Ptr<ArpTableEntry> IpMib::arpTableDel(const ArpTableIndex& key) {
  Quor::Ptr<ArpTableEntry> row = arpTable_.deleteMember(key);
  if (row) tell(arpTableAttr, &NotifieeConst::onArpTable, key);
  return row;
}

Quor::ValidPtr<Ip::SwFwdStats> IpMib::ipSwFwdStatsIs(Ip::IpVersion version, const Quor::Name& vrfName) {
  if (Quor::Ptr<Ip::SwFwdStats> existing = ipSwFwdStats_.existingMember(version, vrfName)) return existing;
  Quor::ValidPtr<Ip::SwFwdStats> made = ipSwFwdStats_.newMember(version, vrfName);
  tell(ipSwFwdStatsAttr, &NotifieeConst::onIpSwFwdStats, version);
  return made;
}

Quor::Ptr<Ip::SwFwdStats> IpMib::ipSwFwdStatsDel(Ip::IpVersion version) {
  Quor::Ptr<Ip::SwFwdStats> removed = ipSwFwdStats_.deleteMember(version);
  if (removed) tell(ipSwFwdStatsAttr, &NotifieeConst::onIpSwFwdStats, version);
  return removed;
}

}  // namespace IpSnmp
