#pragma once
// The route prefixes that wait for one interface: a route whose via names an interface without
// status is remembered here, and brought back when that interface's status changes. The list is a
// set; the bool of a member is always true and nobody reads it. Its members are hashed with the
// prefix's hash(), the hash of the route backlog. PrefixList holds IPv4 prefixes, Prefix6List IPv6.
// Iteration: as every Quor::HashMap, a walk may remove the member it stands on.
#include "platform/pelt/IntfId.h"
#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/Prefix.h"
#include "platform/quor/HashMap.h"

namespace IpSnmp {

template <class Prefix>
class BasicPrefixList : public Quor::PtrInterface, public Quor::HashLink {
 public:
  class QuorPrefix : public Quor::PtrInterface, public Quor::HashLink {
   public:
    QuorPrefix(const Prefix& prefix, bool value) : prefix_(prefix), value_(value) {}
    const Prefix& fwkKey() const noexcept { return prefix_; }
    bool value() const noexcept { return value_; }
    void valueIs(bool value) noexcept { value_ = value; }

   private:
    const Prefix prefix_;
    bool value_;
  };
  using Prefixes = Quor::HashMap<QuorPrefix, Prefix>;

  explicit BasicPrefixList(Pelt::IntfId intfId) : intfId_(intfId) {}
  const Pelt::IntfId& intfId() const noexcept { return intfId_; }
  const Pelt::IntfId& fwkKey() const noexcept { return intfId_; }

  QuorPrefix* prefix(const Prefix& prefix) const { return prefix_.member(prefix); }
  const Prefixes& prefixes() const noexcept { return prefix_; }
  // Creates the member or overwrites its bool.
  Quor::ValidPtr<QuorPrefix> prefixIs(const Prefix& prefix, bool value) {
    if (QuorPrefix* member = prefix_.member(prefix)) {
      member->valueIs(value);
      return member;
    }
    return newPrefix(prefix, value);
  }
  // Creates a member whose key is absent.
  Quor::ValidPtr<QuorPrefix> newPrefix(const Prefix& prefix, bool value) {
    auto member = Quor::makePtr<QuorPrefix>(prefix, value);
    prefix_.newMember(member, prefix.hash());
    return member;
  }
  // Removes the member and returns it; null when absent.
  Quor::Ptr<QuorPrefix> prefixDel(const Prefix& prefix) { return prefix_.deleteMember(prefix); }
  Quor::Ptr<QuorPrefix> prefixDel(const typename Prefixes::Iterator& at) { return prefix_.deleteMember(at.key()); }
  void prefixDelAll() {
    for (auto it = prefix_.begin(); it; ++it) prefixDel(it);
  }

 private:
  const Pelt::IntfId intfId_;
  Prefixes prefix_;
};

using PrefixList = BasicPrefixList<Pelt::Prefix>;
using Prefix6List = BasicPrefixList<Pelt::Ip6AddrWithMask>;

}  // namespace IpSnmp
