#include "StoreRecorder.h"

namespace ScenarioTest {

namespace {

template <class Base>
class Recorder : public Base {
 public:
  explicit Recorder(StoreRecorder& out) : out_(out) {}

 protected:
  StoreRecorder& out_;
};

struct RoutingRecorder : Recorder<Routing::Config::NotifieeConst> {
  using Recorder::Recorder;
  void onRouting() override { out_.write("routing " + text(notifier()->routing())); }
};
struct Routing6Recorder : Recorder<::Routing6::Config::NotifieeConst> {
  using Recorder::Recorder;
  void onRouting() override { out_.write("routing6 " + text(notifier()->routing())); }
};
struct VrfConfigs : Recorder<Routing::VrfConfigDir::NotifieeConst> {
  using Recorder::Recorder;
  void onVrfConfig(const Quor::Name& name) override { out_.write("vrfConfig " + text(name)); }
};
struct VrfInfo : Recorder<Quor::Dir::NotifieeConst> {
  using Recorder::Recorder;
  void onEntityPtr(const Quor::Name& name) override { out_.write("info " + text(name)); }
};
struct IpVrfConfigs : Recorder<Ip::AllVrfConfig::NotifieeConst> {
  using Recorder::Recorder;
  void onVrf(const L3::VrfName& name) override { out_.write("vrf config " + text(name)); }
};
struct IpVrfStatuses : Recorder<Ip::AllVrfStatusLocal::NotifieeConst> {
  using Recorder::Recorder;
  void onVrf(const L3::VrfName& name) override { out_.write("vrf status " + text(name)); }
};
struct Interfaces : Recorder<Interface::AllIntfStatusDir::NotifieeConst> {
  using Recorder::Recorder;
  void onIntfStatus(const Pelt::IntfId& id) override { out_.write("intfStatus " + text(id)); }
};
struct IpConfigs : Recorder<Ip::Config::NotifieeConst> {
  using Recorder::Recorder;
  void onIpIntfConfig(const Pelt::IntfId& id) override { out_.write("ipIntfConfig " + text(id)); }
};
struct IpStatuses : Recorder<Ip::Status::NotifieeConst> {
  using Recorder::Recorder;
  void onIpIntfStatus(const Pelt::IntfId& id) override { out_.write("ipIntfStatus " + text(id)); }
};
struct Ip6Configs : Recorder<Ip6::Config::NotifieeConst> {
  using Recorder::Recorder;
  void onIntf(const Pelt::IntfId& id) override { out_.write("ip6 config " + text(id)); }
};
struct Ip6Statuses : Recorder<Ip6::Status::NotifieeConst> {
  using Recorder::Recorder;
  void onIntf(const Pelt::IntfId& id) override { out_.write("ip6 status " + text(id)); }
};
struct Agent : Recorder<Snmp::Status::NotifieeConst> {
  using Recorder::Recorder;
  void onInitialized() override { out_.write("initialized " + text(notifier()->initialized())); }
  void onColdStart() override { out_.write("coldStart " + text(notifier()->coldStart())); }
};

template <class R, class E>
Quor::Ptr<Quor::Reactor> follow(StoreRecorder& out, const Quor::Ptr<E>& entity) {
  auto r = Quor::makePtr<R>(out);
  r->notifierIs(entity);
  return r;
}

}  // namespace

StoreRecorder::StoreRecorder(const Morvane::Store& store)
    : reactors_{follow<RoutingRecorder>(*this, store.routingConfig),
                follow<Routing6Recorder>(*this, store.routing6Config),
                follow<VrfConfigs>(*this, store.routingVrfConfigDir),
                follow<VrfInfo>(*this, store.routingVrfInfoDir),
                follow<IpVrfConfigs>(*this, store.allVrfConfig),
                follow<IpVrfStatuses>(*this, store.allVrfStatusLocal),
                follow<Interfaces>(*this, store.intfStatusDir),
                follow<IpConfigs>(*this, store.ipConfig),
                follow<IpStatuses>(*this, store.ipStatus),
                follow<Ip6Configs>(*this, store.ip6Config),
                follow<Ip6Statuses>(*this, store.ip6Status),
                follow<Agent>(*this, store.snmpStatus)} {}

}  // namespace ScenarioTest
