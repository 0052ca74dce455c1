#include "agent/VrfRootSm.h"

#include <utility>
#include <vector>

#include "agent/AgentTrace.h"
#include "agent/VrfRemains.h"
#include "platform/tarn/Mount.h"

namespace IpSnmp {

namespace {

std::string formatted(const char* format, const Quor::Name& name) { return Quor::format(format, name.str().c_str()).str(); }

template <class Reactor>
void zombieIs(const Quor::Ptr<Reactor>& reactor, bool flag) {
  if (reactor) reactor->quorDoZombieReactors(flag);
}

}  // namespace

VrfRootSm::VrfRootSm(const Inputs& inputs)
    : ipAddressTableSm_(inputs.ipAddressTableSm),
      intfStatusDir_(Quor::reactorOn<QuorIntfStatusDir>(inputs.intfStatusDir, this)),
      routingVrfConfigDir_(Quor::reactorOn<QuorRoutingVrfConfigDir>(inputs.routingVrfConfigDir, this)),
      routingVrfInfoDir_(Quor::reactorOn<QuorRoutingVrfInfoDir>(inputs.routingVrfInfoDir, this)),
      vrfMibsDir_(inputs.vrfMibsDir),
      vrfRootDir_(inputs.vrfRootDir),
      allVrfStatusLocal_(Quor::reactorOn<QuorAllVrfStatusLocal>(inputs.allVrfStatusLocal, this)),
      allVrfConfig_(Quor::reactorOn<QuorAllVrfConfig>(inputs.allVrfConfig, this)),
      snmpStatus_(inputs.snmpStatus),
      ipVrfMib_(inputs.ipVrfMib),
      entityManager_(inputs.entityManager),
      arpTarn_(Quor::reactorOn<QuorArpTarn>(inputs.arpTarn, this)),
      arpTarnVrfIdMap_(inputs.arpTarnVrfIdMap),
      defaultVrfArpTableSm_(inputs.defaultVrfArpTableSm),
      vrfIfTableSm_(inputs.vrfIfTableSm),
      snmpContexts_(inputs.snmpContexts) {
  wired_ = true;
  resynchroniseVrfStatusLocal();
  snmpAgentStatus_ = Quor::reactorOn<QuorSnmpAgentStatus>(snmpStatus_, this);
}

// The reactors become zombies in the order intfStatusDir, routingVrfConfigDir, routingVrfInfoDir,
// allVrfStatusLocal, arpTarn, allVrfConfig, arpTarnVrfNameToIdMap, the status members (each of which tears its VRF
// down), snmpAgentStatus; then none of them reaches the machine any more.
VrfRootSm::~VrfRootSm() {
  quorDoZombieReactors(true);
  if (intfStatusDir_) intfStatusDir_->vrfRootSmIs(nullptr);
  if (routingVrfConfigDir_) routingVrfConfigDir_->vrfRootSmIs(nullptr);
  if (routingVrfInfoDir_) routingVrfInfoDir_->vrfRootSmIs(nullptr);
  if (allVrfStatusLocal_) allVrfStatusLocal_->vrfRootSmIs(nullptr);
  if (arpTarn_) arpTarn_->vrfRootSmIs(nullptr);
  if (allVrfConfig_) allVrfConfig_->vrfRootSmIs(nullptr);
  if (arpTarnVrfNameToIdMap_) arpTarnVrfNameToIdMap_->vrfRootSmIs(nullptr);
  if (snmpAgentStatus_) snmpAgentStatus_->vrfRootSmIs(nullptr);
  for (auto it = vrfStatusLocal_.begin(); it; ++it) it->vrfRootSmIs(nullptr);
  arpTarnVrfIdReverseMapper_ = nullptr;
  if (arpWalk_) arpWalk_->stop();
  if (contextOpener_) contextOpener_->stop();
}

void VrfRootSm::quorZombieNested(bool flag) {
  zombieIs(intfStatusDir_, flag);
  zombieIs(routingVrfConfigDir_, flag);
  zombieIs(routingVrfInfoDir_, flag);
  zombieIs(allVrfStatusLocal_, flag);
  zombieIs(arpTarn_, flag);
  zombieIs(allVrfConfig_, flag);
  zombieIs(arpTarnVrfNameToIdMap_, flag);
  for (auto it = vrfStatusLocal_.begin(); it; ++it) it->quorDoZombieReactors(flag);
  zombieIs(snmpAgentStatus_, flag);
}

Quor::Ptr<const Vrf::VrfIdMap::NameToIdMap> VrfRootSm::arpTarnVrfNameToIdMap() const {
  return arpTarnVrfNameToIdMap_ ? arpTarnVrfNameToIdMap_->notifier() : nullptr;
}

void VrfRootSm::handleInitialized(bool value) {
  if (value == initialized_) return;
  if (!value) {
    std::vector<Quor::Name> up;
    for (auto it = vrfRoot_.begin(); it; ++it) up.push_back(it.key());
    for (const Quor::Name& name : up) doVrfDown(name);
    if (arpTarnVrfNameToIdMap_) arpTarnVrfNameToIdMap_->quorDoZombieReactors(true);
    arpTarnVrfNameToIdMap_ = nullptr;
    arpTarnVrfIdReverseMapper_ = nullptr;
    initialized_ = false;
    return;
  }
  initialized_ = true;
  auto map = Quor::makePtr<Vrf::VrfIdMap::NameToIdMap>(Quor::Name("arpTarnVrfNameToIdMap"));
  arpTarnVrfNameToIdMap_ = Quor::reactorOn<QuorArpTarnVrfNameToIdMap>(Quor::Ptr<const Vrf::VrfIdMap::NameToIdMap>(map), this);
  arpTarnVrfIdReverseMapper_ = Quor::makePtr<Vrf::VrfIdMap::ReverseMapper>(arpTarnVrfIdMap_, map);
  handleVrfCreation();
  handleIntfStatus();
}

void VrfRootSm::handleVrfCreation() {
  for (const auto& [name, entity] : routingVrfInfoDir_->notifier()->entityPtrs()) doVrfBringUp(name, false);
  for (const auto& [name, config] : routingVrfConfigDir_->notifier()->vrfConfigs()) addToVrfTable(name);
}

void VrfRootSm::handleVrfCreation(const Quor::Name& name) {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::handleVrfCreation(Quor::Name)");
  QTRACE(agentTracer(), 8, "void IpSnmp::VrfRootSm::handleVrfCreation(Quor::Name)" << " for vrf " << name);
  doVrfBringUp(name, true);
}

void VrfRootSm::doVrfBringUp(const Quor::Name& name, bool populateArp) {
  if (!initialized_) return;
  addToVrfTable(name);
  if (vrfRoot_.member(name) || !routingVrfInfoDir_->notifier()->entityPtr(name)) return;
  try {
    QuorTarn::Mount mount(entityManager_, "");
    mount.handleInitialized();
    using namespace Tarn::Fib;
    auto routeStatus = QuorTarn::mountedAs<RouteStatus>(mount, formatted(vrfRoutePathFormat, name), TableInfo::routeInfo());
    auto forwardingStatus = QuorTarn::mountedAs<ForwardingStatus>(mount, formatted(vrfForwardingPathFormat, name),
                                                                  TableInfo::forwardingInfo());
    auto route6Status =
        QuorTarn::mountedAs<Route6Status>(mount, formatted(vrfRoute6PathFormat, name), TableInfo::route6Info());
    auto forwarding6Status = QuorTarn::mountedAs<Forwarding6Status>(mount, formatted(vrfForwarding6PathFormat, name),
                                                                    TableInfo::forwarding6Info());

    Quor::ValidPtr<VrfRoot> root = vrfRootDir_->vrfRootIs(name);
    vrfRootIs(Quor::Ptr<const VrfRoot>(root.ptr()));
    Quor::ValidPtr<VrfMibs> mibs = vrfMibsDir_->mibsIs(name);
    Quor::ValidPtr<IpMib> ipMib = mibs->ipmibIs(name);
    Quor::ValidPtr<IpForwardMib> ipForwardMib = mibs->ipforwardmibIs(name);
    root->ipMibIs(ipMib);
    root->ipForwardMibIs(ipForwardMib);

    auto nameToIdMap = arpTarnVrfNameToIdMap();
    const Vrf::VrfIdMap::VrfId id = nameToIdMap ? nameToIdMap->vrfNameToId(name) : Vrf::VrfIdMap::unknownVrfId;
    const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir = intfStatusDir_->notifier();
    auto arp = root->arpTableSmIs({.intfStatusDir = intfStatusDir, .ipMib = ipMib, .arpTarn = arpTarn_->notifier(), .arpTarnVrfId = id});
    root->ipRouteTableSmIs({.ipForwardMib = ipForwardMib,
                            .intfStatusDir = intfStatusDir,
                            .routeStatus = routeStatus,
                            .forwardingStatus = forwardingStatus,
                            .clock = Quor::activityManager()->clock()});
    root->ipRoute6TableSmIs({.ipForwardMib = ipForwardMib,
                             .intfStatusDir = intfStatusDir,
                             .routeStatus = route6Status,
                             .forwardingStatus = forwarding6Status,
                             .clock = Quor::activityManager()->clock()});
    if (populateArp) arp->populate();

    ipAddressTableSm_->vrfIpMibIs(ipMib);
    ipMib->ipSwFwdStatsIs(Ip::ipVersion4, name);
    if (arp->populating()) {
      awaitingNeighbours_.insert(name);
      if (!contextOpener_) contextOpener_ = Quor::slicedPass([this] { return doOpenStep(); });
      arp->populatedHookIs([opener = contextOpener_] { opener->start(); });
      return;
    }
  } catch (const std::exception& e) {
    QTRACE(agentTracer(), 0, "VRF " << name << " not brought up: " << e.what());
    doVrfDown(name);
    return;
  }
  doVrfOpen(name);
}

void VrfRootSm::doVrfOpen(const Quor::Name& name) {
  try {
    if (snmpContexts_) snmpContexts_->contextIs(name);
    ipAddressTableSm_->handleIntfInVrf(name);
    if (vrfIfTableSm_) vrfIfTableSm_->handleIntfInVrf(name);
  } catch (const std::exception& e) {
    QTRACE(agentTracer(), 0, "VRF " << name << " not brought up: " << e.what());
    doVrfDown(name);
  }
}

bool VrfRootSm::doOpenStep() {
  for (const Quor::Name& name : awaitingNeighbours_) {
    VrfRoot* root = vrfRootDir_->vrfRoot(name);
    if (root && root->arpTableSm() && root->arpTableSm()->populating()) continue;
    const Quor::Name ready = name;
    awaitingNeighbours_.erase(name);
    if (root) doVrfOpen(ready);
    return true;
  }
  return false;
}

void VrfRootSm::doVrfTeardown(const L3::VrfName& vrf) {
  const Quor::Name name = vrf.nameValue();
  if (!initialized_) return;
  if (ipVrfMib_->vrfTable(Snmp::String(name))) delFromVrfTable(name);
  if (!vrfRoot_.member(name)) return;
  doVrfDown(name);
  std::vector<U32> rows;
  for (auto it = ipVrfMib_->vrfIfTable().begin(); it; ++it)
    if (it->vrfName() == name) rows.push_back(it.key());
  for (U32 ifIndex : rows) ipVrfMib_->vrfIfTableDel(ifIndex);
}

void VrfRootSm::doVrfDown(const Quor::Name& name) {
  awaitingNeighbours_.erase(name);
  if (snmpContexts_ && vrfRoot_.member(name)) snmpContexts_->contextDel(name);
  try {
    QuorTarn::Mount mount(entityManager_, "");
    mount.handleInitialized();
    for (const char* format : {Tarn::Fib::vrfRoutePathFormat, Tarn::Fib::vrfForwardingPathFormat,
                               Tarn::Fib::vrfRoute6PathFormat, Tarn::Fib::vrfForwarding6PathFormat})
      mount.doUnmount(formatted(format, name));
  } catch (const Quor::RangeException&) {
    // A name that makes no mount path has nothing mounted.
  }
  ipAddressTableSm_->vrfIpMibDel(name);
  vrfMibsDir_->mibsDel(name);
  vrfRootDel(name);
  if (VrfRoot* root = vrfRootDir_->vrfRoot(name)) reapVrfRemains(*root);
  vrfRootDir_->vrfRootDel(name);
}

void VrfRootSm::addToVrfTable(const Quor::Name& name) {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::addToVrfTable(Quor::Name)");
  QTRACE(agentTracer(), 8, "void IpSnmp::VrfRootSm::addToVrfTable(Quor::Name)" << " for vrf " << name);
  const L3::VrfName vrf(name);
  if (ipVrfMib_->vrfTable(Snmp::String(name))) return;
  auto config = allVrfConfig_->notifier()->vrf(vrf);
  if (!config) return;
  auto status = allVrfStatusLocal_ && allVrfStatusLocal_->notifier() ? allVrfStatusLocal_->notifier()->vrf(vrf) : nullptr;
  if (!status) return;
  auto routing = routingVrfConfigDir_ && routingVrfConfigDir_->notifier()
                     ? routingVrfConfigDir_->notifier()->vrfConfig(name)
                     : nullptr;
  if (!routing) return;
  ipVrfMib_->vrfTableIs(Snmp::String(name), config, status)->vrfRoutingStatusIs(name, routing);
}

void VrfRootSm::delFromVrfTable(const Quor::Name& name) {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::delFromVrfTable(Quor::Name)");
  QTRACE(agentTracer(), 8, "void IpSnmp::VrfRootSm::delFromVrfTable(Quor::Name)" << " for vrf " << name);
  ipVrfMib_->vrfTableDel(Snmp::String(name));
}

Arp::Table::ArpEntry VrfRootSm::arpEntryOf(const Arp::Table::ArpKey& key) const {
  const auto& table = arpTarn_->notifier()->arpEntry();
  try {
    return table.lookup(key).value();
  } catch (const Tarn::CorruptionDetectedException& e) {
    table.corruptionDetected(e.text());
    return Arp::Table::ArpEntry();
  }
}

void VrfRootSm::handleArpEntry(const Arp::Table::ArpKey& key) {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::handleArpEntry(const Arp::Table::ArpKey&)");
  QTRACE(agentTracer(), 8, "handleArpEntry" << " " << key);
  Quor::String8 vrfName;
  Quor::Ptr<ArpTableSm> sm = arpTableSmOf(key, &vrfName);
  if (!sm) return;
  const Arp::Table::ArpEntry entry = arpEntryOf(key);
  if (entry == Arp::Table::ArpEntry()) {
    QTRACE(agentTracer(), 8, "Arp entry " << key << " (vrf '" << vrfName << "') deleted from arp tarn");
    sm->delArpEntry(key);
  } else {
    QTRACE(agentTracer(), 8, "Arp entry " << entry << " (vrf '" << vrfName << "') updated in arp tarn");
    sm->addArpEntry(entry);
  }
}

Quor::Ptr<ArpTableSm> arpTarnKeyToArpTableSm(const Quor::Ptr<VrfRootSm>& sm, const Arp::Table::ArpKey& key,
                                             Quor::String8* vrfName) {
  return sm->arpTableSmOf(key, vrfName);
}

Quor::Ptr<ArpTableSm> VrfRootSm::arpTableSmOf(const Arp::Table::ArpKey& key, Quor::String8* vrfName) const {
  if (key.vrfId == Vrf::VrfIdMap::defaultVrfId) {
    if (vrfName) *vrfName = L3::VrfName("default").stringValue();
    return defaultVrfArpTableSm_;
  }
  Vrf::VrfIdMap::VrfEntry entry;
  if (const auto& idMap = arpTarnVrfIdMap_) {
    try {
      entry = idMap->vrfEntry().lookup(key.vrfId).value();
    } catch (const Tarn::CorruptionDetectedException& e) {
      idMap->vrfEntry().corruptionDetected(e.text());
    }
  }
  if (entry.vrfId().isUnknown()) {
    QTRACE(agentTracer(), 8, "Ignoring update for arp entry " << key << " w/ unknown vrf id");
    return nullptr;
  }
  VrfRoot* root = vrfRootDir_->vrfRoot(entry.vrfName().nameValue());
  if (!root) {
    QTRACE(agentTracer(), 8,
           "VrfRoot for vrf '" << entry.vrfName() << "' not found. Ignoring arp notification for " << key);
    return nullptr;
  }
  if (vrfName) *vrfName = entry.vrfName().stringValue();
  return root->arpTableSm();
}

void VrfRootSm::handleArpTarnVrfName(const Quor::String8& name) {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::handleArpTarnVrfName(Quor::String)");
  static constexpr const char* signature = "void IpSnmp::VrfRootSm::handleArpTarnVrfName(Quor::String)";
  QTRACE(agentTracer(), 8, signature << " vrf: " << name);
  if (name == "default") return;
  auto map = arpTarnVrfNameToIdMap();
  const Vrf::VrfIdMap::VrfId id = map ? map->vrfNameToId(name) : Vrf::VrfIdMap::unknownVrfId;
  VrfRoot* root = vrfRootDir_->vrfRoot(Quor::Name(name));
  if (!root || !root->arpTableSm()) {
    QTRACE(agentTracer(), 8, "vrf root for " << name << " not found");
    return;
  }
  if (id.isUnknown()) {
    QTRACE(agentTracer(), 8, signature << " invalidating arp tarn vrf id " << "on arp table sm for " << name);
  } else {
    QTRACE(agentTracer(), 8, signature << " updating arp tarn vrf id " << id << " on arp table sm for " << name);
  }
  root->arpTableSm()->arpTarnVrfIdIs(id);
}

void VrfRootSm::handleIntfStatus(Pelt::IntfId intfId) {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::handleIntfStatus(Pelt::IntfId)");
  QTRACE(agentTracer(), 8, "void IpSnmp::VrfRootSm::handleIntfStatus(Pelt::IntfId)" << " for " << intfId);
  auto status = intfStatusDir_ && intfStatusDir_->notifier() ? intfStatusDir_->notifier()->intfStatus(intfId) : nullptr;
  if (!status) return;
  if (intfIfIndex(status) < 0) {
    QTRACE(agentTracer(), 8, "no ifIndex (yet?)");
    return;
  }
  arpWalkNext_.intfs.insert(intfId);
  doArpWalk();
}

void VrfRootSm::handleIntfStatus() {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::handleIntfStatus()");
  if (!intfStatusDir_ || !intfStatusDir_->notifier()) return;
  arpWalkNext_.all = true;
  doArpWalk();
}

void VrfRootSm::doArpWalk() {
  if (!arpTarn_ || !arpTarn_->notifier()) return;
  if (!arpWalk_) arpWalk_ = Quor::slicedPass([this] { return doArpWalkStep(); });
  arpWalk_->onTime();
}

bool VrfRootSm::doArpWalkStep() {
  if (!arpWalking_) {
    if (arpWalkNext_.empty()) return false;
    arpWalking_ = std::exchange(arpWalkNext_, {});
    arpWalkAt_ = {};
    arpWalkedThrough_.reset();
  }
  const auto& table = arpTarn_->notifier()->arpEntry();
  Arp::Table::Status::ArpEntryMap::Wrapper entry;
  try {
    entry = arpWalkedThrough_ ? table.next(*arpWalkedThrough_, arpWalkAt_) : table.first(arpWalkAt_);
  } catch (const Tarn::CorruptionDetectedException& e) {
    table.corruptionDetected(e.text());
  }
  if (!entry) {
    arpWalking_.reset();
    return !arpWalkNext_.empty();
  }
  arpWalkedThrough_ = entry.key();
  const Arp::Table::ArpEntry& value = entry.value();
  const Quor::Ptr<const Interface::AllIntfStatusDir>& dir = intfStatusDir_->notifier();
  const bool covered = arpWalking_->all ? dir && dir->intfStatus(value.intfId) : arpWalking_->intfs.count(value.intfId) > 0;
  if (!covered) return true;
  if (auto sm = arpTableSmOf(entry.key(), nullptr)) {
    try {
      sm->addArpEntry(value);
    } catch (const Quor::NameInUseException& e) {
      QTRACE(agentTracer(), 8, "Arp entry " << value << " not added: " << e.what());
    }
  }
  return true;
}

Quor::ValidPtr<VrfRootSm::QuorVrfStatusLocal> VrfRootSm::vrfStatusLocalIs(
    const Quor::Ptr<const Ip::VrfStatusLocal>& status) {
  if (!status)
    Quor::throwRangeException("null _vrfStatusLocal parameter to mutator for IpSnmp::VrfRootSm::vrfStatusLocal not allowed");
  if (QuorVrfStatusLocal* reactor = vrfStatusLocal_.member(status->vrfName())) {
    reactor->notifierIs(status);
    return reactor;
  }
  auto reactor = Quor::makePtr<QuorVrfStatusLocal>(this, status);
  vrfStatusLocal_.memberIs(reactor);
  reactor->quorDoZombieReactors(quorMarkedForDeletion());
  return reactor;
}

void VrfRootSm::vrfStatusLocalDel(const L3::VrfName& name) {
  Quor::Ptr<QuorVrfStatusLocal> reactor = vrfStatusLocal_.deleteMember(name);
  if (!reactor) return;
  reactor->quorDoZombieReactors(true);
  reactor->vrfRootSmIs(nullptr);
  reactor->notifierIs(nullptr);
}

void VrfRootSm::vrfStatusLocalDelAll() {
  while (QuorVrfStatusLocal* first = vrfStatusLocal_.firstMember()) vrfStatusLocalDel(first->fwkKey());
}

void VrfRootSm::resynchroniseVrfStatusLocal() {
  auto all = allVrfStatusLocal_ ? allVrfStatusLocal_->notifier() : nullptr;
  if (all)
    for (const auto& [name, status] : all->vrfs()) vrfStatusLocalIs(status);
  std::vector<L3::VrfName> gone;
  for (auto it = vrfStatusLocal_.begin(); it; ++it)
    if (!all || !all->vrf(it.key())) gone.push_back(it.key());
  for (const L3::VrfName& name : gone) vrfStatusLocalDel(name);
}

void VrfRootSm::vrfRootIs(const Quor::Ptr<const VrfRoot>& root) {
  if (!root) Quor::throwRangeException("null _vrfRoot parameter to mutator for IpSnmp::VrfRootSm::vrfRoot not allowed");
  if (!vrfRoot_.member(root->name())) vrfRoot_.memberIs(Quor::makePtr<QuorVrfRoot>(root));
}

void VrfRootSm::vrfRootDel(const Quor::Name& name) { vrfRoot_.deleteMember(name); }

void VrfRootSm::QuorIntfStatusDir::onIntfStatus(const Pelt::IntfId& intfId) {
  if (vrfRootSm_) vrfRootSm_->handleIntfStatus(intfId);
}

void VrfRootSm::QuorIntfStatusDir::onIntfStatusquorImmediate() {
  if (vrfRootSm_) vrfRootSm_->handleIntfStatus();
}

void VrfRootSm::QuorIntfStatusDir::onNotifierIs() {
  if (vrfRootSm_ && vrfRootSm_->wired_) vrfRootSm_->handleIntfStatus();
}

void VrfRootSm::QuorRoutingVrfConfigDir::onVrfConfig(const Quor::Name& name) {
  if (vrfRootSm_) vrfRootSm_->addToVrfTable(name);
}

void VrfRootSm::QuorRoutingVrfInfoDir::onEntityPtr(const Quor::Name& name) {
  if (vrfRootSm_) vrfRootSm_->handleVrfCreation(name);
}

void VrfRootSm::QuorAllVrfStatusLocal::onVrf(const L3::VrfName& name) {
  if (!vrfRootSm_ || !notifier()) return;
  if (auto status = notifier()->vrf(name))
    vrfRootSm_->vrfStatusLocalIs(status);
  else
    vrfRootSm_->vrfStatusLocalDel(name);
}

void VrfRootSm::QuorAllVrfStatusLocal::onVrfquorImmediate() {
  if (vrfRootSm_) vrfRootSm_->resynchroniseVrfStatusLocal();
}

void VrfRootSm::QuorAllVrfStatusLocal::onNotifierIs() {
  if (vrfRootSm_ && vrfRootSm_->wired_) vrfRootSm_->resynchroniseVrfStatusLocal();
}

VrfRootSm::QuorVrfStatusLocal::QuorVrfStatusLocal(VrfRootSm* sm, const Quor::Ptr<const Ip::VrfStatusLocal>& status)
    : name_(status->vrfName()), vrfRootSm_(sm) {
  notifierIs(status);  // its replay is the first handleVrfState
}

void VrfRootSm::QuorVrfStatusLocal::handleVrfState() {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::QuorVrfStatusLocal::handleVrfState()");
  QTRACE(agentTracer(), 8, "void IpSnmp::VrfRootSm::QuorVrfStatusLocal::handleVrfState()" << " for vrf " << name_);
  if (!vrfRootSm_ || !notifier()) return;
  switch (notifier()->state()) {
    case 0:
      vrfRootSm_->addToVrfTable(name_.nameValue());
      vrfRootSm_->handleVrfCreation(name_.nameValue());
      break;
    case 1:
      vrfRootSm_->handleVrfCreation(name_.nameValue());
      break;
    case 2:
      handleDel();
      break;
    default:
      break;
  }
}

void VrfRootSm::QuorVrfStatusLocal::handleDel() {
  IPSNMP_HANDLER("void IpSnmp::VrfRootSm::QuorVrfStatusLocal::handleDel()");
  QTRACE(agentTracer(), 8, "void IpSnmp::VrfRootSm::QuorVrfStatusLocal::handleDel()" << " for vrf " << name_);
  if (vrfRootSm_) vrfRootSm_->doVrfTeardown(name_);
}

void VrfRootSm::QuorAllVrfConfig::onVrf(const L3::VrfName& name) {
  if (vrfRootSm_ && vrfRootSm_->initialized() && !name.isDefault()) vrfRootSm_->addToVrfTable(name.nameValue());
}

void VrfRootSm::QuorArpTarn::onArpEntry(const Arp::Table::ArpKey& key) {
  if (vrfRootSm_) vrfRootSm_->handleArpEntry(key);
}

void VrfRootSm::QuorArpTarnVrfNameToIdMap::onVrfNameToId(const Quor::String8& name) {
  if (vrfRootSm_) vrfRootSm_->handleArpTarnVrfName(name);
}

void VrfRootSm::QuorSnmpAgentStatus::onInitialized() {
  if (vrfRootSm_ && notifier()) vrfRootSm_->handleInitialized(notifier()->initialized());
}

}  // namespace IpSnmp
