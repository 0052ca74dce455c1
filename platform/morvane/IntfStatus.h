#pragma once
// The interfaces that exist (Interface::AllIntfStatusDir of Interface::IntfStatus), and the
// interface index read from them.
//
// An IntfStatus never changes: a changed interface is a new status object under the same key, which
// is what its readers watch for. The interface index is not read from the status directly but
// through the details provider of the interface's kind, and a kind may have none.
#include "platform/morvane/StoreEntity.h"
#include "platform/pelt/IntfId.h"

namespace Interface {

class IntfStatus final : public Morvane::StoreEntity<IntfStatus> {
 public:
  class NotifieeConst : public Quor::Notifiee<IntfStatus> {};
  static constexpr const char* typeName = "Interface::IntfStatus";
  static constexpr std::string_view attributeNames[] = {"intfId", "kind", "ifIndex"};

  // `kind` such as "ethernet" chooses the details provider; `ifIndex` below 1 means no index yet.
  IntfStatus(Pelt::IntfId intfId, Quor::Name kind, S32 ifIndex);

  Pelt::IntfId intfId() const noexcept { return intfId_; }
  const Quor::Name& kind() const noexcept { return kind_; }
  S32 ifIndex() const noexcept { return ifIndex_; }

 private:
  Pelt::IntfId intfId_;
  Quor::Name kind_;
  S32 ifIndex_;
};

class AllIntfStatusDir final : public Morvane::StoreEntity<AllIntfStatusDir> {
 public:
  class NotifieeConst : public Quor::Notifiee<AllIntfStatusDir> {
   public:
    virtual void onIntfStatus(const Pelt::IntfId&) {}
    virtual void onIntfStatusquorImmediate() {}
  };
  static constexpr const char* typeName = "Interface::AllIntfStatusDir";
  static constexpr std::string_view attributeNames[] = {"intfStatus"};
  using Members = Morvane::Collection<Pelt::IntfId, Quor::Ptr<IntfStatus>>;

  using StoreEntity::StoreEntity;
  // Null when absent.
  Quor::Ptr<const IntfStatus> intfStatus(Pelt::IntfId id) const { return intfStatus_.memberOr(id, nullptr); }
  const Members& intfStatuses() const noexcept { return intfStatus_; }
  // Enters the member under its intfId, replacing another of that key.
  void intfStatusIs(const Quor::Ptr<IntfStatus>& member);
  void intfStatusDel(Pelt::IntfId id);

 private:
  Members intfStatus_{this, idOf("intfStatus")};
};

}  // namespace Interface

namespace Intf {

// Knows the details of the interfaces of one kind.
class IntfDetailsProvider : public Quor::PtrInterface {
 public:
  virtual S32 ifIndex(const Quor::Ptr<const Interface::IntfStatus>& status) const = 0;
};

// The provider of the status's kind, or null for a kind without one (or a null status). The kinds
// "ethernet", "vlan", "loopback", "management" and "portChannel" have a provider that answers the
// status's own index.
Quor::Ptr<const IntfDetailsProvider> intfDetailsProvider(const Quor::Ptr<const Interface::IntfStatus>& status);
// Installs the provider of a kind; null removes it.
void intfDetailsProviderIs(const Quor::Name& kind, const Quor::Ptr<const IntfDetailsProvider>& provider);

}  // namespace Intf

// The interface index through the provider of the interface's kind: -1 without a provider, below 1
// for an interface that has no index yet.
S32 intfIfIndex(const Quor::Ptr<const Interface::IntfStatus>& status);
