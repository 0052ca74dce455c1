#include "platform/tarn/VrfEntry.h"

#include <algorithm>
#include <cstring>
#include <ostream>

namespace Vrf::VrfIdMap {

std::ostream& operator<<(std::ostream& out, const VrfEntry& entry) {
  return out << "vrf id " << entry.vrfId() << " '" << entry.vrfName() << "'";
}

void VrfEntryCodec::encodeKey(VrfId id, VrfEntryRecord* record) { record->vrfId = id.value(); }

VrfEntryRecord VrfEntryCodec::encode(const VrfEntry& entry) {
  VrfEntryRecord record{};
  encodeKey(entry.vrfId(), &record);
  std::string_view name = entry.vrfName().stringValue().view();
  record.nameLength = static_cast<U8>(name.size());  // a VrfName has at most 100 bytes
  std::memcpy(record.name, name.data(), name.size());
  return record;
}

VrfId VrfEntryCodec::decodeKey(const std::byte* key) {
  U32 id;
  std::memcpy(&id, key, sizeof id);
  return VrfId(id);
}

VrfEntry VrfEntryCodec::decode(const VrfEntryRecord& record) {
  std::size_t length = std::min<std::size_t>(record.nameLength, L3::VrfName::maxBytes);
  return VrfEntry(VrfId(record.vrfId), L3::VrfName(std::string_view(record.name, length)));
}

}  // namespace Vrf::VrfIdMap
