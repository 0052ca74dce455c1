#pragma once
// Vrf::VrfIdMap::ReverseMapper keeps a NameToIdMap (name to VRF number) equal to the inverse of a
// VRF-id table (number to name), for readers that know a VRF by name.
//
// It follows the table by number and remembers the name it last saw for each number, so that it
// knows what to take back when a number is renamed or removed. A name may briefly belong to two
// numbers (a writer that moves a VRF to a new number adds the new before it removes the old): the
// map then shows the number the name gained last, and, when that one goes, another that still has
// it. Every change of the map is made before the map tells its reactors (onVrfNameToId(name)), and
// the mapper's own memory is updated before the map is touched, so a reactor that reads the map or
// asks the mapper sees the new state.
#include <map>
#include <set>

#include "platform/morvane/VrfNameToIdMap.h"
#include "platform/tarn/VrfIdMapStatus.h"

namespace Vrf::VrfIdMap {

class ReverseMapper : public Quor::PtrInterface {
 public:
  // Follows `status` (may be null: nothing to follow yet) and fills `map` from it at once.
  ReverseMapper(Quor::Ptr<const Status> status, Quor::Ptr<NameToIdMap> map);
  ~ReverseMapper() override;

  // Follows another table, and brings the map in line with it.
  void newStatus(const Quor::Ptr<const Status>& status);
  // The full pass: brings the map in line with every entry of the table.
  void handleInitialized();
  // Brings the map in line with the entry of `id`.
  void handleVrfEntry(VrfId id);

  const Quor::Ptr<NameToIdMap>& nameToIdMap() const noexcept { return map_; }

 private:
  class QuorStatus : public Status::NotifieeConst {
   public:
    explicit QuorStatus(ReverseMapper* mapper) : mapper_(mapper) {}
    void onVrfEntry(const VrfId& id) override { mapper_->handleVrfEntry(id); }
    void onVrfEntryquorImmediate() override { mapper_->handleInitialized(); }

   private:
    ReverseMapper* mapper_;
  };

  // The entry of `id` now, the default entry when absent or unreadable.
  VrfEntry read(VrfId id) const;
  // Moves `id` from the name it had to `name` (empty: no name).
  void rename(VrfId id, const Quor::String8& name);
  void release(VrfId id, const Quor::String8& name);

  Quor::Ptr<QuorStatus> reactor_;
  Quor::Ptr<NameToIdMap> map_;
  std::map<VrfId, Quor::String8> nameOf_;
  std::map<Quor::String8, std::set<VrfId>> idsOf_;
};

}  // namespace Vrf::VrfIdMap
