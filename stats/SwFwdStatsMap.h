#pragma once
// The statistics entities of one container, one per IP version, as a hashed collection keyed by
// ipVersion: FwdStatsBogon::bogon, and IpSnmp::IpMib::ipSwFwdStats, which has the very same shape.
//
// A container embeds one SwFwdStatsMap and forwards the operations that it offers under the
// attribute's name to it, adding its own notification:
//   <attr>(key)              member(key)
//   <attr>Is(key, vrfName)   existingMember(key, vrfName), else new<Attr> and <attr>Notify(key)
//   new<Attr>(key, vrfName)  newMember(key, vrfName)
//   <attr>Del(key)           deleteMember(key), then <attr>Notify(key) when there was one
//   <attr>DelAll()           <attr>Del of each member in the collection's order
// Members are child entities: the owner is their parent, under the attribute's id, until removal.
// Iteration: see CollectionIterator; a walk may delete the member it stands on.
#include "platform/quor/HashMap.h"
#include "stats/SwFwdStats.h"

namespace Ip {

class SwFwdStatsMap {
 public:
  using Members = Quor::HashMap<SwFwdStats, IpVersion>;
  using Iterator = Members::Iterator;
  using IteratorConst = Members::IteratorConst;

  SwFwdStatsMap(Quor::Entity* owner, Quor::AttributeId attr) : owner_(owner), attr_(attr) {}
  SwFwdStatsMap(const SwFwdStatsMap&) = delete;
  SwFwdStatsMap& operator=(const SwFwdStatsMap&) = delete;
  // Empties the collection; members that live on elsewhere lose their parent.
  ~SwFwdStatsMap();

  Quor::Ptr<SwFwdStats> member(IpVersion key) const { return members_.member(key); }
  // The member of `key` if it stands for `vrfName`, null when `key` is absent. A member of another
  // VRF raises NameInUseException: "Reinstantiating the entity with name <key> where constructor
  // parameter attribute _vrfName has a different value of <new> than the current value of <old>
  // not allowed", with the values in their textual form.
  Quor::Ptr<SwFwdStats> existingMember(IpVersion key, const Quor::Name& vrfName) const;
  // Makes the entity of `key`, which must be absent, and enters it.
  Quor::ValidPtr<SwFwdStats> newMember(IpVersion key, const Quor::Name& vrfName);
  // Removes the member of `key` and returns it; null when absent.
  Quor::Ptr<SwFwdStats> deleteMember(IpVersion key);

  std::size_t members() const noexcept { return members_.members(); }
  Iterator begin() { return members_.begin(); }
  IteratorConst begin() const { return members_.begin(); }

 private:
  Quor::Entity* const owner_;
  const Quor::AttributeId attr_;
  Members members_;
};

}  // namespace Ip
