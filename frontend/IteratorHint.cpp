#include "frontend/IteratorHint.h"

#include <utility>

namespace {

constexpr const char* hintHandlerName = "ipsnmp_iterator_hint";

// The hint of the request that the iterator helper is working on, until a get_first_data_point
// takes it; null between requests.
netsnmp_table_request_info* pendingHint = nullptr;
bool hintsEnabled = true;

int hintHandler(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  netsnmp_table_request_info* hint =
      hintsEnabled && requests && !requests->next ? netsnmp_extract_table_info(requests) : nullptr;
  netsnmp_table_request_info* const outer = std::exchange(pendingHint, hint);
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

void deliverIteratorHint(void** loopContext) {
  netsnmp_table_request_info* const hint = std::exchange(pendingHint, nullptr);
  if (!hintsEnabled) *loopContext = nullptr;
  else if (!*loopContext) *loopContext = hint;
}

void iteratorHintsEnabledIs(bool enabled) { hintsEnabled = enabled; }
