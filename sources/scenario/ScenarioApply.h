#pragma once
// Brings the store in line with a scenario by difference: members the scenario lacks are removed,
// new ones are made, existing ones are changed in place where their type allows, and a value
// that is already right is not written, so that it notifies nobody.
//
// Order matters to the store's readers, and follows how a switch changes: first every removal,
// the IP sides of interfaces before the interfaces themselves and those before the VRFs; then every
// addition or change the other way round, routing, VRFs, interfaces, their IP sides, and the
// agent's status last. A new entity is filled in before it is entered, so its first notification
// shows it complete.
//
// The changes can be made in slices of time (StoreChanges), so that a large scenario does not hold
// the agent's loop: each change is one VRF or one interface, with its entities. The removals are
// planned at once; every other change compares with the store when it is made.
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "platform/morvane/Store.h"
#include "sources/scenario/Scenario.h"

namespace Sources {

class StoreChanges {
 public:
  StoreChanges(std::shared_ptr<const Scenario> scenario, Morvane::Store store);
  StoreChanges(const StoreChanges&) = delete;
  StoreChanges& operator=(const StoreChanges&) = delete;

  // Makes the next changes until all are made (true) or Quor::now() has reached `deadline`; at
  // least one change is made per call.
  bool makeUntil(double deadline);

 private:
  template <class Members, class Wanted, class Remove>
  void removeLater(const Members& present, Wanted wanted, Remove remove);
  void removeAbsent();
  void enterPresent();
  void enterVrf(const L3::VrfName& name, const VrfScenario& vrf);
  void enterIntf(Pelt::IntfId id, const IntfScenario& intf);
  static void enterL3Config(Ip::IpIntfConfig& c, const std::optional<L3::VrfName>& vrf);
  template <class Addresses>
  static void enterIp6(Addresses& intf, const std::set<Pelt::Ip6AddrWithMask>& addrs);

  std::shared_ptr<const Scenario> scenario_;
  const Scenario& s_;
  Morvane::Store store_;
  std::vector<std::function<void()>> steps_;
  std::size_t next_ = 0;
};

// Makes all the changes at once.
void applyScenario(const Scenario& scenario, const Morvane::Store& store);

}  // namespace Sources
