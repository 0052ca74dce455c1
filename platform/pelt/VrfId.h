#pragma once
// The number of a VRF inside the shared-memory tables: 0 is the default VRF, and all ones (-1)
// stands for a VRF whose number is not known yet.
#include <iosfwd>

#include "platform/pelt/TaggedNumber.h"

namespace Vrf::VrfIdMap {

class VrfId : public Pelt::TaggedNumber<U32, VrfId> {
 public:
  using TaggedNumber::TaggedNumber;
  constexpr bool isUnknown() const noexcept { return value() == ~U32(0); }
};

inline constexpr VrfId defaultVrfId{0};
inline constexpr VrfId unknownVrfId{~U32(0)};

// The number as a signed decimal, so that the unknown id reads -1.
Quor::String8 valueToStrep(VrfId id);
std::ostream& operator<<(std::ostream& out, VrfId id);

}  // namespace Vrf::VrfIdMap
