#pragma once
// Vrf::VrfIdMap::Status: the table of VRF numbers to VRF names, as an entity whose reactors hear
// onVrfEntry(id) for each number whose entry may have changed.
#include "platform/tarn/TableStatus.h"
#include "platform/tarn/VrfEntry.h"

namespace Vrf::VrfIdMap {

class Status : public Tarn::TableStatus<Status, VrfEntryCodec> {
 public:
  class NotifieeConst : public Quor::Notifiee<Status> {
   public:
    virtual void onVrfEntry(const VrfId&) {}
    virtual void onVrfEntryquorImmediate() {}
  };
  using VrfEntryMap = Map;
  static constexpr const char* typeName = "Vrf::VrfIdMap::Status";
  static constexpr const char* attributeName = "vrfEntry";
  static constexpr auto onKey = &NotifieeConst::onVrfEntry;
  static constexpr auto onAll = &NotifieeConst::onVrfEntryquorImmediate;

  using TableStatus::TableStatus;
  const VrfEntryMap& vrfEntry() const noexcept { return view(); }
};

}  // namespace Vrf::VrfIdMap
