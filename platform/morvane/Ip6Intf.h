#pragma once
// IPv6 of the interfaces: per interface a collection of addresses, once as configured
// (Ip6::Config of Ip6::IntfConfig) and once as in effect (Ip6::Status of Ip6::IntfStatus). Every
// address of the collection counts, not only a primary one.
#include <iosfwd>

#include "platform/morvane/StoreEntity.h"
#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/IntfId.h"

namespace Ip6 {

// One address of an interface. The default value, ::/0, is what a lookup of an absent address gives.
class AddressInfo {
 public:
  AddressInfo() noexcept = default;
  explicit AddressInfo(const Pelt::Ip6AddrWithMask& key) noexcept : key_(key) {}
  const Pelt::Ip6AddrWithMask& key() const noexcept { return key_; }
  friend bool operator==(const AddressInfo&, const AddressInfo&) = default;

 private:
  Pelt::Ip6AddrWithMask key_;
};

std::ostream& operator<<(std::ostream& out, const AddressInfo& info);

}  // namespace Ip6

namespace Morvane {

// The addresses of one interface, the shape of Ip6::IntfConfig and Ip6::IntfStatus.
template <class Self>
class Ip6IntfAddresses : public StoreEntity<Self> {
 public:
  class NotifieeConst : public Quor::Notifiee<Self> {
   public:
    virtual void onAddr(const Pelt::Ip6AddrWithMask&) {}
    virtual void onAddrquorImmediate() {}
  };
  static constexpr std::string_view attributeNames[] = {"intfId", "addr"};
  using Members = Collection<Pelt::Ip6AddrWithMask, Ip6::AddressInfo>;

  explicit Ip6IntfAddresses(Pelt::IntfId intfId) : StoreEntity<Self>(intfId.stringValue()), intfId_(intfId) {}

  Pelt::IntfId intfId() const noexcept { return intfId_; }
  // The default Ip6::AddressInfo when absent.
  Ip6::AddressInfo addr(const Pelt::Ip6AddrWithMask& key) const { return addr_.memberOr(key, Ip6::AddressInfo()); }
  const Members& addrs() const noexcept { return addr_; }
  void addrIs(const Ip6::AddressInfo& info) {
    this->template memberIs<&NotifieeConst::onAddr>("addr", addr_, info.key(), info);
  }
  void addrDel(const Pelt::Ip6AddrWithMask& key) {
    this->template memberDel<&NotifieeConst::onAddr>("addr", addr_, key);
  }

 private:
  Pelt::IntfId intfId_;
  Members addr_{this, this->idOf("addr")};
};

// The interfaces of one side, the shape of Ip6::Config and Ip6::Status.
template <class Self, class Member>
class Ip6Intfs : public StoreEntity<Self> {
 public:
  class NotifieeConst : public Quor::Notifiee<Self> {
   public:
    virtual void onIntf(const Pelt::IntfId&) {}
    virtual void onIntfquorImmediate() {}
  };
  static constexpr std::string_view attributeNames[] = {"intf"};
  using Members = Collection<Pelt::IntfId, Quor::Ptr<Member>>;

  using StoreEntity<Self>::StoreEntity;
  // Null when absent.
  Quor::Ptr<const Member> intf(Pelt::IntfId id) const { return intf_.memberOr(id, nullptr); }
  Quor::Ptr<Member> intf(Pelt::IntfId id) { return intf_.memberOr(id, nullptr); }
  const Members& intfs() const noexcept { return intf_; }
  // Enters the member under its intfId, replacing another of that key.
  void intfIs(const Quor::Ptr<Member>& member) {
    this->nonNull(member, "intf");
    this->template memberIs<&NotifieeConst::onIntf>("intf", intf_, member->intfId(), member);
  }
  void intfDel(Pelt::IntfId id) { this->template memberDel<&NotifieeConst::onIntf>("intf", intf_, id); }

 private:
  Members intf_{this, this->idOf("intf")};
};

}  // namespace Morvane

namespace Ip6 {

class IntfConfig final : public Morvane::Ip6IntfAddresses<IntfConfig> {
 public:
  static constexpr const char* typeName = "Ip6::IntfConfig";
  using Ip6IntfAddresses::Ip6IntfAddresses;
};

class IntfStatus final : public Morvane::Ip6IntfAddresses<IntfStatus> {
 public:
  static constexpr const char* typeName = "Ip6::IntfStatus";
  using Ip6IntfAddresses::Ip6IntfAddresses;
};

class Config final : public Morvane::Ip6Intfs<Config, IntfConfig> {
 public:
  static constexpr const char* typeName = "Ip6::Config";
  using Ip6Intfs::Ip6Intfs;
};

class Status final : public Morvane::Ip6Intfs<Status, IntfStatus> {
 public:
  static constexpr const char* typeName = "Ip6::Status";
  using Ip6Intfs::Ip6Intfs;
};

}  // namespace Ip6
