#include "sources/scenario/ScenarioApply.h"

#include <vector>

#include "platform/quor/Clock.h"

namespace Sources {

namespace {

// Removes every member of `present` for whose key `wanted` is false.
template <class Members, class Wanted, class Remove>
void removeUnwanted(const Members& present, Wanted wanted, Remove remove) {
  std::vector<std::decay_t<decltype((*present.begin()).first)>> gone;
  for (const auto& entry : present)
    if (!wanted(entry.first)) gone.push_back(entry.first);
  for (const auto& key : gone) remove(key);
}

// Sets up `current`, or else a member made by `make`, set up first and then entered.
template <class M, class Make, class Set, class Enter>
void upsert(const Quor::Ptr<M>& current, Make make, Set set, Enter enter) {
  if (current) {
    set(*current);
    return;
  }
  Quor::Ptr<M> made = make();
  set(*made);
  enter(made);
}

// Whether `scenario` has an entry of `key` in `map` whose part `has` is true.
template <class Map, class Key, class Has>
bool wants(const Map& map, const Key& key, Has has) {
  auto it = map.find(key);
  return it != map.end() && has(it->second);
}

}  // namespace

// The plan is made in two parts: the removals, whose keys are taken from the store now, and one
// change for each part of the scenario, which compares with the store when it is made.
StoreChanges::StoreChanges(std::shared_ptr<const Scenario> scenario, Morvane::Store store)
    : scenario_(std::move(scenario)), s_(*scenario_), store_(std::move(store)) {
  removeAbsent();
  enterPresent();
}

bool StoreChanges::makeUntil(double deadline) {
  while (next_ < steps_.size()) {
    steps_[next_++]();
    if (Quor::now() >= deadline) break;
  }
  return next_ == steps_.size();
}

template <class Members, class Wanted, class Remove>
void StoreChanges::removeLater(const Members& present, Wanted wanted, Remove remove) {
  for (const auto& entry : present)
    if (!wanted(entry.first)) steps_.push_back([remove, key = entry.first] { remove(key); });
}

void StoreChanges::removeAbsent() {
  auto intfs = [this](auto has) {
    return [this, has](const Pelt::IntfId& id) { return wants(s_.interfaces, id, has); };
  };
  auto configured = [](const IntfScenario& i) { return i.config.has_value(); };
  auto active = [](const IntfScenario& i) { return i.status.has_value(); };
  removeLater(store_.ip6Status->intfs(), intfs(active), [this](auto id) { store_.ip6Status->intfDel(id); });
  removeLater(store_.ip6Config->intfs(), intfs(configured), [this](auto id) { store_.ip6Config->intfDel(id); });
  removeLater(store_.ipStatus->ipIntfStatuses(), intfs(active),
              [this](auto id) { store_.ipStatus->ipIntfStatusDel(id); });
  removeLater(store_.ipConfig->ipIntfConfigs(), intfs(configured),
              [this](auto id) { store_.ipConfig->ipIntfConfigDel(id); });
  removeLater(store_.intfStatusDir->intfStatuses(), intfs([](auto& i) { return i.presence.has_value(); }),
              [this](auto id) { store_.intfStatusDir->intfStatusDel(id); });

  auto vrfs = [this](auto has) { return [this, has](const L3::VrfName& name) { return wants(s_.vrfs, name, has); }; };
  removeLater(store_.routingVrfInfoDir->entityPtrs(), vrfs([](auto& v) { return v.published; }),
              [this](auto name) { store_.routingVrfInfoDir->entityPtrDel(name); });
  removeLater(store_.allVrfStatusLocal->vrfs(), vrfs([](auto& v) { return v.status.has_value(); }),
              [this](auto name) { store_.allVrfStatusLocal->vrfDel(name); });
  removeLater(store_.allVrfConfig->vrfs(), vrfs([](auto& v) { return v.config.has_value(); }),
              [this](auto name) { store_.allVrfConfig->vrfDel(name); });
  removeLater(store_.routingVrfConfigDir->vrfConfigs(), vrfs([](auto& v) { return v.routingIpv4.has_value(); }),
              [this](auto name) { store_.routingVrfConfigDir->vrfConfigDel(name); });
}

void StoreChanges::enterPresent() {
  steps_.push_back([this] {
    store_.routingConfig->routingIs(s_.routing.ipv4);
    store_.routing6Config->routingIs(s_.routing.ipv6);
  });
  for (const auto& [name, vrf] : s_.vrfs) steps_.push_back([this, &name, &vrf] { enterVrf(name, vrf); });
  for (const auto& [id, intf] : s_.interfaces) steps_.push_back([this, &id, &intf] { enterIntf(id, intf); });
  steps_.push_back([this] {
    if (s_.snmp.coldStart) store_.snmpStatus->coldStartIs(*s_.snmp.coldStart);
    if (s_.snmp.initialized) store_.snmpStatus->initializedIs(*s_.snmp.initialized);
  });
}

void StoreChanges::enterVrf(const L3::VrfName& name, const VrfScenario& vrf) {
  if (vrf.routingIpv4) {
    auto& dir = store_.routingVrfConfigDir;
    upsert(
        dir->vrfConfig(name.nameValue()), [&] { return Quor::makePtr<Routing::Config>(name.nameValue()); },
        [&](Routing::Config& c) { c.routingIs(*vrf.routingIpv4); }, [&](auto& c) { dir->vrfConfigIs(c); });
  }
  if (vrf.config) {
    auto& all = store_.allVrfConfig;
    upsert(
        all->vrf(name), [&] { return Quor::makePtr<Ip::VrfConfig>(name); },
        [&](Ip::VrfConfig& c) { c.routeDistinguisherIs(*vrf.config); }, [&](auto& c) { all->vrfIs(c); });
  }
  if (vrf.status) {
    auto& all = store_.allVrfStatusLocal;
    upsert(
        all->vrf(name), [&] { return Quor::makePtr<Ip::VrfStatusLocal>(name); },
        [&](Ip::VrfStatusLocal& st) {
          st.networkNamespaceIs(vrf.status->networkNamespace);
          st.nsInodeIs(vrf.status->nsInode.value_or(0));
          st.nsInodeValidIs(vrf.status->nsInode.has_value());
          st.stateIs(vrf.status->state);
        },
        [&](auto& st) { all->vrfIs(st); });
  }
  if (vrf.published && !store_.routingVrfInfoDir->entityPtr(name.nameValue()))
    store_.routingVrfInfoDir->entityPtrIs(Quor::makePtr<Quor::Entity>(name.nameValue()));
}

void StoreChanges::enterIntf(Pelt::IntfId id, const IntfScenario& intf) {
  if (intf.presence) {
    // A status never changes: a changed interface is a new status under the same key.
    Quor::Ptr<const Interface::IntfStatus> now = store_.intfStatusDir->intfStatus(id);
    if (!now || now->kind() != intf.presence->kind || now->ifIndex() != intf.presence->ifIndex)
      store_.intfStatusDir->intfStatusIs(
          Quor::makePtr<Interface::IntfStatus>(id, intf.presence->kind, intf.presence->ifIndex));
  }
  if (intf.config) {
    const IntfSideScenario& side = *intf.config;
    upsert(
        store_.ipConfig->ipIntfConfig(id), [&] { return Quor::makePtr<Ip::IpIntfConfig>(id); },
        [&](Ip::IpIntfConfig& c) {
          c.addrWithMaskIs(side.ipv4);
          enterL3Config(c, side.vrf);
        },
        [&](auto& c) { store_.ipConfig->ipIntfConfigIs(c); });
    upsert(
        store_.ip6Config->intf(id), [&] { return Quor::makePtr<Ip6::IntfConfig>(id); },
        [&](Ip6::IntfConfig& c) { enterIp6(c, side.ipv6); }, [&](auto& c) { store_.ip6Config->intfIs(c); });
  }
  if (intf.status) {
    const IntfSideScenario& side = *intf.status;
    // The L3 object of a status is fixed at its making: gaining or losing one takes a new status.
    Quor::Ptr<Ip::IpIntfStatus> now = store_.ipStatus->ipIntfStatus(id);
    if (now && bool(now->l3Status()) != side.vrf.has_value()) now = nullptr;
    upsert(
        now,
        [&] {
          auto l3 = side.vrf ? Quor::makePtr<L3::Intf::Status>(id.stringValue()) : nullptr;
          return Quor::makePtr<Ip::IpIntfStatus>(id, l3);
        },
        [&](Ip::IpIntfStatus& st) {
          st.activeAddrWithMaskIs(side.ipv4);
          if (side.vrf) st.l3Status()->vrfIs(*side.vrf);
        },
        [&](auto& st) { store_.ipStatus->ipIntfStatusIs(st); });
    upsert(
        store_.ip6Status->intf(id), [&] { return Quor::makePtr<Ip6::IntfStatus>(id); },
        [&](Ip6::IntfStatus& st) { enterIp6(st, side.ipv6); }, [&](auto& st) { store_.ip6Status->intfIs(st); });
  }
}

void StoreChanges::enterL3Config(Ip::IpIntfConfig& c, const std::optional<L3::VrfName>& vrf) {
  if (!vrf) {
    c.l3ConfigIs(nullptr);
  } else if (c.l3Config()) {
    c.l3Config()->vrfIs(*vrf);
  } else {
    auto l3 = Quor::makePtr<L3::Intf::Config>(c.name());
    l3->vrfIs(*vrf);
    c.l3ConfigIs(l3);
  }
}

template <class Addresses>
void StoreChanges::enterIp6(Addresses& intf, const std::set<Pelt::Ip6AddrWithMask>& addrs) {
  removeUnwanted(
      intf.addrs(), [&](const Pelt::Ip6AddrWithMask& key) { return addrs.count(key) > 0; },
      [&](const Pelt::Ip6AddrWithMask& key) { intf.addrDel(key); });
  for (const Pelt::Ip6AddrWithMask& addr : addrs) intf.addrIs(Ip6::AddressInfo(addr));
}

void applyScenario(const Scenario& scenario, const Morvane::Store& store) {
  // The scenario outlives the changes, which are all made here.
  StoreChanges(std::shared_ptr<const Scenario>(&scenario, [](const Scenario*) {}), store).makeUntil(Quor::never);
}

}  // namespace Sources
