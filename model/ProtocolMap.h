#pragma once
// The translation of route types to the MIB's route protocols, filled by the route machine and read
// by the conversion of ipCidrRouteProto. One process-wide value, protoMap, serves every VRF.
#include <iosfwd>
#include <unordered_map>

#include "model/Enums.h"
#include "platform/pelt/RouteAttributes.h"

namespace IpSnmp {

class ProtocolMap {
 public:
  // The protocol of `type`; a type without one gives ipRouteProtocolOther.
  IpRouteProtocol protocol(Routing::Fib::RouteType type) const;
  void protocolIs(Routing::Fib::RouteType type, IpRouteProtocol protocol) { protocol_[type] = protocol; }
  std::size_t protocols() const noexcept { return protocol_.size(); }
  friend bool operator==(const ProtocolMap&, const ProtocolMap&) = default;

 private:
  std::unordered_map<Routing::Fib::RouteType, IpRouteProtocol> protocol_;
};

// A map has no text form of its own.
Quor::String8 valueToStrep(const ProtocolMap& map);
std::ostream& operator<<(std::ostream& out, const ProtocolMap& map);

extern ProtocolMap protoMap;

}  // namespace IpSnmp
