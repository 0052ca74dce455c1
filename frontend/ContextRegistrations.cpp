#include "frontend/ContextRegistrations.h"

#include <cstdlib>

#include "platform/snmp/ContextTeardown.h"

namespace {

template <class Map>
const typename Map::mapped_type& listOf(const Map& map, const Quor::String8& context) {
  static const typename Map::mapped_type none;
  auto it = map.find(context);
  return it == map.end() ? none : it->second;
}

void freeColumnInfo(netsnmp_column_info* info) {
  while (info) {
    netsnmp_column_info* next = info->next;
    std::free(info);
    info = next;
  }
}

}  // namespace

ContextRegistrations::ContextRegistrations(const char* unitName, const Quor::Tracer& tracer)
    : unitName_(unitName), tracer_(tracer) {}

void ContextRegistrations::scalarIs(const Quor::String8& context, netsnmp_handler_registration* reg) {
  if (netsnmp_register_scalar(reg) == MIB_REGISTERED_OK) registrationIs(context, reg);
}

void ContextRegistrations::registrationIs(const Quor::String8& context, netsnmp_handler_registration* reg) {
  if (!context.empty()) handlerRegistrationsByContext[context].push_back(reg);
}

void ContextRegistrations::columnInfoIs(const Quor::String8& context, netsnmp_column_info* info) {
  if (!context.empty()) columnInfosByContext[context].push_back(info);
}

void ContextRegistrations::unregisterContext(const Quor::String8& context) {
  QTRACE(tracer_, 2, "Unregistering " << unitName_ << " in context \"" << context << "\"");
  if (auto it = handlerRegistrationsByContext.find(context); it != handlerRegistrationsByContext.end()) {
    const Registrations registrations = std::move(it->second);
    handlerRegistrationsByContext.erase(it);
    for (netsnmp_handler_registration* reg : registrations) Snmp::unregisterHandler(reg);
  }
  if (auto it = columnInfosByContext.find(context); it != columnInfosByContext.end()) {
    for (netsnmp_column_info* info : it->second) freeColumnInfo(info);
    columnInfosByContext.erase(it);
  }
}

const ContextRegistrations::Registrations& ContextRegistrations::handlerRegistrations(
    const Quor::String8& context) const {
  return listOf(handlerRegistrationsByContext, context);
}

const ContextRegistrations::ColumnInfos& ContextRegistrations::columnInfos(const Quor::String8& context) const {
  return listOf(columnInfosByContext, context);
}
