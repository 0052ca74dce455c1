#pragma once
// Interim context wiring, to be replaced by the VRF lifecycle machine: until that machine opens and
// closes a VRF's SNMP context with the rest of the VRF's life, the plug-in follows the routing
// configuration of the store instead. A VRF that gets a member in Routing::VrfConfigDir gets its
// context (init_IpBase); one whose member goes loses it again: unregister_IpBase, then the
// agent's tree and lookup cache of the context. A member replaced by another entity re-registers
// the context, because the registration points at the entity it found at registration.
#include <map>

#include "platform/morvane/RoutingConfig.h"

class InterimVrfContexts final : public Routing::VrfConfigDir::NotifieeConst {
 public:
  // Follows `dir` and opens the contexts of the VRFs it holds now.
  static Quor::Ptr<InterimVrfContexts> newInstance(const Quor::Ptr<const Routing::VrfConfigDir>& dir);

  void onVrfConfig(const Quor::Name& vrf) override;
  void onVrfConfigquorImmediate() override;

  // The VRFs whose contexts are open, with the configuration their registrations read.
  const std::map<Quor::Name, Quor::Ptr<const Routing::Config>>& openContexts() const noexcept { return open_; }

 protected:
  void onNotifierIs() override;
  // Closes every open context: the plug-in stops.
  void handleDel() override;

 private:
  InterimVrfContexts() = default;
  void reconcile(const Quor::Name& vrf);
  void open(const Quor::Name& vrf, const Quor::Ptr<const Routing::Config>& config);
  void close(const Quor::Name& vrf);

  std::map<Quor::Name, Quor::Ptr<const Routing::Config>> open_;
};
