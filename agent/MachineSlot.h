#pragma once
// An owned state machine together with the parameters it was made from, for the instantiating
// mutators of Root and VrfRoot: the same parameters again return the same machine and build nothing;
// any difference builds a new machine in its place, and the old one goes with its last reference,
// its reactors marked as zombies first.
#include <tuple>
#include <utility>

#include "platform/quor/Ptr.h"

namespace IpSnmp {

template <class Sm, class... Params>
class MachineSlot {
 public:
  Quor::ValidPtr<Sm> machineIs(const Params&... params) {
    if (machine_ && parameters_ == std::tie(params...)) return machine_;
    machine_ = Quor::makePtr<Sm>(params...);
    parameters_ = std::tuple<Params...>(params...);
    machine_->hasNotificationActiveIs(true);
    return machine_;
  }
  Quor::Ptr<Sm> machineDel() {
    parameters_ = {};
    return std::exchange(machine_, nullptr);
  }
  const Quor::Ptr<Sm>& machine() const noexcept { return machine_; }

 private:
  Quor::Ptr<Sm> machine_;
  std::tuple<Params...> parameters_;
};

}  // namespace IpSnmp
