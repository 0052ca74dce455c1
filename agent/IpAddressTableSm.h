#pragma once
// IpAddressTableSm keeps the address tables of every VRF (ipAddressTable, ipAddressPrefixTable,
// ipAddrTable) in step with the interfaces' addresses in the store. One machine serves all VRFs:
// an IPv4 address goes to the IpMib of its interface's VRF, an IPv6 address always to the default
// VRF's. It follows both the configuration and the status of every interface and merges them: an
// address is one row, and each contribution to it is one occurrence (source and interface) in the
// row. The master occurrence, the first in key order, decides the row's derived columns and is the
// only one whose prefix stands in ipAddressPrefixTable.
//
// One reactor per interface and side follows its entity; the interface's status comes from the
// interface directory and gives the index. An IPv4 reactor also follows the interface's L3 object and
// moves its address when the VRF changes; a move into a VRF that is not up yet leaves the interface
// waiting (currentVrf empty) until handleIntfInVrf lets it in. Reactors that leave take their
// occurrences with them, and so does the machine when it is destroyed.
//
// Deliberate, and relied on (each is a tested behaviour):
// - handleAddr deletes and re-adds from the VRF in the store, not from currentVrf, and runs on every
//   change of the interface's status even when the address did not change (IPv6 only adds again);
// - a re-add of an occurrence that is the master gives it a new prefix row while the table keeps the
//   old one, so a later removal of the address leaves that prefix row behind; a new reactor's first
//   pass re-adds in this way (handleAddr runs twice, and an IPv4 reactor's first handleVrf re-adds in
//   a VRF other than the default), so addresses present when their reactor is made are such masters;
// - handleVrf of the configuration side exits early only on the empty name, that of the status side
//   on an unchanged VRF;
// - link-local IPv6 addresses are ignored, both when they come and when they go;
// - an interface without status, or without an index (below 1), contributes nothing, and its reactor
//   remembers the address all the same; an interface whose status goes keeps its rows, also when its
//   reactor is then removed;
// - an occurrence added with another prefix length than the one it had is traced as "ignoring it"
//   and replaced nonetheless.
#include "agent/IpAddressSides.h"
#include "model/IpMib.h"
#include "platform/morvane/IntfStatus.h"
#include "platform/quor/HashMap.h"

namespace IpSnmp {

class IpAddressTableSm : public Quor::Reactor {
 public:
  class QuorIntfStatusDir;
  template <class Input>
  class QuorIntfInput;
  class QuorConfig;
  class QuorStatus;
  class QuorConfig6;
  class QuorStatus6;
  class QuorVrfIpMib;
  class IntfBinding;
  template <class S>
  class QuorIpIntf;
  class QuorIpIntfConfig;
  class QuorIpIntfStatus;
  template <class S>
  class QuorIp6Intf;
  using QuorIp6IntfConfig = QuorIp6Intf<AddressSide::Ip6Config>;
  using QuorIp6IntfStatus = QuorIp6Intf<AddressSide::Ip6Status>;

  // Every input but `ipMib` may be absent.
  struct Inputs {
    Quor::Ptr<const Interface::AllIntfStatusDir> intfStatusDir;
    Quor::ValidPtr<IpMib> ipMib;
    Quor::Ptr<const Ip::Config> config;
    Quor::Ptr<const Ip::Status> status;
    Quor::Ptr<const Ip6::Config> config6;
    Quor::Ptr<const Ip6::Status> status6;
    friend bool operator==(const Inputs&, const Inputs&) = default;
  };

  // Makes its first pass over the inputs.
  explicit IpAddressTableSm(const Inputs& inputs);
  // Removes every occurrence that the machine's reactors added.
  ~IpAddressTableSm() override;

  Quor::Ptr<const Interface::AllIntfStatusDir> intfStatusDir() const;
  const Quor::Ptr<IpMib>& ipMib() const noexcept { return ipMib_; }

  // The IpMib of a VRF other than the default, under its name (the VRF's). Rows are not touched; the
  // addresses that stood in a VRF whose IpMib goes wait for the VRF to come back (handleIntfInVrf).
  void vrfIpMibIs(const Quor::Ptr<IpMib>& ipMib);
  Quor::Ptr<IpMib> vrfIpMibDel(const Quor::Name& name);
  IpMib* vrfIpMib(const Quor::Name& name) const;

  // The reactor of one interface and side: made when absent, moved when its entity changed. A null
  // entity is a range failure.
  Quor::ValidPtr<QuorIpIntfConfig> ipIntfConfigIs(const Quor::Ptr<const Ip::IpIntfConfig>& entity);
  Quor::ValidPtr<QuorIpIntfStatus> ipIntfStatusIs(const Quor::Ptr<const Ip::IpIntfStatus>& entity);
  Quor::ValidPtr<QuorIp6IntfConfig> ip6IntfConfigIs(const Quor::Ptr<const Ip6::IntfConfig>& entity);
  Quor::ValidPtr<QuorIp6IntfStatus> ip6IntfStatusIs(const Quor::Ptr<const Ip6::IntfStatus>& entity);
  // Removes the interface's reactor, which takes its occurrences with it; returns the entity it followed.
  Quor::Ptr<const Ip::IpIntfConfig> ipIntfConfigDel(Pelt::IntfId intfId);
  Quor::Ptr<const Ip::IpIntfStatus> ipIntfStatusDel(Pelt::IntfId intfId);
  Quor::Ptr<const Ip6::IntfConfig> ip6IntfConfigDel(Pelt::IntfId intfId);
  Quor::Ptr<const Ip6::IntfStatus> ip6IntfStatusDel(Pelt::IntfId intfId);
  QuorIpIntfConfig* ipIntfConfig(Pelt::IntfId intfId) const { return ipIntfConfig_.member(intfId); }
  QuorIpIntfStatus* ipIntfStatus(Pelt::IntfId intfId) const { return ipIntfStatus_.member(intfId); }
  QuorIp6IntfConfig* ip6IntfConfig(Pelt::IntfId intfId) const { return ip6IntfConfig_.member(intfId); }
  QuorIp6IntfStatus* ip6IntfStatus(Pelt::IntfId intfId) const { return ip6IntfStatus_.member(intfId); }

  // One occurrence of an IPv4 address, in the IpMib of `vrf`.
  void doAddAddr(Pelt::IntfId intfId, AddressSource source, S32 ifIndex, L3::VrfName vrf,
                 const Pelt::IpAddrWithMask& addr);
  void doDelAddr(Pelt::IntfId intfId, AddressSource source, L3::VrfName vrf, const Pelt::IpAddrWithMask& addr);
  // One occurrence of an IPv6 address, always in the default VRF's IpMib.
  void doAddAddr6(Pelt::IntfId intfId, AddressSource source, S32 ifIndex, const Pelt::Ip6AddrWithMask& addr);
  void doDelAddr6(Pelt::IntfId intfId, AddressSource source, const Pelt::Ip6AddrWithMask& addr);

  // Hands the interface's present status (null when gone) to its four reactors: configuration
  // before status, IPv4 before IPv6.
  void handleIntfStatus(Pelt::IntfId intfId);
  // A VRF has come up: the IPv4 reactors of its interfaces move their addresses in.
  void handleIntfInVrf(const Quor::Name& name);

 protected:
  void quorZombieNested(bool flag) override;

 private:
  template <class R>
  using Reactors = Quor::HashMap<R, Pelt::IntfId>;

  // The IpMib of `vrf`: the default VRF's, or that of a VRF that is up; null for any other name.
  IpMib* ipMibOf(const L3::VrfName& vrf) const;
  // Enters one occurrence into `row` and keeps the prefix table on the master's prefix.
  template <class Addr>
  void addToIpAddressTable(IpMib& target, IpAddressEntry& row, const IntfDataKey& key,
                           const Quor::Ptr<const IpAddressPrefixEntry>& prefix, const Addr& addr);
  // Removes one occurrence from the row of `address`; true when the row went with it.
  bool delFromIpAddressTable(IpMib& target, const InetAddress& address, const IntfDataKey& key);

  template <class R>
  Quor::ValidPtr<R> reactorIs(Reactors<R>& reactors, const Quor::Ptr<const typename R::Entity>& entity);
  template <class R>
  Quor::Ptr<const typename R::Entity> reactorDel(Reactors<R>& reactors, Pelt::IntfId intfId);
  // The reactors that follow the members of an input.
  Reactors<QuorIpIntfConfig>& reactorsOf(const Ip::Config&) { return ipIntfConfig_; }
  Reactors<QuorIpIntfStatus>& reactorsOf(const Ip::Status&) { return ipIntfStatus_; }
  Reactors<QuorIp6IntfConfig>& reactorsOf(const Ip6::Config&) { return ip6IntfConfig_; }
  Reactors<QuorIp6IntfStatus>& reactorsOf(const Ip6::Status&) { return ip6IntfStatus_; }
  // A reactor for the input's member of `intfId` if there is one, else none.
  template <class Input>
  void followIntf(const Input& input, Pelt::IntfId intfId);
  // A reactor for every member of the input, none for the others.
  template <class Input>
  void reconcileIntfs(const Input& input);
  template <class R>
  void letIntoVrf(Reactors<R>& reactors, const L3::VrfName& vrf);

  Quor::Ptr<QuorIntfStatusDir> intfStatusDir_;
  const Quor::Ptr<IpMib> ipMib_;
  Quor::HashMap<QuorVrfIpMib, Quor::Name> vrfIpMib_;
  Quor::Ptr<QuorConfig> config_;
  Reactors<QuorIpIntfConfig> ipIntfConfig_;
  Quor::Ptr<QuorStatus> status_;
  Reactors<QuorIpIntfStatus> ipIntfStatus_;
  Quor::Ptr<QuorConfig6> config6_;
  Reactors<QuorIp6IntfConfig> ip6IntfConfig_;
  Quor::Ptr<QuorStatus6> status6_;
  Reactors<QuorIp6IntfStatus> ip6IntfStatus_;
};

// Tells the machine of every interface whose status comes, changes or goes.
class IpAddressTableSm::QuorIntfStatusDir : public Interface::AllIntfStatusDir::NotifieeConst {
 public:
  explicit QuorIntfStatusDir(IpAddressTableSm* sm) : ipAddressTableSm_(sm) {}
  void ipAddressTableSmIs(IpAddressTableSm* sm) noexcept { ipAddressTableSm_ = sm; }
  void onIntfStatus(const Pelt::IntfId& intfId) override;
  // Only notifications by interface count.
  void onIntfStatusquorImmediate() override {}

 private:
  IpAddressTableSm* ipAddressTableSm_;
};

// Keeps one per-interface reactor for every member of an input collection.
template <class Input>
class IpAddressTableSm::QuorIntfInput : public Input::NotifieeConst {
 public:
  explicit QuorIntfInput(IpAddressTableSm* sm) : ipAddressTableSm_(sm) {}
  void ipAddressTableSmIs(IpAddressTableSm* sm) noexcept { ipAddressTableSm_ = sm; }

 protected:
  // The reactor of one member: made, moved or removed.
  void follow(const Pelt::IntfId& intfId);
  // A reactor for every member, none for the others; also the replay of notifierIs.
  void reconcile();
  void onNotifierIs() override { reconcile(); }

 private:
  IpAddressTableSm* ipAddressTableSm_;
};

class IpAddressTableSm::QuorConfig final : public QuorIntfInput<Ip::Config> {
 public:
  using QuorIntfInput::QuorIntfInput;
  void onIpIntfConfig(const Pelt::IntfId& intfId) override { follow(intfId); }
  void onIpIntfConfigquorImmediate() override { reconcile(); }
};

class IpAddressTableSm::QuorStatus final : public QuorIntfInput<Ip::Status> {
 public:
  using QuorIntfInput::QuorIntfInput;
  void onIpIntfStatus(const Pelt::IntfId& intfId) override { follow(intfId); }
  void onIpIntfStatusquorImmediate() override { reconcile(); }
};

class IpAddressTableSm::QuorConfig6 final : public QuorIntfInput<Ip6::Config> {
 public:
  using QuorIntfInput::QuorIntfInput;
  void onIntf(const Pelt::IntfId& intfId) override { follow(intfId); }
  void onIntfquorImmediate() override { reconcile(); }
};

class IpAddressTableSm::QuorStatus6 final : public QuorIntfInput<Ip6::Status> {
 public:
  using QuorIntfInput::QuorIntfInput;
  void onIntf(const Pelt::IntfId& intfId) override { follow(intfId); }
  void onIntfquorImmediate() override { reconcile(); }
};

// Holds the IpMib of one VRF that is up.
class IpAddressTableSm::QuorVrfIpMib : public Quor::PtrInterface, public Quor::HashLink {
 public:
  explicit QuorVrfIpMib(const Quor::Ptr<IpMib>& ipMib) : name_(ipMib->name()), ipMib_(ipMib) {}
  const Quor::Name& fwkKey() const noexcept { return name_; }
  const Quor::Ptr<IpMib>& ipMib() const noexcept { return ipMib_; }
  void ipMibIs(const Quor::Ptr<IpMib>& ipMib) noexcept { ipMib_ = ipMib; }

 private:
  const Quor::Name name_;
  Quor::Ptr<IpMib> ipMib_;
};

// What every per-interface reactor keeps: its interface, that interface's status and its machine.
class IpAddressTableSm::IntfBinding : public Quor::HashLink {
 public:
  const Pelt::IntfId& fwkKey() const noexcept { return intfId_; }
  const Quor::Ptr<const Interface::IntfStatus>& intfStatus() const noexcept { return intfStatus_; }
  void ipAddressTableSmIs(IpAddressTableSm* sm) noexcept { ipAddressTableSm_ = sm; }

 protected:
  IntfBinding(IpAddressTableSm* sm, Pelt::IntfId intfId) : intfId_(intfId), ipAddressTableSm_(sm) {}
  // The interface's status in the machine's directory, null when it has none.
  Quor::Ptr<const Interface::IntfStatus> statusInDirectory() const;
  // Stores `status`; false when it is the one held already.
  bool intfStatusChanged(const Quor::Ptr<const Interface::IntfStatus>& status);
  S32 ifIndex() const { return intfIfIndex(intfStatus_); }

  const Pelt::IntfId intfId_;
  IpAddressTableSm* ipAddressTableSm_;

 private:
  Quor::Ptr<const Interface::IntfStatus> intfStatus_;
};

// Follows the primary IPv4 address of one interface on one side, and the VRF of its L3 object.
template <class S>
class IpAddressTableSm::QuorIpIntf : public S::Entity::NotifieeConst, public IntfBinding {
 public:
  using Side = S;
  using Entity = typename S::Entity;

  // Follows the interface's L3 object; its first notifierIs is the reactor's first handleVrf.
  class QuorL3 : public S::L3Entity::NotifieeConst {
   public:
    explicit QuorL3(QuorIpIntf* owner) : owner_(owner) {}
    void onVrf() override { owner_->handleL3Vrf(); }

   protected:
    void onNotifierIs() override { owner_->handleL3Vrf(); }

   private:
    QuorIpIntf* owner_;
  };

  QuorIpIntf(IpAddressTableSm* sm, const Quor::Ptr<const Entity>& entity);

  // A new status deletes the address and adds it again.
  void intfStatusIs(const Quor::Ptr<const Interface::IntfStatus>& status);
  void l3Is(const Quor::Ptr<const typename S::L3Entity>& l3);
  // The VRF whose table holds the address; empty while the interface waits for its VRF.
  const L3::VrfName& currentVrf() const noexcept { return currentVrf_; }
  // The table of `vrf` is gone: an address that stood in it waits for the VRF to come back.
  void vrfGone(const L3::VrfName& vrf) {
    if (currentVrf_ == vrf) currentVrf_ = L3::VrfName();
  }

  void handleAddr();
  void handleVrf(const L3::VrfName& vrf);

 protected:
  void onNotifierIs() override;
  void handleDel() override;
  void quorZombieNested(bool flag) override {
    if (l3_) l3_->quorDoZombieReactors(flag);
  }

 private:
  void handleL3Vrf();
  // The VRF of the entity's L3 object: the store's view, not currentVrf.
  L3::VrfName storeVrf() const;
  Pelt::IpAddrWithMask address() const;

  Quor::Ptr<QuorL3> l3_;
  L3::VrfName currentVrf_{"default"};
  Pelt::IpAddrWithMask oldAddr_;  // the address last passed to doAddAddr
};

class IpAddressTableSm::QuorIpIntfConfig final : public QuorIpIntf<AddressSide::Ip4Config> {
 public:
  using QuorL3Config = QuorL3;
  using QuorIpIntf::QuorIpIntf;
  void onAddrWithMask() override { handleAddr(); }
  void onL3Config() override { l3Is(notifier()->l3Config()); }
};

class IpAddressTableSm::QuorIpIntfStatus final : public QuorIpIntf<AddressSide::Ip4Status> {
 public:
  using QuorL3Status = QuorL3;
  using QuorIpIntf::QuorIpIntf;
  void onActiveAddrWithMask() override { handleAddr(); }
};

// Follows every IPv6 address of one interface on one side, and remembers those it passed on.
template <class S>
class IpAddressTableSm::QuorIp6Intf final : public S::Entity::NotifieeConst, public IntfBinding {
 public:
  using Side = S;
  using Entity = typename S::Entity;

  class QuorOldAddr : public Quor::PtrInterface, public Quor::HashLink {
   public:
    explicit QuorOldAddr(const Ip6::AddressInfo& info) : info_(info) {}
    const Pelt::Ip6AddrWithMask& fwkKey() const noexcept { return info_.key(); }
    const Ip6::AddressInfo& info() const noexcept { return info_; }
    void infoIs(const Ip6::AddressInfo& info) { info_ = info; }

   private:
    Ip6::AddressInfo info_;
  };

  QuorIp6Intf(IpAddressTableSm* sm, const Quor::Ptr<const Entity>& entity);

  void onAddr(const Pelt::Ip6AddrWithMask& key) override { handleAddr(key); }
  // Only notifications by address count.
  void onAddrquorImmediate() override {}
  // A new status adds every address again; nothing is deleted.
  void intfStatusIs(const Quor::Ptr<const Interface::IntfStatus>& status);

  void handleAddr(const Pelt::Ip6AddrWithMask& key);
  void handleAddr();

  void oldAddrIs(const Ip6::AddressInfo& info);
  void oldAddrDel(const Pelt::Ip6AddrWithMask& key) { oldAddr_.deleteMember(key); }

 protected:
  void handleDel() override;

 private:
  Quor::HashMap<QuorOldAddr, Pelt::Ip6AddrWithMask> oldAddr_;
};

}  // namespace IpSnmp
