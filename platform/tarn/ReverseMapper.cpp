#include "platform/tarn/ReverseMapper.h"

#include <vector>

namespace Vrf::VrfIdMap {

ReverseMapper::ReverseMapper(Quor::Ptr<const Status> status, Quor::Ptr<NameToIdMap> map)
    : reactor_(Quor::makePtr<QuorStatus>(this)), map_(std::move(map)) {
  if (!map_) Quor::throwRangeException("null map parameter to Vrf::VrfIdMap::ReverseMapper not allowed");
  newStatus(status);
}

ReverseMapper::~ReverseMapper() {
  reactor_->quorDoZombieReactors(true);
  reactor_->notifierIs(nullptr);
}

void ReverseMapper::newStatus(const Quor::Ptr<const Status>& status) {
  reactor_->notifierIs(status);
  handleInitialized();
}

VrfEntry ReverseMapper::read(VrfId id) const {
  const Quor::Ptr<const Status>& status = reactor_->notifier();
  if (!status) return VrfEntry();
  try {
    return status->vrfEntry().lookup(id).value();
  } catch (const Tarn::CorruptionDetectedException& e) {
    status->vrfEntry().corruptionDetected(e.text());
    return VrfEntry();
  }
}

void ReverseMapper::handleInitialized() {
  std::map<VrfId, Quor::String8> present;
  if (const Quor::Ptr<const Status>& status = reactor_->notifier()) {
    const Status::VrfEntryMap& table = status->vrfEntry();
    try {
      Tarn::TarnMapIterator it;
      for (auto entry = table.first(it); entry; entry = table.next(entry.key(), it))
        present[entry.key()] = entry.value().vrfName().stringValue();
    } catch (const Tarn::CorruptionDetectedException& e) {
      table.corruptionDetected(e.text());  // the table reads as empty from now on, and so does the map
    }
  }
  std::vector<std::pair<VrfId, Quor::String8>> changes;
  for (const auto& [id, name] : nameOf_)
    if (!present.contains(id)) changes.emplace_back(id, Quor::String8());
  for (const auto& [id, name] : present) changes.emplace_back(id, name);
  for (const auto& [id, name] : changes) rename(id, name);
}

void ReverseMapper::handleVrfEntry(VrfId id) { rename(id, read(id).vrfName().stringValue()); }

void ReverseMapper::rename(VrfId id, const Quor::String8& name) {
  auto known = nameOf_.find(id);
  const Quor::String8 old = known == nameOf_.end() ? Quor::String8() : known->second;
  if (old == name) return;
  // First the memory, then the map, whose reactors run inside each change.
  if (name.empty())
    nameOf_.erase(id);
  else
    nameOf_[id] = name;
  if (!name.empty()) idsOf_[name].insert(id);
  if (!old.empty()) release(id, old);
  if (!name.empty()) map_->vrfNameToIdIs(name, id);
}

void ReverseMapper::release(VrfId id, const Quor::String8& name) {
  auto holders = idsOf_.find(name);
  holders->second.erase(id);
  if (holders->second.empty()) {
    idsOf_.erase(holders);
    map_->vrfNameToIdDel(name);
  } else if (map_->vrfNameToId(name) == id) {
    map_->vrfNameToIdIs(name, *holders->second.begin());
  }
}

}  // namespace Vrf::VrfIdMap
