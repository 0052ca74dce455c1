#include "platform/pelt/VrfState.h"

#include <ostream>

#include "platform/pelt/EnumText.h"

namespace Ip {

namespace {

constexpr Pelt::Enumerator<VrfState> names[] = {
    {vrfStateInitializing, "vrfStateInitializing"},
    {vrfStateActive, "vrfStateActive"},
    {vrfStateDeleting, "vrfStateDeleting"},
};

}  // namespace

PELT_DEFINE_ENUM_TEXT(VrfState, names)

std::ostream& operator<<(std::ostream& out, VrfState state) { return out << stringValue(state); }

}  // namespace Ip
