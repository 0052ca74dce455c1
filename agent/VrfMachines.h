#pragma once
// The machines that every VRF has of its own, the default VRF's in Root and each other VRF's in its
// VrfRoot: the ARP machine and the route machines of IPv4 and IPv6, each made from its inputs by a
// MachineSlot.
#include "agent/ArpTableSm.h"
#include "agent/IpRouteTableSm.h"
#include "agent/MachineSlot.h"

namespace IpSnmp {

class VrfMachines {
 public:
  const Quor::Ptr<ArpTableSm>& arpTableSm() const noexcept { return arpTableSm_.machine(); }
  Quor::ValidPtr<ArpTableSm> arpTableSmIs(const ArpTableSm::Inputs& inputs) { return arpTableSm_.machineIs(inputs); }
  Quor::Ptr<ArpTableSm> arpTableSmDel() { return arpTableSm_.machineDel(); }

  const Quor::Ptr<IpRouteTableSm>& ipRouteTableSm() const noexcept { return ipRouteTableSm_.machine(); }
  Quor::ValidPtr<IpRouteTableSm> ipRouteTableSmIs(const IpRouteTableSm::Inputs& inputs) {
    return ipRouteTableSm_.machineIs(inputs);
  }
  Quor::Ptr<IpRouteTableSm> ipRouteTableSmDel() { return ipRouteTableSm_.machineDel(); }

  const Quor::Ptr<IpRoute6TableSm>& ipRoute6TableSm() const noexcept { return ipRoute6TableSm_.machine(); }
  Quor::ValidPtr<IpRoute6TableSm> ipRoute6TableSmIs(const IpRoute6TableSm::Inputs& inputs) {
    return ipRoute6TableSm_.machineIs(inputs);
  }
  Quor::Ptr<IpRoute6TableSm> ipRoute6TableSmDel() { return ipRoute6TableSm_.machineDel(); }

 protected:
  ~VrfMachines() = default;

 private:
  MachineSlot<ArpTableSm> arpTableSm_;
  MachineSlot<IpRouteTableSm> ipRouteTableSm_;
  MachineSlot<IpRoute6TableSm> ipRoute6TableSm_;
};

}  // namespace IpSnmp
