#pragma once
// Arp::Table::Status: the one ARP table of all VRFs, as an entity whose reactors hear
// onArpEntry(key) for each neighbour that may have changed.
#include "platform/tarn/ArpEntry.h"
#include "platform/tarn/TableStatus.h"

namespace Arp::Table {

class Status : public Tarn::TableStatus<Status, ArpCodec> {
 public:
  class NotifieeConst : public Quor::Notifiee<Status> {
   public:
    virtual void onArpEntry(const ArpKey&) {}
    virtual void onArpEntryquorImmediate() {}
  };
  using ArpEntryMap = Map;
  static constexpr const char* typeName = "Arp::Table::Status";
  static constexpr const char* attributeName = "arpEntry";
  static constexpr auto onKey = &NotifieeConst::onArpEntry;
  static constexpr auto onAll = &NotifieeConst::onArpEntryquorImmediate;

  using TableStatus::TableStatus;
  const ArpEntryMap& arpEntry() const noexcept { return view(); }
};

}  // namespace Arp::Table
