#pragma once
// Root owns the machines of the default VRF and of the VRF lifecycle: the address machine, the
// default VRF's ARP and route machines, the VRF interface machine, the directory of per-VRF roots and
// the VRF lifecycle machine. It has no logic of its own: everything reactive lives in the machines.
//
// Its instantiating mutators return the present machine when every parameter is the one it was made
// from, and otherwise build a new one in its place (see MachineSlot). The wiring order is binding:
// the containers first; then the address, ARP, route and VRF interface machines and the directory in
// any order; the lifecycle machine last, since it takes the address machine, the directory and the
// default VRF's ARP machine.
#include "agent/VrfIfTableSm.h"
#include "agent/VrfRootSm.h"

namespace IpSnmp {

class Root : public Quor::Entity, public VrfMachines {
 public:
  using Entity::Entity;
  // Deletes the machines in the order ipAddressTableSm, arpTableSm, ipRouteTableSm, ipRoute6TableSm, vrfIfTableSm,
  // vrfRootSm, vrfRootDir.
  ~Root() override;
  const char* fwkType() const override { return "IpSnmp::Root"; }

  const Quor::Ptr<IpAddressTableSm>& ipAddressTableSm() const noexcept { return ipAddressTableSm_.machine(); }
  Quor::ValidPtr<IpAddressTableSm> ipAddressTableSmIs(const IpAddressTableSm::Inputs& inputs) {
    return ipAddressTableSm_.machineIs(inputs);
  }
  Quor::Ptr<IpAddressTableSm> ipAddressTableSmDel() { return ipAddressTableSm_.machineDel(); }

  const Quor::Ptr<VrfIfTableSm>& vrfIfTableSm() const noexcept { return vrfIfTableSm_.machine(); }
  Quor::ValidPtr<VrfIfTableSm> vrfIfTableSmIs(const VrfIfTableSm::Inputs& inputs) {
    return vrfIfTableSm_.machineIs(inputs);
  }
  Quor::Ptr<VrfIfTableSm> vrfIfTableSmDel() { return vrfIfTableSm_.machineDel(); }

  const Quor::Ptr<VrfRootDir>& vrfRootDir() const noexcept { return vrfRootDir_; }
  // The directory of that name, with this Root as its parent.
  Quor::ValidPtr<VrfRootDir> vrfRootDirIs(const Quor::Name& name);
  Quor::Ptr<VrfRootDir> vrfRootDirDel() { return std::exchange(vrfRootDir_, nullptr); }

  const Quor::Ptr<VrfRootSm>& vrfRootSm() const noexcept { return vrfRootSm_.machine(); }
  Quor::ValidPtr<VrfRootSm> vrfRootSmIs(const VrfRootSm::Inputs& inputs) { return vrfRootSm_.machineIs(inputs); }
  Quor::Ptr<VrfRootSm> vrfRootSmDel() { return vrfRootSm_.machineDel(); }

 private:
  MachineSlot<IpAddressTableSm> ipAddressTableSm_;
  MachineSlot<VrfIfTableSm> vrfIfTableSm_;
  Quor::Ptr<VrfRootDir> vrfRootDir_;
  MachineSlot<VrfRootSm> vrfRootSm_;
};

// A Root of that name with no machine yet.
Quor::Ptr<Root> rootFactory(const Quor::Name& name);

}  // namespace IpSnmp
