#pragma once
// IPv4 of the interfaces: the configuration (Ip::Config of Ip::IpIntfConfig) and the status in
// effect (Ip::Status of Ip::IpIntfStatus), each keyed by interface. Only the primary address is
// held. The status's L3 object is fixed when the status is made; the configuration's may change.
#include "platform/morvane/L3Intf.h"
#include "platform/pelt/IntfId.h"
#include "platform/pelt/IpAddr.h"

namespace Ip {

class IpIntfConfig final : public Morvane::StoreEntity<IpIntfConfig> {
 public:
  class NotifieeConst : public Quor::Notifiee<IpIntfConfig> {
   public:
    virtual void onAddrWithMask() {}
    virtual void onL3Config() {}
  };
  static constexpr const char* typeName = "Ip::IpIntfConfig";
  static constexpr std::string_view attributeNames[] = {"intfId", "addrWithMask", "l3Config"};

  explicit IpIntfConfig(Pelt::IntfId intfId);

  Pelt::IntfId intfId() const noexcept { return intfId_; }
  const Pelt::IpAddrWithMask& addrWithMask() const noexcept { return addrWithMask_; }
  void addrWithMaskIs(const Pelt::IpAddrWithMask& addr);
  // May be null.
  Quor::Ptr<const L3::Intf::Config> l3Config() const noexcept { return l3Config_; }
  const Quor::Ptr<L3::Intf::Config>& l3Config() noexcept { return l3Config_; }
  void l3ConfigIs(const Quor::Ptr<L3::Intf::Config>& l3Config);

 private:
  Pelt::IntfId intfId_;
  Pelt::IpAddrWithMask addrWithMask_;
  Quor::Ptr<L3::Intf::Config> l3Config_;
};

class IpIntfStatus final : public Morvane::StoreEntity<IpIntfStatus> {
 public:
  class NotifieeConst : public Quor::Notifiee<IpIntfStatus> {
   public:
    virtual void onActiveAddrWithMask() {}
  };
  static constexpr const char* typeName = "Ip::IpIntfStatus";
  static constexpr std::string_view attributeNames[] = {"intfId", "activeAddrWithMask", "l3Status"};

  // `l3Status` may be null, and stays what it is for the life of this status.
  IpIntfStatus(Pelt::IntfId intfId, Quor::Ptr<L3::Intf::Status> l3Status);

  Pelt::IntfId intfId() const noexcept { return intfId_; }
  const Pelt::IpAddrWithMask& activeAddrWithMask() const noexcept { return activeAddrWithMask_; }
  void activeAddrWithMaskIs(const Pelt::IpAddrWithMask& addr);
  Quor::Ptr<const L3::Intf::Status> l3Status() const noexcept { return l3Status_; }
  const Quor::Ptr<L3::Intf::Status>& l3Status() noexcept { return l3Status_; }

 private:
  Pelt::IntfId intfId_;
  Pelt::IpAddrWithMask activeAddrWithMask_;
  const Quor::Ptr<L3::Intf::Status> l3Status_;
};

class Config final : public Morvane::StoreEntity<Config> {
 public:
  class NotifieeConst : public Quor::Notifiee<Config> {
   public:
    virtual void onIpIntfConfig(const Pelt::IntfId&) {}
    virtual void onIpIntfConfigquorImmediate() {}
  };
  static constexpr const char* typeName = "Ip::Config";
  static constexpr std::string_view attributeNames[] = {"ipIntfConfig"};
  using Members = Morvane::Collection<Pelt::IntfId, Quor::Ptr<IpIntfConfig>>;

  using StoreEntity::StoreEntity;
  // Null when absent.
  Quor::Ptr<const IpIntfConfig> ipIntfConfig(Pelt::IntfId id) const { return ipIntfConfig_.memberOr(id, nullptr); }
  Quor::Ptr<IpIntfConfig> ipIntfConfig(Pelt::IntfId id) { return ipIntfConfig_.memberOr(id, nullptr); }
  const Members& ipIntfConfigs() const noexcept { return ipIntfConfig_; }
  // Enters the member under its intfId, replacing another of that key.
  void ipIntfConfigIs(const Quor::Ptr<IpIntfConfig>& member);
  void ipIntfConfigDel(Pelt::IntfId id);

 private:
  Members ipIntfConfig_{this, idOf("ipIntfConfig")};
};

class Status final : public Morvane::StoreEntity<Status> {
 public:
  class NotifieeConst : public Quor::Notifiee<Status> {
   public:
    virtual void onIpIntfStatus(const Pelt::IntfId&) {}
    virtual void onIpIntfStatusquorImmediate() {}
  };
  static constexpr const char* typeName = "Ip::Status";
  static constexpr std::string_view attributeNames[] = {"ipIntfStatus"};
  using Members = Morvane::Collection<Pelt::IntfId, Quor::Ptr<IpIntfStatus>>;

  using StoreEntity::StoreEntity;
  // Null when absent.
  Quor::Ptr<const IpIntfStatus> ipIntfStatus(Pelt::IntfId id) const { return ipIntfStatus_.memberOr(id, nullptr); }
  Quor::Ptr<IpIntfStatus> ipIntfStatus(Pelt::IntfId id) { return ipIntfStatus_.memberOr(id, nullptr); }
  const Members& ipIntfStatuses() const noexcept { return ipIntfStatus_; }
  // Enters the member under its intfId, replacing another of that key.
  void ipIntfStatusIs(const Quor::Ptr<IpIntfStatus>& member);
  void ipIntfStatusDel(Pelt::IntfId id);

 private:
  Members ipIntfStatus_{this, idOf("ipIntfStatus")};
};

}  // namespace Ip
