#pragma once
// An entity whose one attribute, bogon, is a collection of SwFwdStats keyed by ipVersion: the shape
// of the IpMib's ipSwFwdStats, standing on its own. Nothing in the agent makes one; it is made only
// through fwdStatsBogonFactory.
#include "stats/SwFwdStatsMap.h"

namespace Ip {

class FwdStatsBogon : public Quor::Entity {
 public:
  class NotifieeConst : public Quor::Notifiee<FwdStatsBogon> {
   public:
    virtual void onIsNondestructing() {}
    virtual void onBogon(IpVersion) {}
    // Any number of members may have changed.
    virtual void onBogonquorImmediate() {}
    virtual void onBogon() {}
  };
  // Reactors of this system only read what they follow.
  using Notifiee = NotifieeConst;

  static constexpr Quor::AttributeId bogonId = firstAttributeId;

  Quor::Ptr<SwFwdStats> bogon(IpVersion key) const { return bogon_.member(key); }
  std::size_t bogons() const noexcept { return bogon_.members(); }
  SwFwdStatsMap::Iterator bogonIter() { return bogon_.begin(); }
  SwFwdStatsMap::IteratorConst bogonIter() const { return bogon_.begin(); }

  // Finds or makes the entity of `key` (see SwFwdStatsMap::existingMember for a different VRF).
  Quor::ValidPtr<SwFwdStats> bogonIs(IpVersion key, const Quor::Name& vrfName);
  Quor::ValidPtr<SwFwdStats> newBogon(IpVersion key, const Quor::Name& vrfName) {
    return bogon_.newMember(key, vrfName);
  }
  Quor::Ptr<SwFwdStats> bogonDel(IpVersion key);
  Quor::Ptr<SwFwdStats> bogonDel(const SwFwdStatsMap::Iterator& at) { return bogonDel(at->ipVersion()); }
  void bogonDelAll();
  void bogonNotify(IpVersion key) const;

  // The framework's work, then the notifiees' onIsNondestructing.
  void isNondestructingIs(bool flag) override;
  const char* fwkType() const override { return "Ip::FwdStatsBogon"; }
  Quor::String8 attributeString(Quor::AttributeId id) const override;
  Quor::AttributeId attributeId(const Quor::String8& name) const override;

 private:
  friend Quor::Ptr<FwdStatsBogon> fwdStatsBogonFactory(const Quor::Name& name);
  explicit FwdStatsBogon(Quor::Name name) : Quor::Entity(std::move(name)) {}

  SwFwdStatsMap bogon_{this, bogonId};
};

Quor::Ptr<FwdStatsBogon> fwdStatsBogonFactory(const Quor::Name& name);

}  // namespace Ip
