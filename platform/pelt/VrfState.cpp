#include "platform/pelt/VrfState.h"

#include <ostream>

#include "platform/pelt/EnumText.h"
#include "platform/quor/Strep.h"

namespace Ip {

namespace {

constexpr Pelt::Enumerator<VrfState> names[] = {
    {vrfStateInitializing, "vrfStateInitializing"},
    {vrfStateActive, "vrfStateActive"},
    {vrfStateDeleting, "vrfStateDeleting"},
};

}  // namespace

Quor::String8 stringValue(VrfState state) { return Pelt::enumName(names, state, "VrfState"); }

VrfState VrfStateInstance(const Quor::String8& name) { return Pelt::enumByName(names, name.view(), "VrfState"); }

Quor::String8 valueToStrep(VrfState state) { return Quor::valueToStrep(stringValue(state)); }

std::ostream& operator<<(std::ostream& out, VrfState state) { return out << stringValue(state); }

}  // namespace Ip
