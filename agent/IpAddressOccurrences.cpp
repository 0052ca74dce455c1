// Adding and removing one occurrence of an address: the three tables of an IpMib change together,
// in a fixed order, and without yielding, so a request never sees a row between the steps.
//
// The prefix table holds the prefix row of each address's master occurrence. A new occurrence that
// sorts before the master takes the master's place in the prefix table; one that does not leaves the
// table alone, even when it is the master itself added again (its new prefix row then stays out of
// the table, which is why a later removal can leave the old one behind). A removal takes the
// occurrence's prefix row out only if the table holds that very object, then puts the remaining
// master's prefix in.
#include "agent/AgentTrace.h"
#include "agent/IpAddressTableSm.h"
#include "model/Mask.h"

namespace IpSnmp {

namespace {

constexpr const char* doAddAddrSignature =
    "void IpSnmp::IpAddressTableSm::doAddAddr(Pelt::IntfId, IpSnmp::AddressSource, S32, L3::VrfName, const "
    "Pelt::IpAddrWithMask&)";
constexpr const char* doDelAddrSignature =
    "void IpSnmp::IpAddressTableSm::doDelAddr(Pelt::IntfId, IpSnmp::AddressSource, L3::VrfName, const "
    "Pelt::IpAddrWithMask&)";
constexpr const char* doAddAddr6Signature =
    "void IpSnmp::IpAddressTableSm::doAddAddr6(Pelt::IntfId, IpSnmp::AddressSource, S32, const "
    "Pelt::Ip6AddrWithMask&)";
constexpr const char* doDelAddr6Signature =
    "void IpSnmp::IpAddressTableSm::doDelAddr6(Pelt::IntfId, IpSnmp::AddressSource, const Pelt::Ip6AddrWithMask&)";

Quor::Ptr<const IpAddressPrefixEntry> newPrefixEntry(S32 ifIndex, Ip::IpVersion version, const void* subnet,
                                                     std::size_t bytes, unsigned length) {
  return Quor::makePtr<const IpAddressPrefixEntry>(
      IpAddressPrefixKey(static_cast<U32>(ifIndex), version, Snmp::String(subnet, bytes), length));
}

}  // namespace

template <class Addr>
void IpAddressTableSm::addToIpAddressTable(IpMib& target, IpAddressEntry& row, const IntfDataKey& key,
                                           const Quor::Ptr<const IpAddressPrefixEntry>& prefix, const Addr& addr) {
  const IntfData old = row.intf(key);
  // In spite of the words the new data wins: the occurrence takes the new prefix row below.
  if (old.prefixEntry && old.prefixEntry->length() != prefix->length())
    QTRACE(agentTracer(), 1,
           key.intfId << " already has address " << addr << " with prefix length " << old.prefixEntry->length()
                      << "; ignoring it");
  const IpAddressEntry::Intfs& occurrences = row.intfs();
  if (occurrences.empty()) {
    target.ipAddressPrefixTableIs(prefix);
  } else if (key < occurrences.begin()->first) {
    target.ipAddressPrefixTableDel(occurrences.begin()->second->index());
    target.ipAddressPrefixTableIs(prefix);
  }
  row.intfIs(IntfData(key, prefix));
}

bool IpAddressTableSm::delFromIpAddressTable(IpMib& target, const InetAddress& address, const IntfDataKey& key) {
  const Quor::Ptr<IpAddressEntry> row = target.ipAddressTable(address);
  if (!row) return false;
  const IntfData data = row->intf(key);
  if (data.prefixEntry) {
    const IpAddressPrefixKey& prefixKey = data.prefixEntry->index();
    if (target.ipAddressPrefixTable(prefixKey) == data.prefixEntry) target.ipAddressPrefixTableDel(prefixKey);
    row->intfDel(key);
  }
  if (!row->intfs().empty()) {
    target.ipAddressPrefixTableIs(row->intfs().begin()->second);
    return false;
  }
  target.ipAddressTableDel(address);
  return true;
}

void IpAddressTableSm::doAddAddr(Pelt::IntfId intfId, AddressSource source, S32 ifIndex, L3::VrfName vrf,
                                 const Pelt::IpAddrWithMask& addr) {
  IPSNMP_HANDLER(doAddAddrSignature);
  QTRACE(agentTracer(), 8,
         doAddAddrSignature << " for " << intfId << " from " << source << ", " << addr << " in vrf " << vrf);
  const Quor::Ptr<IpMib> target = ipMibOf(vrf);
  if (!target) {
    QTRACE(agentTracer(), 8, "no ipmib in vrf " << vrf);
    return;
  }
  if (addr.addr().isZero() || ifIndex < 1) return;
  const Quor::ValidPtr<IpAddressEntry> row = target->ipAddressTableIs(inetAddress(addr.addr()));
  U8 subnet[4];
  subnetOf(addr.addr(), addr.len()).copyToBuffer(subnet);
  addToIpAddressTable(*target, *row, IntfDataKey(source, intfId),
                      newPrefixEntry(ifIndex, Ip::ipVersion4, subnet, sizeof subnet, addr.len()), addr);
  target->ipAddrTableIs(row);
}

void IpAddressTableSm::doDelAddr(Pelt::IntfId intfId, AddressSource source, L3::VrfName vrf,
                                 const Pelt::IpAddrWithMask& addr) {
  IPSNMP_HANDLER(doDelAddrSignature);
  QTRACE(agentTracer(), 8,
         doDelAddrSignature << " for " << intfId << " from " << source << ", " << addr << " in vrf " << vrf);
  const Quor::Ptr<IpMib> target = ipMibOf(vrf);
  if (!target) {
    QTRACE(agentTracer(), 8, "no ipmib in vrf " << vrf);
    return;
  }
  if (delFromIpAddressTable(*target, inetAddress(addr.addr()), IntfDataKey(source, intfId)))
    target->ipAddrTableDel(addr.addr());
}

void IpAddressTableSm::doAddAddr6(Pelt::IntfId intfId, AddressSource source, S32 ifIndex,
                                  const Pelt::Ip6AddrWithMask& addr) {
  IPSNMP_HANDLER(doAddAddr6Signature);
  QTRACE(agentTracer(), 8, doAddAddr6Signature << " for " << intfId << ", " << addr);
  if (addr.addr().isZero() || ifIndex <= 0) return;
  const Quor::ValidPtr<IpAddressEntry> row = ipMib_->ipAddressTableIs(inetAddress(addr.addr()));
  const Pelt::Ip6AddrWithMask subnet = addr.subnet();
  const auto& bytes = subnet.addr().bytes();
  addToIpAddressTable(*ipMib_, *row, IntfDataKey(source, intfId),
                      newPrefixEntry(ifIndex, Ip::ipVersion6, bytes.data(), bytes.size(), addr.len()), addr);
}

void IpAddressTableSm::doDelAddr6(Pelt::IntfId intfId, AddressSource source, const Pelt::Ip6AddrWithMask& addr) {
  IPSNMP_HANDLER(doDelAddr6Signature);
  QTRACE(agentTracer(), 8, doDelAddr6Signature << " for " << intfId << ", " << addr);
  delFromIpAddressTable(*ipMib_, inetAddress(addr.addr()), IntfDataKey(source, intfId));
}

}  // namespace IpSnmp
