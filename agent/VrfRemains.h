#pragma once
// What a VRF that goes leaves behind: its machines and its containers, with up to a million rows.
// Freeing them at once held the event loop a third of a second per million routes, so the teardown
// hands them to the reaper (Quor::reap), which frees them a few hundred rows at a time between
// requests. Nothing reaches them any more by then: the context is closed, the tables unmounted, the
// containers out of VrfMibsDir, and the machines are zombies that no notification or clock reaches.
#include "agent/VrfRoot.h"

namespace IpSnmp {

// Takes the machines and containers out of `root`: the ARP machine, the route machine and the route
// rows (values in blocks) go at once, the neighbours' rows to the reaper.
void reapVrfRemains(VrfRoot& root);

}  // namespace IpSnmp
