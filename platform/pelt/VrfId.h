#pragma once
// The number of a VRF inside the shared-memory tables: 0 is the default VRF, and all ones (-1)
// stands for a VRF whose number is not known yet.
#include <iosfwd>

#include "platform/quor/String.h"

namespace Vrf::VrfIdMap {

class VrfId {
 public:
  constexpr VrfId() noexcept = default;
  constexpr explicit VrfId(U32 value) noexcept : value_(value) {}
  constexpr U32 value() const noexcept { return value_; }
  constexpr bool isUnknown() const noexcept { return value_ == ~U32(0); }
  U32 hash() const noexcept { return value_ * 2654435761u; }

  friend constexpr bool operator==(VrfId, VrfId) = default;
  friend constexpr bool operator<(VrfId a, VrfId b) noexcept { return a.value_ < b.value_; }

 private:
  U32 value_ = 0;
};

inline constexpr VrfId defaultVrfId{0};
inline constexpr VrfId unknownVrfId{~U32(0)};

// The number as a signed decimal, so that the unknown id reads -1.
Quor::String8 valueToStrep(VrfId id);
std::ostream& operator<<(std::ostream& out, VrfId id);

}  // namespace Vrf::VrfIdMap
