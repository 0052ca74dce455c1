#include "plugin/AgentContexts.h"

#include "frontend/IpBase.h"
#include "frontend/IpForward.h"
#include "frontend/IpSwForwarding.h"
#include "platform/snmp/ContextTeardown.h"

void AgentContexts::contextIs(const Quor::Name& vrf) {
  init_IpBase(vrf);
  init_IpForward(vrf);
  init_IpSwForwarding(vrf);
  if (communities_) communities_->contextIs(vrf.str());
}

void AgentContexts::contextDel(const Quor::Name& vrf) {
  const std::string context = vrf.str();
  if (communities_) communities_->contextDel(context);
  unregister_IpBase(vrf);
  unregister_IpForward(vrf);
  unregister_IpSwForwarding(vrf);
  shutdown_tree_in_context(context.c_str());
  clear_cache_in_context(context.c_str());
}
