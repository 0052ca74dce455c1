#pragma once
// The two tables that all VRFs share: the ARP table (neighbours under VRF id, interface and
// address) and the VRF-id table, each written by difference.
//
// VRF ids are stable: the default VRF is 0, a VRF keeps the id that the table already gave it (so a
// writer started again numbers as its predecessor did), and a VRF that goes and comes back within a
// writer's life gets its old id again. A new VRF gets the smallest id above every id given so far.
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/tarn/ArpEntry.h"
#include "platform/tarn/VrfEntry.h"
#include "sources/linux/GrowingTable.h"

namespace Sources::Linux {

class ArpTableWriter {
 public:
  static constexpr U32 leastEntries = 4096;

  explicit ArpTableWriter(const std::string& root);
  // Makes the entry of `key` `wanted`, or removes it.
  void entryIs(const Arp::Table::ArpKey& key, const std::optional<Arp::Table::ArpEntry>& wanted);
  // The keys the table holds for `vrfId`.
  std::vector<Arp::Table::ArpKey> keysOf(Vrf::VrfIdMap::VrfId vrfId) const;
  void commit() { table_.commit(); }

 private:
  GrowingTable<Arp::Table::ArpCodec> table_;
  std::map<Arp::Table::ArpKey, Arp::Table::ArpEntry> published_;
};

class VrfIdTableWriter {
 public:
  static constexpr U32 leastEntries = 1024;

  explicit VrfIdTableWriter(const std::string& root);
  // The id of `vrf`, given now if it has none.
  Vrf::VrfIdMap::VrfId idOf(const L3::VrfName& vrf);
  // Enters `vrf` with its id, or removes its entry (the id stays reserved for it).
  void presentIs(const L3::VrfName& vrf, bool present);
  // The VRFs that have an entry.
  std::vector<L3::VrfName> present() const;
  void commit() { table_.commit(); }

 private:
  GrowingTable<Vrf::VrfIdMap::VrfEntryCodec> table_;
  std::map<L3::VrfName, Vrf::VrfIdMap::VrfId> ids_;
  std::map<L3::VrfName, bool> present_;
  U32 nextId_ = 1;
};

}  // namespace Sources::Linux
