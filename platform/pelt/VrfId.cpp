#include "platform/pelt/VrfId.h"

#include <ostream>

namespace Vrf::VrfIdMap {

Quor::String8 valueToStrep(VrfId id) { return Quor::format("%d", static_cast<S32>(id.value())); }

std::ostream& operator<<(std::ostream& out, VrfId id) { return out << static_cast<S32>(id.value()); }

}  // namespace Vrf::VrfIdMap
