#pragma once
// Brings the store in line with a scenario by difference: members the scenario lacks are removed,
// new ones are made, existing ones are changed in place where their type allows, and a value
// that is already right is not written, so that it notifies nobody.
//
// Order matters to the store's readers, and follows how a switch changes: first every removal,
// the IP sides of interfaces before the interfaces themselves and those before the VRFs; then every
// addition or change the other way round, routing, VRFs, interfaces, their IP sides, and the
// agent's status last. A new entity is filled in before it is entered, so its first notification
// shows it complete.
#include "platform/morvane/Store.h"
#include "sources/scenario/Scenario.h"

namespace Sources {

void applyScenario(const Scenario& scenario, const Morvane::Store& store);

}  // namespace Sources
