#include "plugin/InterimVrfContexts.h"

#include <vector>

#include "frontend/IpBase.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/ContextTeardown.h"

namespace {

const Quor::Tracer tracer{"Snmp", "InterimVrfContexts"};

// The default VRF is the default context, open for the life of the process.
bool isOtherVrf(const Quor::Name& vrf) { return !vrf.empty() && !(vrf == "default"); }

}  // namespace

Quor::Ptr<InterimVrfContexts> InterimVrfContexts::newInstance(const Quor::Ptr<const Routing::VrfConfigDir>& dir) {
  Quor::Ptr<InterimVrfContexts> contexts(new InterimVrfContexts);
  contexts->notifierIs(dir);
  return contexts;
}

void InterimVrfContexts::onVrfConfig(const Quor::Name& vrf) { reconcile(vrf); }

void InterimVrfContexts::onVrfConfigquorImmediate() { onNotifierIs(); }

void InterimVrfContexts::onNotifierIs() {
  std::vector<Quor::Name> names;
  for (const auto& [vrf, config] : open_) names.push_back(vrf);
  if (notifier())
    for (const auto& [vrf, config] : notifier()->vrfConfigs()) names.push_back(vrf);
  for (const Quor::Name& vrf : names) reconcile(vrf);
}

void InterimVrfContexts::handleDel() {
  while (!open_.empty()) close(open_.begin()->first);
}

void InterimVrfContexts::reconcile(const Quor::Name& vrf) {
  Quor::Ptr<const Routing::Config> config = notifier() ? notifier()->vrfConfig(vrf) : nullptr;
  auto it = open_.find(vrf);
  const Quor::Ptr<const Routing::Config> registered = it == open_.end() ? nullptr : it->second;
  if (config == registered) return;
  if (registered) close(vrf);
  if (config && isOtherVrf(vrf)) open(vrf, config);
}

void InterimVrfContexts::open(const Quor::Name& vrf, const Quor::Ptr<const Routing::Config>& config) {
  QTRACE(tracer, 1, "opening the context of VRF " << vrf);
  open_[vrf] = config;
  init_IpBase(vrf);
}

void InterimVrfContexts::close(const Quor::Name& vrf) {
  QTRACE(tracer, 1, "closing the context of VRF " << vrf);
  const std::string context = vrf.str();
  unregister_IpBase(vrf);
  shutdown_tree_in_context(context.c_str());
  clear_cache_in_context(context.c_str());
  // Only now: the registrations pointed at this configuration until they were gone.
  open_.erase(vrf);
}
