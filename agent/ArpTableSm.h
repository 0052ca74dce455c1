#pragma once
// ArpTableSm keeps the arpTable (ipNetToMediaTable) of one VRF's IpMib: one row per neighbour of
// that VRF in the shared-memory ARP table, keyed by interface index and IPv4 address. A row only
// says where to look the neighbour up, so a neighbour whose MAC address changes needs no work here.
// The machine has no reactor on the ARP table: VrfRootSm routes each entry to the machine of its VRF
// id and calls addArpEntry or delArpEntry.
//
// The VRF id may reach the system after the VRF; -1 stands for "not known yet". While it is unknown
// the machine refuses every entry ("not arp ready"). Deliberate, and relied on:
// - once the id is known, arpTarnVrfIdIs with another known id does nothing: the only way to another
//   id is through -1, which keeps the rows, and the id after that populates anew;
// - a machine made with a known id starts empty: no populate() runs for it;
// - an entry on an interface without status, or with a negative index, is refused, also when it is
//   deleted: without the index the row's key can't be computed, so such a row stays;
// - populate() walks the whole ARP table (it has no index by VRF) in slices from the clock, the first
//   at once; a walk under way starts again from the first entry when populate() is called again, and
//   ends when the id becomes unknown. An entry that would take another entry's row is traced and
//   skipped. Whoever waits for the neighbours (a VRF's context) hears of the walk's end.
#include <functional>
#include <optional>

#include "agent/QuorOutputTable.h"
#include "model/IpMib.h"
#include "platform/morvane/IntfStatus.h"
#include "platform/quor/SlicedPass.h"
#include "platform/tarn/ArpStatus.h"

namespace IpSnmp {

class ArpTableSm : public Quor::Reactor {
 public:
  // Both inputs are held by reactors without handlers.
  class QuorIntfStatusDir final : public Interface::AllIntfStatusDir::NotifieeConst {};
  using QuorIpMib = QuorOutputTable<IpMib>;

  struct Inputs {
    Quor::ValidPtr<const Interface::AllIntfStatusDir> intfStatusDir;
    Quor::ValidPtr<IpMib> ipMib;
    Quor::ValidPtr<const Arp::Table::Status> arpTarn;
    Vrf::VrfIdMap::VrfId arpTarnVrfId;
    friend bool operator==(const Inputs&, const Inputs&) = default;
  };

  // Stores its inputs and reads nothing yet.
  explicit ArpTableSm(const Inputs& inputs);
  // Leaves the rows of arpTable in place.
  ~ArpTableSm() override;

  const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir() const noexcept { return intfStatusDir_->notifier(); }
  const Quor::Ptr<IpMib>& ipMib() const noexcept { return ipMib_->table(); }
  const Quor::Ptr<const Arp::Table::Status>& arpTarn() const noexcept { return arpTarn_; }
  Vrf::VrfIdMap::VrfId arpTarnVrfId() const noexcept { return arpTarnVrfId_; }
  // From unknown to known populates; to unknown keeps the rows; from known to another known does
  // nothing.
  void arpTarnVrfIdIs(Vrf::VrfIdMap::VrfId arpTarnVrfId);

  // The row of the entry, made when absent; one with other values is a name-in-use failure.
  void addArpEntry(const Arp::Table::ArpEntry& entry);
  void delArpEntry(const Arp::Table::ArpKey& key);
  // Adds every entry of this machine's VRF id, walking the whole table of all VRFs in slices.
  void populate();
  // Whether a walk of populate() is under way.
  bool populating() const noexcept { return walking_; }
  // Called once, from the clock or at once, when the walk under way ends (or at once when none is).
  void populatedHookIs(std::function<void()> hook);

 protected:
  void quorZombieNested(bool flag) override;

 private:
  // The row key of a neighbour on `intfId`; false, after its trace, when the machine must refuse it.
  bool rowIndexOf(Pelt::IntfId intfId, const Pelt::IpGenAddr& addr, ArpTableIndex* index) const;
  // Adds the entry after the walk's position; false when the walk is over.
  bool doPopulateStep();
  void populated();

  Quor::Ptr<QuorIntfStatusDir> intfStatusDir_;
  Quor::Ptr<QuorIpMib> ipMib_;
  const Quor::Ptr<const Arp::Table::Status> arpTarn_;
  Vrf::VrfIdMap::VrfId arpTarnVrfId_;
  Quor::Ptr<Quor::SlicedPass> populate_;
  bool walking_ = false;
  Tarn::TarnMapIterator walkAt_;
  std::optional<Arp::Table::ArpKey> walkedThrough_;
  std::function<void()> populatedHook_;
};

}  // namespace IpSnmp
