#pragma once
// Entering a Linux network namespace by name, so that files opened under /proc/net afterwards show
// that namespace's counters.

namespace Pelt {

// Enters /var/run/netns/<name>; "default" returns to the namespace that the process had when this
// was first called. Gives false, with a level 1 trace under "Pelt", when the namespace cannot be
// entered; the calling thread then stays where it was.
bool setNsByName(const char* name);

}  // namespace Pelt
