#pragma once
// The state of a VRF as its local status publishes it. The readers act on the numbers 0, 1 and 2;
// other numbers may arrive and are passed through unchanged.
#include <iosfwd>

#include "platform/quor/String.h"

namespace Ip {

enum VrfState : S32 {
  vrfStateInitializing = 0,
  vrfStateActive = 1,
  vrfStateDeleting = 2,
};

// The enumerator's name; "VrfState(<n>)" for a number without one.
Quor::String8 stringValue(VrfState state);
// Raise Quor::RangeException "VrfState" for a name that is not an enumerator.
VrfState VrfStateInstance(const Quor::String8& name);
// The name in single quotes.
Quor::String8 valueToStrep(VrfState state);
std::ostream& operator<<(std::ostream& out, VrfState state);

}  // namespace Ip
