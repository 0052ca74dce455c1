#include "stats/SwFwdStatsMap.h"

namespace Ip {

SwFwdStatsMap::~SwFwdStatsMap() {
  for (Iterator it = members_.begin(); it; ++it) it->parentIs(nullptr);
}

Quor::Ptr<SwFwdStats> SwFwdStatsMap::existingMember(IpVersion key, const Quor::Name& vrfName) const {
  SwFwdStats* existing = members_.member(key);
  if (existing && !(existing->vrfName() == vrfName)) {
    Quor::throwNameInUseException("Reinstantiating the entity with name " + valueToStrep(key).str() +
                                  " where constructor parameter attribute _vrfName has a different value of " +
                                  Quor::valueToStrep(vrfName).str() + " than the current value of " +
                                  Quor::valueToStrep(existing->vrfName()).str() + " not allowed");
  }
  return existing;
}

Quor::ValidPtr<SwFwdStats> SwFwdStatsMap::newMember(IpVersion key, const Quor::Name& vrfName) {
  Quor::ValidPtr<SwFwdStats> made = swFwdStatsFactory(key, vrfName);
  made->parentIs(owner_);
  made->parentAttrIdIs(attr_);
  members_.memberIs(made);
  return made;
}

Quor::Ptr<SwFwdStats> SwFwdStatsMap::deleteMember(IpVersion key) {
  Quor::Ptr<SwFwdStats> removed = members_.deleteMember(key);
  if (removed && removed->parent() == owner_) removed->parentIs(nullptr);
  return removed;
}

}  // namespace Ip
