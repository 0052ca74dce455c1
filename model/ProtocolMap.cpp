#include "model/ProtocolMap.h"

#include <ostream>

namespace IpSnmp {

ProtocolMap protoMap;

IpRouteProtocol ProtocolMap::protocol(Routing::Fib::RouteType type) const {
  auto it = protocol_.find(type);
  return it == protocol_.end() || it->second == 0 ? ipRouteProtocolOther : it->second;
}

Quor::String8 valueToStrep(const ProtocolMap&) { return Quor::String8("None"); }

std::ostream& operator<<(std::ostream& out, const ProtocolMap& map) { return out << valueToStrep(map); }

}  // namespace IpSnmp
