#pragma once
// VrfIfTableSm keeps vrfIfTable: one row per interface that sits in a non-default VRF, keyed by
// interface index, naming the VRF. An interface in the default VRF has no row: the row exists to say
// that an interface is elsewhere.
//
// Every event runs the same addToVrfIfTable(), which moves the interface's row to the right state
// from any other, so nothing is kept beside the table. Deliberate, and relied on:
// - an interface's status is sampled once, when its reactor is made; an interface whose status
//   arrives after its IP configuration has no row until its reactor is made anew;
// - an interface without an index yet is keyed 4294967295 (the index -1 taken as unsigned);
// - the teardown of a VRF deletes that VRF's rows by name on its own; they come back when the VRF
//   comes up again (handleIntfInVrf).
#include "model/IpVrfMib.h"
#include "platform/morvane/IntfStatus.h"
#include "platform/morvane/IpIntf.h"
#include "platform/quor/HashMap.h"

namespace IpSnmp {

class VrfIfTableSm : public Quor::Reactor {
 public:
  class QuorConfig;
  class QuorIpIntfConfig;

  struct Inputs {
    Quor::ValidPtr<IpVrfMib> ipVrfMib;
    Quor::Ptr<const Interface::AllIntfStatusDir> intfStatusDir;
    Quor::Ptr<const Ip::Config> config;
    friend bool operator==(const Inputs&, const Inputs&) = default;
  };

  explicit VrfIfTableSm(const Inputs& inputs);
  ~VrfIfTableSm() override;

  const Quor::Ptr<IpVrfMib>& ipVrfMib() const noexcept { return ipVrfMib_; }
  const Quor::Ptr<const Interface::AllIntfStatusDir>& intfStatusDir() const noexcept { return intfStatusDir_; }
  Quor::Ptr<const Ip::Config> config() const;

  // The reactor of one configured interface: made when absent, moved when its entity changed.
  Quor::ValidPtr<QuorIpIntfConfig> ipIntfConfigIs(const Quor::Ptr<const Ip::IpIntfConfig>& entity);
  // Removes the interface's reactor, which takes its row with it; returns the entity it followed.
  Quor::Ptr<const Ip::IpIntfConfig> ipIntfConfigDel(const Pelt::IntfId& intfId);
  QuorIpIntfConfig* ipIntfConfig(const Pelt::IntfId& intfId) const { return ipIntfConfig_.member(intfId); }
  std::size_t ipIntfConfigs() const noexcept { return ipIntfConfig_.members(); }

  // A VRF has come up: the rows of its interfaces, which its last teardown deleted, come back.
  void handleIntfInVrf(const Quor::Name& name);

  // A reactor for every member of `input`, none for the others.
  void resynchronise(const Ip::Config& input);

  // Runs the deletion of an interface's reactor that is being marked as a zombie.
  void quor_handleIpIntfConfig(QuorIpIntfConfig& reactor);

 protected:
  void quorZombieNested(bool flag) override;

 private:
  const Quor::Ptr<IpVrfMib> ipVrfMib_;
  const Quor::Ptr<const Interface::AllIntfStatusDir> intfStatusDir_;
  Quor::Ptr<QuorConfig> config_;
  Quor::HashMap<QuorIpIntfConfig, Pelt::IntfId> ipIntfConfig_;
};

class VrfIfTableSm::QuorConfig : public Ip::Config::NotifieeConst {
 public:
  explicit QuorConfig(VrfIfTableSm* sm) : vrfIfTableSm_(sm) {}
  void onIpIntfConfig(const Pelt::IntfId& intfId) override;
  void onIpIntfConfigquorImmediate() override;
  void vrfIfTableSmIs(VrfIfTableSm* sm) noexcept { vrfIfTableSm_ = sm; }

 protected:
  void onNotifierIs() override { onIpIntfConfigquorImmediate(); }

 private:
  VrfIfTableSm* vrfIfTableSm_;
};

class VrfIfTableSm::QuorIpIntfConfig : public Ip::IpIntfConfig::NotifieeConst, public Quor::HashLink {
 public:
  class QuorL3Config : public L3::Intf::Config::NotifieeConst {
   public:
    explicit QuorL3Config(QuorIpIntfConfig* owner) : owner_(owner) {}
    void onVrf() override;

   protected:
    void onNotifierIs() override { owner_->addToVrfIfTable(); }

   private:
    QuorIpIntfConfig* owner_;
  };

  QuorIpIntfConfig(VrfIfTableSm* sm, const Quor::Ptr<const Ip::IpIntfConfig>& entity);
  const Pelt::IntfId& fwkKey() const noexcept { return intfId_; }

  void onL3Config() override;
  void l3ConfigIs(const Quor::Ptr<const L3::Intf::Config>& l3Config);
  const Quor::Ptr<const Interface::IntfStatus>& intfStatus() const noexcept { return intfStatus_; }
  void intfStatusIs(const Quor::Ptr<const Interface::IntfStatus>& status);
  void vrfIfTableSmIs(VrfIfTableSm* sm) noexcept { vrfIfTableSm_ = sm; }
  // The VRF that the interface's L3 configuration names.
  L3::VrfName vrf() const;

  void addToVrfIfTable();
  void delFromVrfIfTable();

 protected:
  void handleDel() override;
  void quorZombieNested(bool flag) override { l3Config_->quorDoZombieReactors(flag); }

 private:
  // The interface's index as a row key: an interface without one yet is keyed 4294967295.
  U32 rowKey() const;

  const Pelt::IntfId intfId_;
  VrfIfTableSm* vrfIfTableSm_;
  Quor::Ptr<const Interface::IntfStatus> intfStatus_;
  const Quor::Ptr<QuorL3Config> l3Config_;
};

}  // namespace IpSnmp
