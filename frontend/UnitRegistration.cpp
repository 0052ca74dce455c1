#include "frontend/UnitRegistration.h"

#include <cstring>

namespace {

// Below net-snmp's default of 127: a lower number takes precedence, so these answer instead of the
// agent's own objects of the same names.
constexpr int scalarPriority = 64;

}  // namespace

void debugUnitInit(const char* unit, const char* function, const char* file, int line, const Quor::String8& context) {
  if (!snmp_get_do_debugging()) return;
  DEBUGMSGTL(("trace", "%s(): %s, %d:\n", function, file, line));
  DEBUGMSGTL((unit, "Initializing in context \"%s\"\n", context.str().c_str()));
}

std::string oidText(std::span<const oid> name) {
  char text[200];
  snprint_objid(text, sizeof text, name.data(), name.size());
  return text;
}

Snmp::HandlerRegistrationPtr newScalarRegistration(const char* namePrefix, Netsnmp_Node_Handler* handler,
                                                   std::span<const oid> name, int modes,
                                                   const Quor::String8& context) {
  const std::string registrationName = namePrefix + context.str();
  Snmp::HandlerRegistrationPtr reg(
      netsnmp_create_handler_registration(registrationName.c_str(), handler, name.data(), name.size(), modes));
  reg->priority = scalarPriority;
  if (!context.empty()) reg->contextName = strdup(context.str().c_str());
  return reg;
}
