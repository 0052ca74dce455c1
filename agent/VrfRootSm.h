#pragma once
// VrfRootSm makes the non-default VRFs appear in the agent and go away again, keeps vrfTable, and
// routes the ARP table's notifications to the ARP machine of each entry's VRF.
//
// A VRF is unknown (no status reactor), known (a reactor, no VrfRoot) or up (a VrfRoot). It comes up
// once the agent is initialized and the routing side has published it (an entry of
// routingVrfInfoDir): its tables are mounted, its containers and machines made, its address
// reactors let in, and only then is its SNMP context opened, once its neighbours are in (at once for
// an ARP table that a slice walks, a few slices later for a large one). Its routes fill in after. It goes at state 2, or when its status
// member leaves: the context is closed first, then its tables are unmounted and its rows, containers
// and machines deleted. It can come up again, with fresh containers that the machines fill whole: its
// neighbours (the ARP machine populates when it is made with a known VRF id), its interfaces'
// addresses of either side, its oskelVrfIfTable rows. When the agent's status goes from initialized
// to not, every VRF goes down the same way (keeping its vrfTable row), and comes back when the status
// returns. A VRF whose bring-up fails (tables that cannot be mounted under its name, say) is traced
// at level 0, left down with nothing of it kept, and the others go on.
//
// Deliberate, and relied on:
// - nothing about VRFs happens before the agent is initialized, except vrfTable rows: a state 0 adds
//   the row whenever its three sources exist; after initialization a state 1, a publication and the
//   arrival of the VRF's IP configuration do as well; a VRF torn down before initialization keeps its
//   row;
// - a VRF leaving routingVrfInfoDir is not torn down for that; only its status decides;
// - the default VRF is not special-cased here: its machines are Root's, and the inputs must not list it;
// - vrfTable rows are never refreshed: a row stays with the objects it was made from;
// - ARP entries of an unknown VRF id, or of a VRF that is not up, are dropped and not remembered;
//   the id's arrival (populate) or an interface change brings them in later;
// - an interface change, and the pass at initialization, walk the whole ARP table (it has no index
//   by interface) in slices from the clock, the first at once: interfaces that change while a walk is
//   under way wait for the next walk, which covers them all; an entry is taken as the walk finds it,
//   with the interface's status of that moment, and one that would take another entry's row is traced
//   and skipped, not a failure that ends the walk.
#include <optional>
#include <set>

#include "agent/IpAddressTableSm.h"
#include "agent/SnmpContexts.h"
#include "agent/VrfIfTableSm.h"
#include "agent/VrfRoot.h"
#include "model/IpVrfMib.h"
#include "model/VrfMibs.h"
#include "platform/morvane/EntityManager.h"
#include "platform/morvane/RoutingConfig.h"
#include "platform/morvane/SnmpStatus.h"
#include "platform/quor/SlicedPass.h"
#include "platform/tarn/ReverseMapper.h"

namespace IpSnmp {

class VrfRootSm : public Quor::Reactor {
 public:
  class QuorIntfStatusDir;
  class QuorRoutingVrfConfigDir;
  class QuorRoutingVrfInfoDir;
  class QuorAllVrfStatusLocal;
  class QuorVrfStatusLocal;
  class QuorArpTarn;
  class QuorAllVrfConfig;
  class QuorArpTarnVrfNameToIdMap;
  class QuorSnmpAgentStatus;
  class QuorVrfRoot;

  // `snmpContexts` opens and closes the VRFs' SNMP contexts and must outlive the machine.
  struct Inputs {
    Quor::ValidPtr<IpAddressTableSm> ipAddressTableSm;
    Quor::ValidPtr<const Interface::AllIntfStatusDir> intfStatusDir;
    Quor::ValidPtr<const Routing::VrfConfigDir> routingVrfConfigDir;
    Quor::ValidPtr<const Quor::Dir> routingVrfInfoDir;
    Quor::ValidPtr<VrfMibsDir> vrfMibsDir;
    Quor::ValidPtr<VrfRootDir> vrfRootDir;
    Quor::ValidPtr<const Ip::AllVrfStatusLocal> allVrfStatusLocal;
    Quor::ValidPtr<const Ip::AllVrfConfig> allVrfConfig;
    Quor::ValidPtr<const Snmp::Status> snmpStatus;
    Quor::ValidPtr<IpVrfMib> ipVrfMib;
    Quor::ValidPtr<const Morvane::EntityManager> entityManager;
    Quor::ValidPtr<const Arp::Table::Status> arpTarn;
    Quor::ValidPtr<const Vrf::VrfIdMap::Status> arpTarnVrfIdMap;
    Quor::ValidPtr<ArpTableSm> defaultVrfArpTableSm;
    // The VRF interface machine, which gives a VRF that comes up again its rows back; may be absent.
    Quor::Ptr<VrfIfTableSm> vrfIfTableSm;
    SnmpContexts* snmpContexts = nullptr;
    friend bool operator==(const Inputs&, const Inputs&) = default;
  };

  // Ends with the agent's status bound, which brings up every published VRF at once if the agent is
  // initialized already.
  explicit VrfRootSm(const Inputs& inputs);
  ~VrfRootSm() override;

  bool initialized() const noexcept { return initialized_; }
  const Quor::Ptr<VrfRootDir>& vrfRootDir() const noexcept { return vrfRootDir_; }
  const Quor::Ptr<IpVrfMib>& ipVrfMib() const noexcept { return ipVrfMib_; }
  const Quor::Ptr<ArpTableSm>& defaultVrfArpTableSm() const noexcept { return defaultVrfArpTableSm_; }
  const Quor::Ptr<const Vrf::VrfIdMap::Status>& arpTarnVrfIdMap() const noexcept { return arpTarnVrfIdMap_; }
  Quor::Ptr<const Vrf::VrfIdMap::NameToIdMap> arpTarnVrfNameToIdMap() const;

  // Agent status: true brings the VRFs up and loads the ARP tables; false takes them down again.
  void handleInitialized(bool value);
  // Brings up every published VRF and adds the rows of every VRF with routing configuration; the ARP
  // tables are loaded after, in one walk for all.
  void handleVrfCreation();
  // Brings one VRF up, if it is published and not up yet, with its neighbours.
  void handleVrfCreation(const Quor::Name& name);
  void addToVrfTable(const Quor::Name& name);
  void delFromVrfTable(const Quor::Name& name);

  // ARP routing by VRF.
  void handleArpEntry(const Arp::Table::ArpKey& key);
  void handleArpTarnVrfName(const Quor::String8& name);
  // The entries of one interface, and of every interface with status: walks of the ARP table.
  void handleIntfStatus(Pelt::IntfId intfId);
  void handleIntfStatus();
  // Whether a walk of the ARP table is under way or waiting.
  bool arpWalking() const noexcept { return arpWalk_ && arpWalk_->pending(); }

  // One status reactor per member of allVrfStatusLocal.
  Quor::ValidPtr<QuorVrfStatusLocal> vrfStatusLocalIs(const Quor::Ptr<const Ip::VrfStatusLocal>& status);
  void vrfStatusLocalDel(const L3::VrfName& name);
  void vrfStatusLocalDelAll();
  QuorVrfStatusLocal* vrfStatusLocal(const L3::VrfName& name) const { return vrfStatusLocal_.member(name); }
  // A status reactor for every member, none for the others.
  void resynchroniseVrfStatusLocal();

  // The VRFs that are up.
  void vrfRootIs(const Quor::Ptr<const VrfRoot>& vrfRoot);
  void vrfRootDel(const Quor::Name& name);
  QuorVrfRoot* vrfRoot(const Quor::Name& name) const { return vrfRoot_.member(name); }

 protected:
  void quorZombieNested(bool flag) override;

 private:
  friend class QuorVrfStatusLocal;
  friend Quor::Ptr<ArpTableSm> arpTarnKeyToArpTableSm(const Quor::Ptr<VrfRootSm>& sm, const Arp::Table::ArpKey& key,
                                                       Quor::String8* vrfName);
  // arpTarnKeyToArpTableSm without a reference of its own, which the constructor's passes may not take.
  Quor::Ptr<ArpTableSm> arpTableSmOf(const Arp::Table::ArpKey& key, Quor::String8* vrfName) const;
  // The bring-up of a published VRF that is not up; `populateArp` loads its neighbours, and the
  // context opens once they are in.
  void doVrfBringUp(const Quor::Name& name, bool populateArp);
  // The last of the bring-up: the context, and the addresses and interfaces that move in.
  void doVrfOpen(const Quor::Name& name);
  // Opens the context of one VRF whose neighbours are in; false when none is waiting for that.
  bool doOpenStep();
  // The teardown of a VRF that is up, or of its row only.
  void doVrfTeardown(const L3::VrfName& name);
  // What of a VRF is up goes: its context, its tables' mounts, its containers and machines. Also
  // what a failed bring-up made.
  void doVrfDown(const Quor::Name& name);
  Arp::Table::ArpEntry arpEntryOf(const Arp::Table::ArpKey& key) const;
  // What the next walk of the ARP table covers: every interface with status, or these interfaces.
  struct ArpWalkCover {
    bool all = false;
    std::set<Pelt::IntfId> intfs;
    bool empty() const noexcept { return !all && intfs.empty(); }
  };
  // Runs a slice of the walks now, and the rest from the clock.
  void doArpWalk();
  // Hands the entry after the walk's position to its machine; false when no walk is left.
  bool doArpWalkStep();

  // Until the constructor has bound every input, binding runs no pass over it. First of the members,
  // so that it is set before the reactors are made.
  bool wired_ = false;
  const Quor::Ptr<IpAddressTableSm> ipAddressTableSm_;
  Quor::Ptr<QuorIntfStatusDir> intfStatusDir_;
  Quor::Ptr<QuorRoutingVrfConfigDir> routingVrfConfigDir_;
  Quor::Ptr<QuorRoutingVrfInfoDir> routingVrfInfoDir_;
  const Quor::Ptr<VrfMibsDir> vrfMibsDir_;
  const Quor::Ptr<VrfRootDir> vrfRootDir_;
  Quor::HashMap<QuorVrfRoot, Quor::Name> vrfRoot_;
  Quor::Ptr<QuorAllVrfStatusLocal> allVrfStatusLocal_;
  Quor::Ptr<QuorAllVrfConfig> allVrfConfig_;
  const Quor::Ptr<const Snmp::Status> snmpStatus_;
  const Quor::Ptr<IpVrfMib> ipVrfMib_;
  const Quor::Ptr<const Morvane::EntityManager> entityManager_;
  Quor::Ptr<QuorArpTarn> arpTarn_;
  const Quor::Ptr<const Vrf::VrfIdMap::Status> arpTarnVrfIdMap_;
  const Quor::Ptr<ArpTableSm> defaultVrfArpTableSm_;
  const Quor::Ptr<VrfIfTableSm> vrfIfTableSm_;
  Quor::Ptr<QuorArpTarnVrfNameToIdMap> arpTarnVrfNameToIdMap_;
  Quor::Ptr<Vrf::VrfIdMap::ReverseMapper> arpTarnVrfIdReverseMapper_;
  Quor::HashMap<QuorVrfStatusLocal, L3::VrfName> vrfStatusLocal_;
  bool initialized_ = false;
  // The ARP walk under way (`arpWalking_`, at `arpWalkAt_` after `arpWalkedThrough_`) and the next.
  std::optional<ArpWalkCover> arpWalking_;
  ArpWalkCover arpWalkNext_;
  Tarn::TarnMapIterator arpWalkAt_;
  std::optional<Arp::Table::ArpKey> arpWalkedThrough_;
  Quor::Ptr<Quor::SlicedPass> arpWalk_;
  // VRFs that are up and whose context waits until their neighbours are in, and what opens it.
  std::set<Quor::Name> awaitingNeighbours_;
  Quor::Ptr<Quor::SlicedPass> contextOpener_;
  Quor::Ptr<QuorSnmpAgentStatus> snmpAgentStatus_;
  SnmpContexts* const snmpContexts_;
};

// The ARP machine of the VRF that `key` belongs to, and that VRF's name; null when the VRF id is not
// known or its VRF is not up.
Quor::Ptr<ArpTableSm> arpTarnKeyToArpTableSm(const Quor::Ptr<VrfRootSm>& sm, const Arp::Table::ArpKey& key,
                                             Quor::String8* vrfName);

// The reactors, each forwarding to the machine while it has one.
template <class Notifiee>
class VrfRootSmInput : public Notifiee {
 public:
  explicit VrfRootSmInput(VrfRootSm* sm) : vrfRootSm_(sm) {}
  void vrfRootSmIs(VrfRootSm* sm) noexcept { vrfRootSm_ = sm; }

 protected:
  VrfRootSm* vrfRootSm_;
};

class VrfRootSm::QuorIntfStatusDir final : public VrfRootSmInput<Interface::AllIntfStatusDir::NotifieeConst> {
 public:
  using VrfRootSmInput::VrfRootSmInput;
  void onIntfStatus(const Pelt::IntfId& intfId) override;
  void onIntfStatusquorImmediate() override;

 protected:
  void onNotifierIs() override;
};

class VrfRootSm::QuorRoutingVrfConfigDir final : public VrfRootSmInput<Routing::VrfConfigDir::NotifieeConst> {
 public:
  using VrfRootSmInput::VrfRootSmInput;
  void onVrfConfig(const Quor::Name& name) override;
  void onVrfConfigquorImmediate() override {}
};

class VrfRootSm::QuorRoutingVrfInfoDir final : public VrfRootSmInput<Quor::Dir::NotifieeConst> {
 public:
  using VrfRootSmInput::VrfRootSmInput;
  void onEntityPtr(const Quor::Name& name) override;
};

class VrfRootSm::QuorAllVrfStatusLocal final : public VrfRootSmInput<Ip::AllVrfStatusLocal::NotifieeConst> {
 public:
  using VrfRootSmInput::VrfRootSmInput;
  void onVrf(const L3::VrfName& name) override;
  void onVrfquorImmediate() override;

 protected:
  void onNotifierIs() override;
};

class VrfRootSm::QuorVrfStatusLocal final : public Ip::VrfStatusLocal::NotifieeConst, public Quor::HashLink {
 public:
  QuorVrfStatusLocal(VrfRootSm* sm, const Quor::Ptr<const Ip::VrfStatusLocal>& status);
  const L3::VrfName& fwkKey() const noexcept { return name_; }
  void onState() override { handleVrfState(); }
  void handleVrfState();
  void vrfRootSmIs(VrfRootSm* sm) noexcept { vrfRootSm_ = sm; }

 protected:
  void onNotifierIs() override { handleVrfState(); }
  // The teardown of the VRF: at state 2, and when the member leaves.
  void handleDel() override;

 private:
  const L3::VrfName name_;
  VrfRootSm* vrfRootSm_;
};

// A VRF's IP configuration may come last of the three sources of its vrfTable row.
class VrfRootSm::QuorAllVrfConfig final : public VrfRootSmInput<Ip::AllVrfConfig::NotifieeConst> {
 public:
  using VrfRootSmInput::VrfRootSmInput;
  void onVrf(const L3::VrfName& name) override;
};

class VrfRootSm::QuorArpTarn final : public VrfRootSmInput<Arp::Table::Status::NotifieeConst> {
 public:
  using VrfRootSmInput::VrfRootSmInput;
  void onArpEntry(const Arp::Table::ArpKey& key) override;
  void onArpEntryquorImmediate() override {}
};

class VrfRootSm::QuorArpTarnVrfNameToIdMap final
    : public VrfRootSmInput<Vrf::VrfIdMap::NameToIdMap::NotifieeConst> {
 public:
  using VrfRootSmInput::VrfRootSmInput;
  void onVrfNameToId(const Quor::String8& name) override;
  void onVrfNameToIdquorImmediate() override {}
};

class VrfRootSm::QuorSnmpAgentStatus final : public VrfRootSmInput<Snmp::Status::NotifieeConst> {
 public:
  using VrfRootSmInput::VrfRootSmInput;
  void onInitialized() override;

 protected:
  void onNotifierIs() override { onInitialized(); }
};

// The record of a VRF that is up.
class VrfRootSm::QuorVrfRoot final : public Quor::PtrInterface, public Quor::HashLink {
 public:
  explicit QuorVrfRoot(Quor::Ptr<const VrfRoot> vrfRoot) : vrfRoot_(std::move(vrfRoot)) {}
  const Quor::Name& fwkKey() const noexcept { return vrfRoot_->name(); }
  const Quor::Ptr<const VrfRoot>& vrfRoot() const noexcept { return vrfRoot_; }

 private:
  const Quor::Ptr<const VrfRoot> vrfRoot_;
};

}  // namespace IpSnmp
