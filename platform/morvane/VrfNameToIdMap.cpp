#include "platform/morvane/VrfNameToIdMap.h"

namespace Vrf::VrfIdMap {

void NameToIdMap::vrfNameToIdIs(const Quor::String8& name, VrfId id) {
  memberIs<&NotifieeConst::onVrfNameToId>("vrfNameToId", vrfNameToId_, name, id);
}

void NameToIdMap::vrfNameToIdDel(const Quor::String8& name) {
  memberDel<&NotifieeConst::onVrfNameToId>("vrfNameToId", vrfNameToId_, name);
}

}  // namespace Vrf::VrfIdMap
