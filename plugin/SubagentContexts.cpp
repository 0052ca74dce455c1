#include "plugin/SubagentContexts.h"

#include "platform/snmp/NetSnmp.h"

namespace {

// The contexts other than the default one in which a subtree belongs to a session (AgentX
// registrations are the master's only ones that do).
std::set<std::string> contextsOfSessions() {
  std::set<std::string> found;
  for (const subtree_context_cache* cache = get_top_context_cache(); cache; cache = cache->next) {
    if (!cache->context_name || !*cache->context_name) continue;
    bool held = false;
    for (const netsnmp_subtree* subtree = cache->first_subtree; subtree && !held; subtree = subtree->next)
      for (const netsnmp_subtree* stacked = subtree; stacked && !held; stacked = stacked->children)
        held = stacked->session != nullptr;
    if (held) found.insert(cache->context_name);
  }
  return found;
}

}  // namespace

SubagentContexts::SubagentContexts(VrfCommunities& communities) : communities_(communities) {
  for (int change : {SNMPD_CALLBACK_REGISTER_OID, SNMPD_CALLBACK_UNREGISTER_OID})
    snmp_register_callback(SNMP_CALLBACK_APPLICATION, change, onRegistryChange, this);
  review();
}

SubagentContexts::~SubagentContexts() {
  for (int change : {SNMPD_CALLBACK_REGISTER_OID, SNMPD_CALLBACK_UNREGISTER_OID})
    snmp_unregister_callback(SNMP_CALLBACK_APPLICATION, change, onRegistryChange, this, 1);
  for (const std::string& context : contexts_) communities_.contextDel(context);
}

int SubagentContexts::onRegistryChange(int, int, void*, void* self) {
  auto* contexts = static_cast<SubagentContexts*>(self);
  if (!contexts->reviewDue_) contexts->reviewDue_ = Snmp::Alarm({0, 0}, onReviewDue, self);
  return SNMPERR_SUCCESS;
}

void SubagentContexts::onReviewDue(unsigned int, void* self) {
  auto* contexts = static_cast<SubagentContexts*>(self);
  contexts->reviewDue_.fired();
  contexts->review();
}

void SubagentContexts::review() {
  const std::set<std::string> now = contextsOfSessions();
  for (const std::string& context : contexts_)
    if (!now.count(context)) communities_.contextDel(context);
  for (const std::string& context : now)
    if (!contexts_.count(context)) communities_.contextIs(context);
  contexts_ = now;
}
