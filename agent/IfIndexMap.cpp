#include "agent/IfIndexMap.h"

#include <ostream>

namespace IpSnmp {

IfIndexMap::IfIndexMap(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  Quor::needString(position, end, " None");
}

S32 IfIndexMap::ifIndex(Pelt::IntfId intfId) const {
  auto it = ifIndex_.find(intfId);
  return it == ifIndex_.end() ? 0 : it->second;
}

Quor::String8 valueToStrep(const IfIndexMap&) { return Quor::String8("None"); }

std::ostream& operator<<(std::ostream& out, const IfIndexMap& map) { return out << valueToStrep(map); }

}  // namespace IpSnmp
