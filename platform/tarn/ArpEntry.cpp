#include "platform/tarn/ArpEntry.h"

#include <cstring>
#include <ostream>

namespace Arp::Table {

bool operator<(const ArpKey& a, const ArpKey& b) noexcept {
  if (a.vrfId != b.vrfId) return a.vrfId < b.vrfId;
  if (a.intfId != b.intfId) return a.intfId < b.intfId;
  return a.addr < b.addr;
}

std::ostream& operator<<(std::ostream& out, const ArpKey& key) {
  return out << "vrf " << key.vrfId << " " << key.intfId << " " << key.addr;
}

std::ostream& operator<<(std::ostream& out, const ArpEntry& entry) {
  return out << entry.key() << " " << entry.ethAddr << (entry.isStatic ? " static" : " dynamic");
}

void ArpCodec::encodeKey(const ArpKey& key, ArpRecord* record) {
  std::memset(record, 0, keySize);
  record->vrfId = key.vrfId.value();
  record->intf = Tarn::encodeIntfName(key.intfId);
  record->addr = Tarn::encodeIpGenAddr(key.addr);
}

ArpRecord ArpCodec::encode(const ArpEntry& entry) {
  ArpRecord record{};
  encodeKey(entry.key(), &record);
  for (unsigned i = 0; i < 3; ++i) record.ethAddr[i] = entry.ethAddr.word(i);
  record.isStatic = entry.isStatic;
  return record;
}

ArpKey ArpCodec::decodeKey(const std::byte* key) {
  ArpRecord record;
  std::memcpy(&record, key, keySize);
  return ArpKey{Vrf::VrfIdMap::VrfId(record.vrfId), Tarn::decodeIntfName(record.intf),
                Tarn::decodeIpGenAddr(record.addr)};
}

ArpEntry ArpCodec::decode(const ArpRecord& record) {
  ArpKey key = decodeKey(reinterpret_cast<const std::byte*>(&record));
  return ArpEntry{key.vrfId, key.intfId, key.addr, Pelt::EthAddr(record.ethAddr[0], record.ethAddr[1], record.ethAddr[2]),
                  record.isStatic != 0};
}

}  // namespace Arp::Table
