#include "sources/linux/SharedTables.h"

#include "platform/tarn/Mount.h"

namespace Sources::Linux {

ArpTableWriter::ArpTableWriter(const std::string& root)
    : table_(root + "/" + Arp::Table::statusPath + "/arpEntry", leastEntries) {
  table_.forEach([this](const Arp::Table::ArpEntry& entry) { published_[entry.key()] = entry; });
}

void ArpTableWriter::entryIs(const Arp::Table::ArpKey& key, const std::optional<Arp::Table::ArpEntry>& wanted) {
  auto it = published_.find(key);
  if (!wanted) {
    if (it == published_.end()) return;
    table_.erase(key);
    published_.erase(it);
    return;
  }
  if (it != published_.end() && it->second == *wanted) return;
  table_.put(*wanted);
  published_[key] = *wanted;
}

std::vector<Arp::Table::ArpKey> ArpTableWriter::keysOf(Vrf::VrfIdMap::VrfId vrfId) const {
  std::vector<Arp::Table::ArpKey> keys;
  for (const auto& [key, entry] : published_)
    if (key.vrfId == vrfId) keys.push_back(key);
  return keys;
}

VrfIdTableWriter::VrfIdTableWriter(const std::string& root)
    : table_(root + "/" + Vrf::VrfIdMap::statusPath + "/vrfEntry", leastEntries) {
  ids_[L3::VrfName("default")] = Vrf::VrfIdMap::defaultVrfId;
  table_.forEach([this](const Vrf::VrfIdMap::VrfEntry& entry) {
    ids_[entry.vrfName()] = entry.vrfId();
    present_[entry.vrfName()] = true;
    nextId_ = std::max(nextId_, entry.vrfId().value() + 1);
  });
}

Vrf::VrfIdMap::VrfId VrfIdTableWriter::idOf(const L3::VrfName& vrf) {
  auto [it, made] = ids_.try_emplace(vrf, Vrf::VrfIdMap::VrfId(nextId_));
  if (made) ++nextId_;
  return it->second;
}

void VrfIdTableWriter::presentIs(const L3::VrfName& vrf, bool present) {
  bool& now = present_[vrf];
  if (now == present) return;
  now = present;
  if (present)
    table_.put(Vrf::VrfIdMap::VrfEntry(idOf(vrf), vrf));
  else
    table_.erase(idOf(vrf));
}

std::vector<L3::VrfName> VrfIdTableWriter::present() const {
  std::vector<L3::VrfName> names;
  for (const auto& [name, present] : present_)
    if (present) names.push_back(name);
  return names;
}

}  // namespace Sources::Linux
