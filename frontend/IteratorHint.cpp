#include "frontend/IteratorHint.h"

#include <utility>

namespace {

constexpr const char* hintHandlerName = "ipsnmp_iterator_hint";

// The hint of the request that the iterator helper is working on, until a get_first_data_point
// takes it; empty between requests.
IteratorHint pendingHint;
bool hintsEnabled = true;

int hintHandler(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  IteratorHint hint;
  if (hintsEnabled && requests && !requests->next) {
    hint.index = netsnmp_extract_table_info(requests);
    hint.exact = reqinfo->mode == MODE_GET || reqinfo->mode == MODE_SET_RESERVE1;
  }
  const IteratorHint outer = std::exchange(pendingHint, hint);
  const int result = netsnmp_call_next_handler(handler, reginfo, reqinfo, requests);
  pendingHint = outer;
  return result;
}

}  // namespace

bool injectIteratorHint(netsnmp_handler_registration* reg) {
  netsnmp_mib_handler* handler = netsnmp_create_handler(hintHandlerName, hintHandler);
  if (!handler) return false;
  if (netsnmp_inject_handler_before(reg, handler, TABLE_ITERATOR_NAME) == SNMPERR_SUCCESS) return true;
  netsnmp_handler_free(handler);
  return false;
}

IteratorHint takeIteratorHint(void* helperHint) {
  IteratorHint hint = std::exchange(pendingHint, IteratorHint{});
  if (!hintsEnabled) return {};
  if (helperHint) hint.index = static_cast<const netsnmp_table_request_info*>(helperHint);
  return hint;
}

void iteratorHintsEnabledIs(bool enabled) { hintsEnabled = enabled; }

bool iteratorHintsEnabled() { return hintsEnabled; }
