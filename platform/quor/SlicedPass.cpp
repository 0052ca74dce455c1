#include "platform/quor/SlicedPass.h"

namespace Quor {

SlicedPass::SlicedPass(Step step, double quantum) : step_(std::move(step)), quantum_(quantum) {}

void SlicedPass::start() {
  if (step_ && timeMin() > 0.0) timeMinIs(0.0);
}

void SlicedPass::finish() {
  timeMinIs(never);
  while (step_ && step_()) {
  }
}

void SlicedPass::stop() {
  step_ = nullptr;
  timeMinIs(never);
  notifierIs(nullptr);
}

void SlicedPass::onTime() {
  const double deadline = sliceDeadline(quantum_);
  // Armed again first: a step that raises leaves the rest of the work for the next opportunity.
  timeMinIs(0.0);
  bool more = true;
  do more = step_ && step_();
  while (more && now() <= deadline);
  if (!more) timeMinIs(never);
}

Ptr<SlicedPass> slicedPass(SlicedPass::Step step, double quantum) {
  auto pass = makePtr<SlicedPass>(std::move(step), quantum);
  pass->clockIs(activityManager()->clock());
  return pass;
}

}  // namespace Quor
