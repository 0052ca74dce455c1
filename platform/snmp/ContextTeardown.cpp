#include "platform/snmp/ContextTeardown.h"

#include <dlfcn.h>

#include <string>
#include <vector>

#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"

namespace {

const Quor::Tracer tracer{"Snmp", "ContextTeardown"};

// Frees a subtree together with the lower-priority registrations stacked on the same range.
void freeSubtreeStack(netsnmp_subtree* subtree) {
  while (subtree) {
    netsnmp_subtree* below = subtree->children;
    netsnmp_subtree_free(subtree);
    subtree = below;
  }
}

bool isCodeOfThisLibrary(void (*function)()) {
  static Dl_info self = [] {
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&Snmp::unregisterHandlersOfThisLibrary), &info);
    return info;
  }();
  Dl_info info{};
  return dladdr(reinterpret_cast<void*>(function), &info) && info.dli_fbase == self.dli_fbase;
}

bool isHandledHere(const netsnmp_handler_registration* reg) {
  for (const netsnmp_mib_handler* h = reg ? reg->handler : nullptr; h; h = h->next)
    if (h->access_method && isCodeOfThisLibrary(reinterpret_cast<void (*)()>(h->access_method))) return true;
  return false;
}

// What unregister_mib_context needs to find a registration again, copied out of the agent's tree,
// whose blocks the unregistration frees.
struct RegistrationKey {
  std::string context;
  std::vector<oid> root;
  int priority;
  int rangeSubid;
  oid rangeUbound;
};

}  // namespace

void shutdown_tree_in_context(const char* context) {
  if (!context || !*context) {
    QTRACE(tracer, 0, "shutdown_tree_in_context refused for the default context");
    return;
  }
  QTRACE(tracer, 2, "shutdown_tree_in_context \"" << context << "\"");
  while (netsnmp_subtree* first = netsnmp_subtree_find_first(context)) {
    netsnmp_remove_subtree(first);
    freeSubtreeStack(first);
  }
}

void clear_cache_in_context(const char* context) {
  // The agent keeps the lookup caches of all contexts in one list and can drop only all of them;
  // the others refill on their next lookups.
  QTRACE(tracer, 2, "clear_cache_in_context \"" << (context ? context : "") << "\"");
  clear_lookup_cache();
}

namespace Snmp {

int unregisterHandler(netsnmp_handler_registration* reg) {
  if (!reg) return MIB_NO_SUCH_REGISTRATION;
  std::vector<oid> root(reg->rootoid, reg->rootoid + reg->rootoid_len);
  const std::string context = reg->contextName ? reg->contextName : "";
  return unregister_mib_context(root.data(), root.size(), reg->priority, reg->range_subid, reg->range_ubound,
                                context.c_str());
}

void unregisterHandlersOfThisLibrary() {
  std::vector<RegistrationKey> keys;
  for (subtree_context_cache* ctx = get_top_context_cache(); ctx; ctx = ctx->next)
    for (netsnmp_subtree* s = ctx->first_subtree; s; s = s->next)
      for (netsnmp_subtree* stacked = s; stacked; stacked = stacked->children) {
        const netsnmp_handler_registration* reg = stacked->reginfo;
        if (!isHandledHere(reg)) continue;
        keys.push_back({ctx->context_name ? ctx->context_name : "",
                        std::vector<oid>(reg->rootoid, reg->rootoid + reg->rootoid_len), reg->priority,
                        reg->range_subid, reg->range_ubound});
      }
  // A registration split around others appears once per slice; the first call removes all slices
  // and the others find nothing.
  for (RegistrationKey& key : keys)
    unregister_mib_context(key.root.data(), key.root.size(), key.priority, key.rangeSubid, key.rangeUbound,
                           key.context.c_str());
  QTRACE(tracer, 1, "unregistered " << keys.size() << " subtrees of the plug-in");
}

}  // namespace Snmp
