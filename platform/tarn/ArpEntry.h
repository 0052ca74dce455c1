#pragma once
// The ARP table's values: the neighbours of every VRF under (VRF id, interface, address), and the
// plain record in which the table file stores one (64 bytes).
#include <cstddef>
#include <iosfwd>

#include "platform/pelt/EthAddr.h"
#include "platform/pelt/VrfId.h"
#include "platform/tarn/RecordFields.h"

namespace Arp {

namespace Table {

// Ordered by VRF id, then interface, then address.
struct ArpKey {
  Vrf::VrfIdMap::VrfId vrfId = Vrf::VrfIdMap::unknownVrfId;
  Pelt::IntfId intfId;
  Pelt::IpGenAddr addr;

  friend bool operator==(const ArpKey&, const ArpKey&) = default;
  friend bool operator<(const ArpKey& a, const ArpKey& b) noexcept;
};
std::ostream& operator<<(std::ostream& out, const ArpKey& key);

// The default entry is the absent one: VRF id -1, no interface, no address, zero MAC.
struct ArpEntry {
  Vrf::VrfIdMap::VrfId vrfId = Vrf::VrfIdMap::unknownVrfId;
  Pelt::IntfId intfId;
  Pelt::IpGenAddr addr;
  Pelt::EthAddr ethAddr;
  bool isStatic = false;

  ArpKey key() const { return ArpKey{vrfId, intfId, addr}; }
  friend bool operator==(const ArpEntry&, const ArpEntry&) = default;
};
std::ostream& operator<<(std::ostream& out, const ArpEntry& entry);

struct ArpRecord {
  U32 vrfId;
  U32 pad;
  Tarn::IntfNameField intf;
  Tarn::IpGenAddrField addr;
  U16 ethAddr[3];
  U8 isStatic;
  U8 pad2[5];
};
static_assert(sizeof(ArpRecord) == 64);

struct ArpCodec {
  using Key = ArpKey;
  using Value = ArpEntry;
  using Record = ArpRecord;
  static constexpr const char* type = "Arp::Table::ArpEntry";
  static constexpr U32 keySize = offsetof(ArpRecord, ethAddr);
  static void encodeKey(const ArpKey& key, ArpRecord* record);
  static ArpRecord encode(const ArpEntry& entry);
  static ArpKey decodeKey(const std::byte* key);
  static ArpEntry decode(const ArpRecord& record);
};

}  // namespace Table

// What a row of the MIB's ARP table shows of an entry.
struct ArpEntryStatus {
  Pelt::IpAddr ipAddr;
  Pelt::EthAddr ethAddr;
  bool isStatic = false;

  ArpEntryStatus() = default;
  explicit ArpEntryStatus(const Table::ArpEntry& entry)
      : ipAddr(entry.addr.v4Addr()), ethAddr(entry.ethAddr), isStatic(entry.isStatic) {}
  friend bool operator==(const ArpEntryStatus&, const ArpEntryStatus&) = default;
};

}  // namespace Arp
