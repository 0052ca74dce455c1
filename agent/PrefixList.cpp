#include "agent/PrefixList.h"

namespace IpSnmp {

Quor::ValidPtr<PrefixList::QuorPrefix> PrefixList::prefixIs(const Pelt::Prefix& prefix, bool value) {
  if (QuorPrefix* member = prefix_.member(prefix)) {
    member->valueIs(value);
    return member;
  }
  return newPrefix(prefix, value);
}

Quor::ValidPtr<PrefixList::QuorPrefix> PrefixList::newPrefix(const Pelt::Prefix& prefix, bool value) {
  auto member = Quor::makePtr<QuorPrefix>(prefix, value);
  prefix_.newMember(member, prefix.hash());
  return member;
}

void PrefixList::prefixDelAll() {
  for (auto it = prefix_.begin(); it; ++it) prefixDel(it);
}

}  // namespace IpSnmp
