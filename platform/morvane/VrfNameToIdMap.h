#pragma once
// The number of each VRF in the shared-memory tables, by VRF name. It is kept up to date from the
// VRF-id table by its reverse mapper; its readers follow it by name.
#include "platform/morvane/StoreEntity.h"
#include "platform/pelt/VrfId.h"

namespace Vrf::VrfIdMap {

class NameToIdMap final : public Morvane::StoreEntity<NameToIdMap> {
 public:
  class NotifieeConst : public Quor::Notifiee<NameToIdMap> {
   public:
    virtual void onVrfNameToId(const Quor::String8&) {}
    virtual void onVrfNameToIdquorImmediate() {}
  };
  static constexpr const char* typeName = "Vrf::VrfIdMap::NameToIdMap";
  static constexpr std::string_view attributeNames[] = {"vrfNameToId"};
  using Members = Morvane::Collection<Quor::String8, VrfId>;

  using StoreEntity::StoreEntity;
  // unknownVrfId for a name without a number.
  VrfId vrfNameToId(const Quor::String8& name) const { return vrfNameToId_.memberOr(name, unknownVrfId); }
  const Members& vrfNameToIds() const noexcept { return vrfNameToId_; }
  void vrfNameToIdIs(const Quor::String8& name, VrfId id);
  void vrfNameToIdDel(const Quor::String8& name);

 private:
  Members vrfNameToId_{this, idOf("vrfNameToId")};
};

}  // namespace Vrf::VrfIdMap
