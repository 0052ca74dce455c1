#pragma once
// The route prefixes that wait for one interface: a route whose via names an interface without
// status is remembered here, and brought back when that interface's status changes. The list is a
// set; the bool of a member is always true and nobody reads it. Its members are hashed with
// Pelt::Prefix::hash(), the hash of the route backlog. Iteration: as every Quor::HashMap, a walk may
// remove the member it stands on.
#include "platform/pelt/IntfId.h"
#include "platform/pelt/Prefix.h"
#include "platform/quor/HashMap.h"

namespace IpSnmp {

class PrefixList : public Quor::PtrInterface, public Quor::HashLink {
 public:
  class QuorPrefix : public Quor::PtrInterface, public Quor::HashLink {
   public:
    QuorPrefix(const Pelt::Prefix& prefix, bool value) : prefix_(prefix), value_(value) {}
    const Pelt::Prefix& fwkKey() const noexcept { return prefix_; }
    bool value() const noexcept { return value_; }
    void valueIs(bool value) noexcept { value_ = value; }

   private:
    const Pelt::Prefix prefix_;
    bool value_;
  };
  using Prefixes = Quor::HashMap<QuorPrefix, Pelt::Prefix>;

  explicit PrefixList(Pelt::IntfId intfId) : intfId_(intfId) {}
  const Pelt::IntfId& intfId() const noexcept { return intfId_; }
  const Pelt::IntfId& fwkKey() const noexcept { return intfId_; }

  QuorPrefix* prefix(const Pelt::Prefix& prefix) const { return prefix_.member(prefix); }
  const Prefixes& prefixes() const noexcept { return prefix_; }
  // Creates the member or overwrites its bool.
  Quor::ValidPtr<QuorPrefix> prefixIs(const Pelt::Prefix& prefix, bool value);
  // Creates a member whose key is absent.
  Quor::ValidPtr<QuorPrefix> newPrefix(const Pelt::Prefix& prefix, bool value);
  // Removes the member and returns it; null when absent.
  Quor::Ptr<QuorPrefix> prefixDel(const Pelt::Prefix& prefix) { return prefix_.deleteMember(prefix); }
  Quor::Ptr<QuorPrefix> prefixDel(const Prefixes::Iterator& at) { return prefix_.deleteMember(at.key()); }
  void prefixDelAll();

 private:
  const Pelt::IntfId intfId_;
  Prefixes prefix_;
};

}  // namespace IpSnmp
