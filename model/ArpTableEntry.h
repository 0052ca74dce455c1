#pragma once
// One row of arpTable (ipNetToMediaTable): where to look a neighbour up, not the neighbour. The MAC
// address and the entry type are read from the shared-memory ARP table on every access, so a row
// needs no update when a neighbour's address changes, and a neighbour that has left the table reads
// as the default entry (all-zero MAC, dynamic) until the ARP machine removes the row.
#include "model/ArpTableIndex.h"
#include "platform/quor/RbTreeMap.h"
#include "platform/tarn/ArpStatus.h"

namespace IpSnmp {

class ArpTableEntry : public Quor::PtrInterface, public Quor::RbTreeLink {
 public:
  ArpTableEntry(const ArpTableIndex& index, Pelt::IntfId intfId, Quor::Ptr<const Arp::Table::Status> arpTarn,
                Vrf::VrfIdMap::VrfId arpTarnVrfId)
      : index_(index), intfId_(intfId), arpTarn_(std::move(arpTarn)), arpTarnVrfId_(arpTarnVrfId) {}

  const ArpTableIndex& fwkKey() const noexcept { return index_; }
  const ArpTableIndex& index() const noexcept { return index_; }
  U32 ifIndex() const noexcept { return index_.ifIndex; }
  Pelt::IpAddr netAddress() const noexcept { return index_.ipAddr; }
  Pelt::IntfId intfId() const noexcept { return intfId_; }
  const Quor::Ptr<const Arp::Table::Status>& arpTarn() const noexcept { return arpTarn_; }
  Vrf::VrfIdMap::VrfId arpTarnVrfId() const noexcept { return arpTarnVrfId_; }

  // The neighbour as the shared-memory table holds it now; the default entry when it is gone or the
  // table is damaged (the damage is reported to the table, which detaches).
  Arp::ArpEntryStatus arpEntry() const;
  Pelt::EthAddr physAddress() const { return arpEntry().ethAddr; }

 private:
  const ArpTableIndex index_;
  const Pelt::IntfId intfId_;
  const Quor::Ptr<const Arp::Table::Status> arpTarn_;
  const Vrf::VrfIdMap::VrfId arpTarnVrfId_;
};

}  // namespace IpSnmp
