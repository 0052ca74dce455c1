#include "platform/snmp/HandlerRegistration.h"

#include <vector>

namespace Snmp {

namespace {

// Built on first use, so that the units' static objects may enrol in any order of initialisation.
std::vector<HandlerRegistration*>& enrolled() {
  static std::vector<HandlerRegistration*> units;
  return units;
}

}  // namespace

AutoRegistree::AutoRegistree(HandlerRegistration* unit) : unit_(unit) { enrolled().push_back(unit); }

AutoRegistree::~AutoRegistree() { std::erase(enrolled(), unit_); }

void registerAllInContext(const Quor::String8& context) {
  for (HandlerRegistration* unit : enrolled()) unit->registerInContext(context);
}

std::size_t enrolledUnits() { return enrolled().size(); }

}  // namespace Snmp
