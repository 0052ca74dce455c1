#pragma once
// Lookups of the agent's entities for the front end's registrations.
#include <string_view>

#include "platform/quor/Entity.h"

namespace SnmpUtil {

// The root entity of the system, set once when the plug-in starts and cleared when it stops.
void rootIs(const Quor::Ptr<Quor::Entity>& root);
const Quor::Ptr<Quor::Entity>& root();

// The entity at `path` below the root ("Morvane/routing/config"), or null: also without a root.
Quor::Ptr<Quor::Entity> getEntityRelative(const char* path);

// "/<root name>/<path>": how a trace names the entity that a path stands for.
Quor::String8 absolutePath(std::string_view path);

}  // namespace SnmpUtil
