#pragma once
// What is too large to free in one turn of the event loop (the million rows of a VRF that goes) is
// freed by the reaper, in slices from the clock, after its owner has let it go.
//
// The owner hands over what it lets go inside a step that frees a bounded part of it (a few hundred
// rows) and says whether anything is left; the captures of the step hold the rest, and go with the
// step once it says it is done. Steps run in the order they came, in slices of SlicedPass, so that
// the host loop serves requests between slices. What is handed over must no longer be reachable
// from anything that serves requests or reacts to changes: the reaper only frees.
//
// reapAll() frees everything now, whatever the time: for the end of the process or of the plug-in,
// and for tests.
#include <cstddef>
#include <functional>

namespace Quor {

// Frees a bounded part of what it holds; false once nothing is left.
using ReapStep = std::function<bool()>;

// Queues `step` and asks the clock for a slice.
void reap(ReapStep step);
// Runs every step queued to its end now.
void reapAll();
// The steps not yet done.
std::size_t reapsPending();

// Unmaps `bytes` at `base`, a mapping of its own or the whole of one: at once when it is small, else
// through the reaper a few megabytes at a time (the kernel frees a mapping's pages as it unmaps them,
// some milliseconds for each hundred megabytes).
void reapMapping(void* base, std::size_t bytes);

}  // namespace Quor
