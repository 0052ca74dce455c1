#pragma once
// What a non-default VRF owns of its own while it is up: its containers and its ARP and route
// machines. VrfRootDir holds one VrfRoot per VRF that is up, by name.
#include "agent/ArpTableSm.h"
#include "agent/IpRouteTableSm.h"
#include "agent/MachineSlot.h"
#include "model/IpForwardMib.h"
#include "model/IpMib.h"

namespace IpSnmp {

class VrfRoot : public Quor::Entity, public Quor::HashLink {
 public:
  using Entity::Entity;
  // The ARP machine goes first, then the route machine; the containers keep their rows.
  ~VrfRoot() override;
  const Quor::Name& fwkKey() const noexcept { return name(); }
  const char* fwkType() const override { return "IpSnmp::VrfRoot"; }

  const Quor::Ptr<IpMib>& ipMib() const noexcept { return ipMib_; }
  void ipMibIs(const Quor::Ptr<IpMib>& ipMib) { ipMib_ = ipMib; }
  const Quor::Ptr<IpForwardMib>& ipForwardMib() const noexcept { return ipForwardMib_; }
  void ipForwardMibIs(const Quor::Ptr<IpForwardMib>& ipForwardMib) { ipForwardMib_ = ipForwardMib; }

  const Quor::Ptr<ArpTableSm>& arpTableSm() const noexcept { return arpTableSm_.machine(); }
  Quor::ValidPtr<ArpTableSm> arpTableSmIs(const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
                                          const Quor::Ptr<IpMib>& ipMib,
                                          const Quor::Ptr<const Arp::Table::Status>& arpTarn,
                                          Vrf::VrfIdMap::VrfId arpTarnVrfId) {
    return arpTableSm_.machineIs(intfStatusDir, ipMib, arpTarn, arpTarnVrfId);
  }
  Quor::Ptr<ArpTableSm> arpTableSmDel() { return arpTableSm_.machineDel(); }

  const Quor::Ptr<IpRouteTableSm>& ipRouteTableSm() const noexcept { return ipRouteTableSm_.machine(); }
  Quor::ValidPtr<IpRouteTableSm> ipRouteTableSmIs(const Quor::Ptr<IpForwardMib>& ipForwardMib,
                                                  const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir,
                                                  const Quor::Ptr<const Tarn::Fib::RouteStatus>& routeStatus,
                                                  const Quor::Ptr<const Tarn::Fib::ForwardingStatus>& forwardingStatus,
                                                  const Quor::Ptr<const Quor::Clock>& clock) {
    return ipRouteTableSm_.machineIs(ipForwardMib, intfStatusDir, routeStatus, forwardingStatus, clock);
  }
  Quor::Ptr<IpRouteTableSm> ipRouteTableSmDel() { return ipRouteTableSm_.machineDel(); }

 private:
  Quor::Ptr<IpMib> ipMib_;
  Quor::Ptr<IpForwardMib> ipForwardMib_;
  MachineSlot<ArpTableSm, Quor::Ptr<const Interface::AllIntfStatusDir>, Quor::Ptr<IpMib>,
              Quor::Ptr<const Arp::Table::Status>, Vrf::VrfIdMap::VrfId>
      arpTableSm_;
  MachineSlot<IpRouteTableSm, Quor::Ptr<IpForwardMib>, Quor::Ptr<const Interface::AllIntfStatusDir>,
              Quor::Ptr<const Tarn::Fib::RouteStatus>, Quor::Ptr<const Tarn::Fib::ForwardingStatus>,
              Quor::Ptr<const Quor::Clock>>
      ipRouteTableSm_;
};

class VrfRootDir : public Quor::Entity {
 public:
  class NotifieeConst : public Quor::Notifiee<VrfRootDir> {
   public:
    virtual void onVrfRoot(const Quor::Name&) {}
  };
  using VrfRoots = Quor::HashMap<VrfRoot, Quor::Name>;

  using Entity::Entity;
  ~VrfRootDir() override;
  const char* fwkType() const override { return "IpSnmp::VrfRootDir"; }

  VrfRoot* vrfRoot(const Quor::Name& name) const { return vrfRoot_.member(name); }
  const VrfRoots& vrfRoots() const noexcept { return vrfRoot_; }
  // The VrfRoot of `name`, made when absent.
  Quor::ValidPtr<VrfRoot> vrfRootIs(const Quor::Name& name);
  Quor::Ptr<VrfRoot> vrfRootDel(const Quor::Name& name);
  void vrfRootDelAll();

 private:
  void vrfRootNotify(const Quor::Name& name) const;
  VrfRoots vrfRoot_;
};

// A directory standing alone, without a Root.
Quor::Ptr<VrfRootDir> vrfRootDirFactory(const Quor::Name& name);

}  // namespace IpSnmp
