#include "agent/VrfIfTableSm.h"

#include "agent/AgentTrace.h"

namespace IpSnmp {

VrfIfTableSm::VrfIfTableSm(const Inputs& inputs) : ipVrfMib_(inputs.ipVrfMib), intfStatusDir_(inputs.intfStatusDir) {
  config_ = Quor::reactorOn<QuorConfig>(inputs.config, this);  // its replay is the first resynchronisation
}

VrfIfTableSm::~VrfIfTableSm() {
  quorDoZombieReactors(true);
  if (config_) config_->vrfIfTableSmIs(nullptr);
  for (auto it = ipIntfConfig_.begin(); it; ++it) it->vrfIfTableSmIs(nullptr);
}

Quor::Ptr<const Ip::Config> VrfIfTableSm::config() const { return config_ ? config_->notifier() : nullptr; }

Quor::ValidPtr<VrfIfTableSm::QuorIpIntfConfig> VrfIfTableSm::ipIntfConfigIs(
    const Quor::Ptr<const Ip::IpIntfConfig>& entity) {
  if (!entity)
    Quor::throwRangeException("null _ipIntfConfig parameter to mutator for IpSnmp::VrfIfTableSm::ipIntfConfig not allowed");
  if (QuorIpIntfConfig* reactor = ipIntfConfig_.member(entity->intfId())) {
    reactor->notifierIs(entity);
    return reactor;
  }
  auto reactor = Quor::makePtr<QuorIpIntfConfig>(this, entity);
  ipIntfConfig_.memberIs(reactor);
  reactor->quorDoZombieReactors(quorMarkedForDeletion());
  return reactor;
}

Quor::Ptr<const Ip::IpIntfConfig> VrfIfTableSm::ipIntfConfigDel(const Pelt::IntfId& intfId) {
  Quor::Ptr<QuorIpIntfConfig> reactor = ipIntfConfig_.deleteMember(intfId);
  if (!reactor) return nullptr;
  reactor->quorDoZombieReactors(true);
  reactor->vrfIfTableSmIs(nullptr);
  Quor::Ptr<const Ip::IpIntfConfig> entity = reactor->notifier();
  reactor->notifierIs(nullptr);
  return entity;
}

void VrfIfTableSm::resynchronise(const Ip::Config& input) {
  for (const auto& [intfId, entity] : input.ipIntfConfigs()) ipIntfConfigIs(entity);
  std::vector<Pelt::IntfId> gone;
  for (auto it = ipIntfConfig_.begin(); it; ++it)
    if (!input.ipIntfConfig(it.key())) gone.push_back(it.key());
  for (const Pelt::IntfId& intfId : gone) ipIntfConfigDel(intfId);
}

void VrfIfTableSm::handleIntfInVrf(const Quor::Name& name) {
  const L3::VrfName vrf(name);
  for (auto it = ipIntfConfig_.begin(); it; ++it)
    if (it->vrf() == vrf) it->addToVrfIfTable();
}

void VrfIfTableSm::quor_handleIpIntfConfig(QuorIpIntfConfig& reactor) { reactor.delFromVrfIfTable(); }

void VrfIfTableSm::quorZombieNested(bool flag) {
  if (config_) config_->quorDoZombieReactors(flag);
  for (auto it = ipIntfConfig_.begin(); it; ++it) it->quorDoZombieReactors(flag);
}

void VrfIfTableSm::QuorConfig::onIpIntfConfig(const Pelt::IntfId& intfId) {
  if (!vrfIfTableSm_ || !notifier()) return;
  if (auto entity = notifier()->ipIntfConfig(intfId))
    vrfIfTableSm_->ipIntfConfigIs(entity);
  else
    vrfIfTableSm_->ipIntfConfigDel(intfId);
}

void VrfIfTableSm::QuorConfig::onIpIntfConfigquorImmediate() {
  if (vrfIfTableSm_ && notifier()) vrfIfTableSm_->resynchronise(*notifier());
}

VrfIfTableSm::QuorIpIntfConfig::QuorIpIntfConfig(VrfIfTableSm* sm, const Quor::Ptr<const Ip::IpIntfConfig>& entity)
    : intfId_(entity->intfId()), vrfIfTableSm_(sm), l3Config_(Quor::makePtr<QuorL3Config>(this)) {
  notifierIs(entity);
  l3ConfigIs(entity->l3Config());
  if (const auto& dir = sm->intfStatusDir()) intfStatusIs(dir->intfStatus(intfId_));
  addToVrfIfTable();
}

void VrfIfTableSm::QuorIpIntfConfig::onL3Config() { l3ConfigIs(notifier()->l3Config()); }

void VrfIfTableSm::QuorIpIntfConfig::l3ConfigIs(const Quor::Ptr<const L3::Intf::Config>& l3Config) {
  l3Config_->notifierIs(l3Config);
}

void VrfIfTableSm::QuorIpIntfConfig::intfStatusIs(const Quor::Ptr<const Interface::IntfStatus>& status) {
  if (status == intfStatus_) return;
  intfStatus_ = status;
  addToVrfIfTable();
}

void VrfIfTableSm::QuorIpIntfConfig::QuorL3Config::onVrf() { owner_->addToVrfIfTable(); }

U32 VrfIfTableSm::QuorIpIntfConfig::rowKey() const { return static_cast<U32>(intfIfIndex(intfStatus_)); }

L3::VrfName VrfIfTableSm::QuorIpIntfConfig::vrf() const { return L3::Intf::vrfOf(l3Config_->notifier()); }

void VrfIfTableSm::QuorIpIntfConfig::addToVrfIfTable() {
  IPSNMP_HANDLER("void IpSnmp::VrfIfTableSm::QuorIpIntfConfig::addToVrfIfTable()");
  const L3::VrfName vrf = this->vrf();
  QTRACE(agentTracer(), 8, "void IpSnmp::VrfIfTableSm::QuorIpIntfConfig::addToVrfIfTable()" << " for vrf " << vrf);
  if (!vrfIfTableSm_) return;
  if (!intfStatus_) {
    QTRACE(agentTracer(), 8, "no intfStatus");
    return;
  }
  IpVrfMib& table = *vrfIfTableSm_->ipVrfMib();
  U32 ifIndex = rowKey();
  if (vrf.isDefault()) {
    if (table.vrfIfTable(ifIndex)) table.vrfIfTableDel(ifIndex);
    return;
  }
  if (VrfIfTableEntry* row = table.vrfIfTable(ifIndex); row && !(row->vrfName() == vrf.stringValue())) {
    row->vrfNameIs(vrf.stringValue());
    return;
  }
  table.vrfIfTableIs(ifIndex)->vrfNameIs(vrf.stringValue());
}

void VrfIfTableSm::QuorIpIntfConfig::delFromVrfIfTable() {
  IPSNMP_HANDLER("void IpSnmp::VrfIfTableSm::QuorIpIntfConfig::delFromVrfIfTable()");
  QTRACE(agentTracer(), 8,
         "void IpSnmp::VrfIfTableSm::QuorIpIntfConfig::delFromVrfIfTable()" << " for vrf "
                                                                            << L3::Intf::vrfOf(l3Config_->notifier()));
  if (!vrfIfTableSm_) return;
  if (!intfStatus_) {
    QTRACE(agentTracer(), 8, "no intfStatus");
    return;
  }
  U32 ifIndex = rowKey();
  if (vrfIfTableSm_->ipVrfMib()->vrfIfTable(ifIndex)) vrfIfTableSm_->ipVrfMib()->vrfIfTableDel(ifIndex);
}

void VrfIfTableSm::QuorIpIntfConfig::handleDel() {
  if (vrfIfTableSm_) vrfIfTableSm_->quor_handleIpIntfConfig(*this);
}

}  // namespace IpSnmp
