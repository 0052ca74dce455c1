#include "agent/ArpTableSm.h"

#include <utility>

#include "agent/AgentTrace.h"

namespace IpSnmp {

ArpTableSm::ArpTableSm(const Inputs& inputs)
    : intfStatusDir_(Quor::reactorOn<QuorIntfStatusDir>(inputs.intfStatusDir)),
      ipMib_(Quor::makePtr<QuorIpMib>(inputs.ipMib)),
      arpTarn_(inputs.arpTarn),
      arpTarnVrfId_(inputs.arpTarnVrfId),
      populate_(Quor::slicedPass([this] { return doPopulateStep(); })) {}

ArpTableSm::~ArpTableSm() {
  populate_->stop();
  quorDoZombieReactors(true);
}

void ArpTableSm::arpTarnVrfIdIs(Vrf::VrfIdMap::VrfId arpTarnVrfId) {
  IPSNMP_HANDLER("void IpSnmp::ArpTableSm::arpTarnVrfIdIs(Vrf::VrfIdMap::VrfId)");
  QTRACE(agentTracer(), 8,
         "void IpSnmp::ArpTableSm::arpTarnVrfIdIs(Vrf::VrfIdMap::VrfId)" << " cur: " << arpTarnVrfId_
                                                                         << " new: " << arpTarnVrfId);
  if (arpTarnVrfId == arpTarnVrfId_) return;
  if (arpTarnVrfId_.isUnknown()) {
    arpTarnVrfId_ = arpTarnVrfId;
    populate();
  } else if (arpTarnVrfId.isUnknown()) {
    arpTarnVrfId_ = arpTarnVrfId;
    if (walking_) populated();  // nothing more can be added
  }
  // Both known and different: deliberately nothing, the old id stays until the id goes through -1.
}

bool ArpTableSm::rowIndexOf(Pelt::IntfId intfId, const Pelt::IpGenAddr& addr, ArpTableIndex* index) const {
  Quor::Ptr<const Interface::IntfStatus> status = intfStatusDir()->intfStatus(intfId);
  if (!status) {
    QTRACE(agentTracer(), 8, "no intfStatus");
    return false;
  }
  const S32 ifIndex = intfIfIndex(status);
  if (ifIndex < 0) {
    QTRACE(agentTracer(), 8, "no ifIndex (yet?)");
    return false;
  }
  if (arpTarnVrfId_.isUnknown()) {
    QTRACE(agentTracer(), 8, "no arp tarn vrf id (yet?)");
    return false;
  }
  *index = ArpTableIndex(static_cast<U32>(ifIndex), addr.v4Addr());
  return true;
}

void ArpTableSm::addArpEntry(const Arp::Table::ArpEntry& entry) {
  IPSNMP_HANDLER("void IpSnmp::ArpTableSm::addArpEntry(const Arp::Table::ArpEntry&)");
  QTRACE(agentTracer(), 8, "void IpSnmp::ArpTableSm::addArpEntry(const Arp::Table::ArpEntry&)" << " for " << entry);
  ArpTableIndex index;
  if (!rowIndexOf(entry.intfId, entry.addr, &index)) return;
  ipMib()->arpTableIs(index, entry.intfId, arpTarn_, arpTarnVrfId_);
}

void ArpTableSm::delArpEntry(const Arp::Table::ArpKey& key) {
  IPSNMP_HANDLER("void IpSnmp::ArpTableSm::delArpEntry(const Arp::Table::ArpKey&)");
  QTRACE(agentTracer(), 8, "void IpSnmp::ArpTableSm::delArpEntry(const Arp::Table::ArpKey&)" << " for " << key);
  ArpTableIndex index;
  if (!rowIndexOf(key.intfId, key.addr, &index)) return;
  ipMib()->arpTableDel(index);
}

void ArpTableSm::populate() {
  IPSNMP_HANDLER("void IpSnmp::ArpTableSm::populate()");
  QTRACE(agentTracer(), 8, "void IpSnmp::ArpTableSm::populate()" << " arpTarnVrfId: " << arpTarnVrfId_);
  if (arpTarnVrfId_.isUnknown()) {
    QTRACE(agentTracer(), 8, "  not arp ready");
    return;
  }
  walking_ = true;
  walkAt_ = {};
  walkedThrough_.reset();
  populate_->onTime();
}

bool ArpTableSm::doPopulateStep() {
  if (!walking_) return false;
  // The table has no index by VRF: the walk is over the entries of all VRFs.
  const Arp::Table::Status::ArpEntryMap& entries = arpTarn_->arpEntry();
  Arp::Table::Status::ArpEntryMap::Wrapper entry;
  try {
    entry = walkedThrough_ ? entries.next(*walkedThrough_, walkAt_) : entries.first(walkAt_);
  } catch (const Tarn::CorruptionDetectedException& e) {
    entries.corruptionDetected(e.text());
  }
  if (!entry) {
    populated();
    return false;
  }
  walkedThrough_ = entry.key();
  if (entry.value().vrfId == arpTarnVrfId_) {
    try {
      addArpEntry(entry.value());
    } catch (const Quor::NameInUseException& e) {
      QTRACE(agentTracer(), 8, "Arp entry " << entry.value() << " not added: " << e.what());
    }
  }
  return true;
}

void ArpTableSm::populated() {
  walking_ = false;
  populate_->timeMinIs(Quor::never);
  if (populatedHook_) std::exchange(populatedHook_, nullptr)();
}

void ArpTableSm::populatedHookIs(std::function<void()> hook) {
  populatedHook_ = std::move(hook);
  if (!walking_) populated();
}

void ArpTableSm::quorZombieNested(bool flag) {
  intfStatusDir_->quorDoZombieReactors(flag);
  ipMib_->quorDoZombieReactors(flag);
}

}  // namespace IpSnmp
