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

class Root : public Quor::Entity {
 public:
  using Entity::Entity;
  // Deletes the machines in the order ipAddressTableSm, arpTableSm, ipRouteTableSm, vrfIfTableSm,
  // vrfRootSm, vrfRootDir.
  ~Root() override;
  const char* fwkType() const override { return "IpSnmp::Root"; }

  const Quor::Ptr<IpAddressTableSm>& ipAddressTableSm() const noexcept { return ipAddressTableSm_.machine(); }
  Quor::ValidPtr<IpAddressTableSm> ipAddressTableSmIs(const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
                                                      const Quor::Ptr<IpMib>& ipMib,
                                                      const Quor::Ptr<const Ip::Config>& config,
                                                      const Quor::Ptr<const Ip::Status>& status,
                                                      const Quor::Ptr<const Ip6::Config>& config6,
                                                      const Quor::Ptr<const Ip6::Status>& status6);
  Quor::Ptr<IpAddressTableSm> ipAddressTableSmDel() { return ipAddressTableSm_.machineDel(); }

  const Quor::Ptr<ArpTableSm>& arpTableSm() const noexcept { return arpTableSm_.machine(); }
  Quor::ValidPtr<ArpTableSm> arpTableSmIs(const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
                                          const Quor::Ptr<IpMib>& ipMib,
                                          const Quor::Ptr<const Arp::Table::Status>& arpTarn,
                                          Vrf::VrfIdMap::VrfId arpTarnVrfId);
  Quor::Ptr<ArpTableSm> arpTableSmDel() { return arpTableSm_.machineDel(); }

  const Quor::Ptr<IpRouteTableSm>& ipRouteTableSm() const noexcept { return ipRouteTableSm_.machine(); }
  Quor::ValidPtr<IpRouteTableSm> ipRouteTableSmIs(const Quor::Ptr<IpForwardMib>& ipForwardMib,
                                                  const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
                                                  const Quor::Ptr<const Tarn::Fib::RouteStatus>& routeStatus,
                                                  const Quor::Ptr<const Tarn::Fib::ForwardingStatus>& forwardingStatus,
                                                  const Quor::Ptr<const Quor::Clock>& clock);
  Quor::Ptr<IpRouteTableSm> ipRouteTableSmDel() { return ipRouteTableSm_.machineDel(); }

  const Quor::Ptr<VrfIfTableSm>& vrfIfTableSm() const noexcept { return vrfIfTableSm_.machine(); }
  Quor::ValidPtr<VrfIfTableSm> vrfIfTableSmIs(const Quor::Ptr<IpVrfMib>& ipVrfMib,
                                              const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
                                              const Quor::Ptr<const Ip::Config>& config);
  Quor::Ptr<VrfIfTableSm> vrfIfTableSmDel() { return vrfIfTableSm_.machineDel(); }

  const Quor::Ptr<VrfRootDir>& vrfRootDir() const noexcept { return vrfRootDir_; }
  // The directory of that name, with this Root as its parent.
  Quor::ValidPtr<VrfRootDir> vrfRootDirIs(const Quor::Name& name);
  Quor::Ptr<VrfRootDir> vrfRootDirDel() { return std::exchange(vrfRootDir_, nullptr); }

  const Quor::Ptr<VrfRootSm>& vrfRootSm() const noexcept { return vrfRootSm_.machine(); }
  Quor::ValidPtr<VrfRootSm> vrfRootSmIs(
      const Quor::Ptr<IpAddressTableSm>& ipAddressTableSm, const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
      const Quor::Ptr<const Routing::VrfConfigDir>& routingVrfConfigDir, const Quor::Ptr<const Quor::Dir>& routingVrfInfoDir,
      const Quor::Ptr<VrfMibsDir>& vrfMibsDir, const Quor::Ptr<VrfRootDir>& vrfRootDir,
      const Quor::Ptr<const Ip::AllVrfStatusLocal>& allVrfStatusLocal, const Quor::Ptr<const Ip::AllVrfConfig>& allVrfConfig,
      const Quor::Ptr<const Snmp::Status>& snmpStatus, const Quor::Ptr<IpVrfMib>& ipVrfMib,
      const Quor::Ptr<const Morvane::EntityManager>& entityManager, const Quor::Ptr<const Arp::Table::Status>& arpTarn,
      const Quor::Ptr<const Vrf::VrfIdMap::Status>& arpTarnVrfIdMap, const Quor::Ptr<ArpTableSm>& defaultVrfArpTableSm,
      SnmpContexts* snmpContexts);
  Quor::Ptr<VrfRootSm> vrfRootSmDel() { return vrfRootSm_.machineDel(); }

 private:
  MachineSlot<IpAddressTableSm, Quor::Ptr<const Interface::AllIntfStatusDir>, Quor::Ptr<IpMib>,
              Quor::Ptr<const Ip::Config>, Quor::Ptr<const Ip::Status>, Quor::Ptr<const Ip6::Config>,
              Quor::Ptr<const Ip6::Status>>
      ipAddressTableSm_;
  MachineSlot<ArpTableSm, Quor::Ptr<const Interface::AllIntfStatusDir>, Quor::Ptr<IpMib>,
              Quor::Ptr<const Arp::Table::Status>, Vrf::VrfIdMap::VrfId>
      arpTableSm_;
  MachineSlot<IpRouteTableSm, Quor::Ptr<IpForwardMib>, Quor::Ptr<const Interface::AllIntfStatusDir>,
              Quor::Ptr<const Tarn::Fib::RouteStatus>, Quor::Ptr<const Tarn::Fib::ForwardingStatus>,
              Quor::Ptr<const Quor::Clock>>
      ipRouteTableSm_;
  MachineSlot<VrfIfTableSm, Quor::Ptr<IpVrfMib>, Quor::Ptr<const Interface::AllIntfStatusDir>,
              Quor::Ptr<const Ip::Config>>
      vrfIfTableSm_;
  Quor::Ptr<VrfRootDir> vrfRootDir_;
  MachineSlot<VrfRootSm, Quor::Ptr<IpAddressTableSm>, Quor::Ptr<const Interface::AllIntfStatusDir>,
              Quor::Ptr<const Routing::VrfConfigDir>, Quor::Ptr<const Quor::Dir>, Quor::Ptr<VrfMibsDir>,
              Quor::Ptr<VrfRootDir>, Quor::Ptr<const Ip::AllVrfStatusLocal>, Quor::Ptr<const Ip::AllVrfConfig>,
              Quor::Ptr<const Snmp::Status>, Quor::Ptr<IpVrfMib>, Quor::Ptr<const Morvane::EntityManager>,
              Quor::Ptr<const Arp::Table::Status>, Quor::Ptr<const Vrf::VrfIdMap::Status>, Quor::Ptr<ArpTableSm>,
              SnmpContexts*>
      vrfRootSm_;
};

// A Root of that name with no machine yet.
Quor::Ptr<Root> rootFactory(const Quor::Name& name);

}  // namespace IpSnmp
