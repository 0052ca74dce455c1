#pragma once
// Long work cut up by time. A machine whose pass over a whole table would hold up the event loop
// (walking a million entries, freeing a million rows) hands the work to a SlicedPass as a sequence
// of small steps: the pass runs steps from the clock until none is left or its slice is spent, then
// asks the clock for the next opportunity, so that the host loop serves requests between slices. A
// slice ends at sliceDeadline(quantum): after at most `quantum` seconds, and within the loop's turn.
//
// The steps and their position belong to the owner: each step does one bounded piece (a row, an
// entry) and says whether any work is left, so work that arrives while a pass is under way is the
// owner's to fold into its position. start() is cheap and may be called at every arrival. A step
// that raises ends the slice; the pass stays armed and goes on at the next opportunity.
//
// Like every reactor the pass is a heap object held through a Ptr; its owner drops it with stop()
// before the steps' captures go.
#include <functional>

#include "platform/quor/Clock.h"

namespace Quor {

class SlicedPass final : public Clock::NotifieeConst {
 public:
  using Step = std::function<bool()>;
  static constexpr double defaultQuantum = 0.005;

  explicit SlicedPass(Step step, double quantum = defaultQuantum);
  // Follows `clock`, by default the activity manager's.
  void clockIs(const Ptr<const Clock>& clock) { notifierIs(clock); }

  // Asks for a slice at the clock's next opportunity unless one is pending already.
  void start();
  bool pending() const noexcept { return timeMin() == 0.0; }
  // Runs every remaining step now, whatever the time: for work that must end before its owner does.
  void finish();
  // Forgets the steps and leaves the clock.
  void stop();

  void onTime() override;

 private:
  Step step_;
  double quantum_;
};

// A pass of `step` on the activity manager's clock, not started.
Ptr<SlicedPass> slicedPass(SlicedPass::Step step, double quantum = SlicedPass::defaultQuantum);

}  // namespace Quor
