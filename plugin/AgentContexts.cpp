#include "plugin/AgentContexts.h"

#include "frontend/IpBase.h"
#include "frontend/IpForward.h"
#include "frontend/IpSwForwarding.h"
#include "frontend/VrfBase.h"
#include "platform/snmp/ContextTeardown.h"

namespace {

struct Unit {
  void (*init)(Quor::String8 context);
  void (*unregister)(Quor::String8 context);
};

// The registration units, in the order they register.
constexpr Unit units[] = {{init_IpBase, unregister_IpBase},
                          {init_IpForward, unregister_IpForward},
                          {init_IpSwForwarding, unregister_IpSwForwarding},
                          {init_VrfBase, unregister_VrfBase}};

}  // namespace

void AgentContexts::defaultContextIs() {
  for (const Unit& unit : units) unit.init("");
}

void AgentContexts::contextIs(const Quor::Name& vrf) {
  for (const Unit& unit : units) unit.init(vrf);
  if (communities_) communities_->contextIs(vrf.str());
}

void AgentContexts::contextDel(const Quor::Name& vrf) {
  const std::string context = vrf.str();
  if (communities_) communities_->contextDel(context);
  for (const Unit& unit : units) unit.unregister(vrf);
  shutdown_tree_in_context(context.c_str());
  clear_cache_in_context(context.c_str());
}
