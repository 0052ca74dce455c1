#include "platform/tarn/FibRoute.h"

#include <cstring>
#include <ostream>

namespace Tarn::Fib {

std::ostream& operator<<(std::ostream& out, FecId id) { return out << id.value(); }

std::ostream& operator<<(std::ostream& out, const Route& route) {
  return out << route.prefix << " metric " << route.metric << " preference " << route.preference << " type "
             << route.routeType << " fec " << route.fecId;
}

void RouteCodec::encodeKey(const Pelt::Prefix& prefix, RouteRecord* record) {
  record->addr = prefix.addr().networkOrder();
  record->len = prefix.len();
  std::memset(record->keyPad, 0, sizeof record->keyPad);
}

RouteRecord RouteCodec::encode(const Route& route) {
  RouteRecord r{};
  encodeKey(route.prefix, &r);
  r.metric = route.metric.value();
  r.preference = route.preference.value();
  r.routeType = static_cast<U16>(route.routeType);
  r.fecId = route.fecId.value();
  return r;
}

Pelt::Prefix RouteCodec::decodeKey(const std::byte* key) {
  RouteRecord r;
  std::memcpy(&r, key, keySize);
  return Pelt::Prefix(Pelt::IpAddr::fromNetworkOrder(r.addr), r.len > 32 ? 32 : r.len);
}

Route RouteCodec::decode(const RouteRecord& record) {
  Route route;
  route.prefix = decodeKey(reinterpret_cast<const std::byte*>(&record));
  route.metric = Routing::RouteMetric(record.metric);
  route.preference = Routing::RoutePreference(record.preference);
  route.routeType = static_cast<Routing::Fib::RouteType>(record.routeType);
  route.fecId = FecId(record.fecId);
  return route;
}

}  // namespace Tarn::Fib
