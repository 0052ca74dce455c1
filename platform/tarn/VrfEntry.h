#pragma once
// The VRF-id table's values: the name of each VRF number, and the plain record in which the table
// file stores one (108 bytes).
#include <cstddef>
#include <iosfwd>

#include "platform/pelt/VrfId.h"
#include "platform/pelt/VrfName.h"

namespace Vrf::VrfIdMap {

// The default entry is the absent one: id -1 and no name.
class VrfEntry {
 public:
  VrfEntry() = default;
  VrfEntry(VrfId vrfId, L3::VrfName vrfName) : vrfId_(vrfId), vrfName_(std::move(vrfName)) {}
  VrfId vrfId() const noexcept { return vrfId_; }
  const L3::VrfName& vrfName() const noexcept { return vrfName_; }
  friend bool operator==(const VrfEntry&, const VrfEntry&) = default;

 private:
  VrfId vrfId_ = unknownVrfId;
  L3::VrfName vrfName_;
};
std::ostream& operator<<(std::ostream& out, const VrfEntry& entry);

struct VrfEntryRecord {
  U32 vrfId;
  U8 nameLength;
  U8 pad[3];
  char name[L3::VrfName::maxBytes];
};
static_assert(sizeof(VrfEntryRecord) == 108);

struct VrfEntryCodec {
  using Key = VrfId;
  using Value = VrfEntry;
  using Record = VrfEntryRecord;
  static constexpr const char* type = "Vrf::VrfIdMap::VrfEntry";
  static constexpr U32 keySize = sizeof(U32);
  static void encodeKey(VrfId id, VrfEntryRecord* record);
  static VrfEntryRecord encode(const VrfEntry& entry);
  static VrfId decodeKey(const std::byte* key);
  static VrfEntry decode(const VrfEntryRecord& record);
};

}  // namespace Vrf::VrfIdMap
