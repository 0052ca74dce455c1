#pragma once
// An owned state machine together with the inputs it was made from (its Sm::Inputs, compared as a
// whole), for the instantiating mutators of Root and VrfRoot: the same inputs again return the same
// machine and build nothing; any difference builds a new machine in its place, and the old one goes
// with its last reference, its reactors marked as zombies first.
#include <optional>
#include <utility>

#include "platform/quor/Ptr.h"

namespace IpSnmp {

template <class Sm>
class MachineSlot {
 public:
  using Inputs = typename Sm::Inputs;

  Quor::ValidPtr<Sm> machineIs(const Inputs& inputs) {
    if (machine_ && inputs_ == inputs) return machine_;
    machine_ = Quor::makePtr<Sm>(inputs);
    inputs_ = inputs;
    machine_->hasNotificationActiveIs(true);
    return machine_;
  }
  Quor::Ptr<Sm> machineDel() {
    inputs_.reset();
    return std::exchange(machine_, nullptr);
  }
  const Quor::Ptr<Sm>& machine() const noexcept { return machine_; }

 private:
  Quor::Ptr<Sm> machine_;
  std::optional<Inputs> inputs_;
};

}  // namespace IpSnmp
