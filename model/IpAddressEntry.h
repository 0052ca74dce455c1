#pragma once
// One row of ipAddressTable: an address with every occurrence of it (one per store side and
// interface). Most columns derive from the master occurrence, the first in key order: the lowest
// interface among the status occurrences if any, else the lowest among the config ones. So an
// address only configured reads inaccessible and turns preferred when the status side has it too.
// A row with no occurrence exists only inside one update step and must not be read.
#include <map>

#include "model/Enums.h"
#include "model/InetAddress.h"
#include "model/IntfData.h"
#include "model/IpAddressPrefixEntry.h"
#include "platform/quor/RbTreeMap.h"

namespace IpSnmp {

class IpAddressEntry : public Quor::PtrInterface, public Quor::RbTreeLink {
 public:
  using Intfs = std::map<IntfDataKey, Quor::Ptr<const IpAddressPrefixEntry>>;

  explicit IpAddressEntry(InetAddress key) : key_(std::move(key)) {}

  const InetAddress& fwkKey() const noexcept { return key_; }
  Ip::IpVersion addrVersion() const noexcept { return key_.version; }
  const Snmp::String& addrBytes() const noexcept { return key_.bytes; }
  // The first 4 bytes as an IPv4 address; meaningful on IPv4 rows only.
  Pelt::IpAddr ipAdEntAddr() const;

  // The interface index of the master occurrence's prefix; 0 without one.
  U32 ifIndex() const;
  AddressType addressType() const noexcept { return addressTypeUnicast; }
  Quor::Ptr<const IpAddressPrefixEntry> prefixEntry() const { return intf_.begin()->second; }
  AddressStatus addressStatus() const;

  // The occurrence under `key`, or the default IntfData; never creates.
  IntfData intf(const IntfDataKey& key) const;
  // Creates the occurrence under data.key or replaces its prefix row.
  void intfIs(const IntfData& data);
  // Removes the occurrence and returns it, or the default IntfData.
  IntfData intfDel(const IntfDataKey& key);
  void intfDelAll() { intf_.clear(); }
  // All occurrences in key order; the first is the master.
  const Intfs& intfs() const noexcept { return intf_; }

 private:
  const InetAddress key_;
  Intfs intf_;
};

}  // namespace IpSnmp
