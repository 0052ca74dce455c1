#include "stats/FwdStatsBogon.h"

#include <string_view>

namespace Ip {

namespace {
constexpr std::string_view attributeNames[] = {"bogon"};
}

Quor::Ptr<FwdStatsBogon> fwdStatsBogonFactory(const Quor::Name& name) {
  return Quor::Ptr<FwdStatsBogon>(new FwdStatsBogon(name));
}

Quor::ValidPtr<SwFwdStats> FwdStatsBogon::bogonIs(IpVersion key, const Quor::Name& vrfName) {
  if (Quor::Ptr<SwFwdStats> existing = bogon_.existingMember(key, vrfName)) return existing;
  Quor::ValidPtr<SwFwdStats> made = newBogon(key, vrfName);
  bogonNotify(key);
  return made;
}

Quor::Ptr<SwFwdStats> FwdStatsBogon::bogonDel(IpVersion key) {
  Quor::Ptr<SwFwdStats> removed = bogon_.deleteMember(key);
  if (removed) bogonNotify(key);
  return removed;
}

void FwdStatsBogon::bogonDelAll() {
  for (SwFwdStatsMap::Iterator it = bogon_.begin(); it; ++it) bogonDel(it);
}

void FwdStatsBogon::bogonNotify(IpVersion key) const {
  notify<NotifieeConst>(bogonId, [key](NotifieeConst& n) { n.onBogon(key); });
}

void FwdStatsBogon::isNondestructingIs(bool flag) {
  Quor::Entity::isNondestructingIs(flag);
  notify<NotifieeConst>(0, [](NotifieeConst& n) { n.onIsNondestructing(); });
}

Quor::String8 FwdStatsBogon::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

Quor::AttributeId FwdStatsBogon::attributeId(const Quor::String8& name) const {
  return attributeIdOf(attributeNames, name);
}

}  // namespace Ip
