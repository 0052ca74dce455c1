#pragma once
// The state of a VRF as its local status publishes it. The readers act on the numbers 0, 1 and 2;
// other numbers may arrive and are passed through unchanged.
#include <iosfwd>

#include "platform/pelt/Enumeration.h"

namespace Ip {

enum VrfState : S32 {
  vrfStateInitializing = 0,
  vrfStateActive = 1,
  vrfStateDeleting = 2,
};

PELT_DECLARE_ENUM_TEXT(VrfState);
std::ostream& operator<<(std::ostream& out, VrfState state);

}  // namespace Ip
