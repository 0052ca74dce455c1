#include "platform/tarn/FibRoute.h"

#include <cstring>
#include <ostream>

namespace Tarn::Fib {

std::ostream& operator<<(std::ostream& out, FecId id) { return out << id.value(); }

namespace {

template <class Route>
std::ostream& printRoute(std::ostream& out, const Route& route) {
  return out << route.prefix << " metric " << route.metric << " preference " << route.preference << " type "
             << route.routeType << " fec " << route.fecId;
}

// The fields after the key, alike in both records.
template <class Record, class Route>
void encodeAttributes(const Route& route, Record& r) {
  r.metric = route.metric.value();
  r.preference = route.preference.value();
  r.routeType = static_cast<U16>(route.routeType);
  r.fecId = route.fecId.value();
}

template <class Record, class Route>
void decodeAttributes(const Record& record, Route& route) {
  route.metric = Routing::RouteMetric(record.metric);
  route.preference = Routing::RoutePreference(record.preference);
  route.routeType = static_cast<Routing::Fib::RouteType>(record.routeType);
  route.fecId = FecId(record.fecId);
}

template <class Codec>
typename Codec::Record encodeRoute(const typename Codec::Value& route) {
  typename Codec::Record r{};
  Codec::encodeKey(route.prefix, &r);
  encodeAttributes(route, r);
  return r;
}

template <class Codec>
typename Codec::Value decodeRoute(const typename Codec::Record& record) {
  typename Codec::Value route;
  route.prefix = Codec::decodeKey(reinterpret_cast<const std::byte*>(&record));
  decodeAttributes(record, route);
  return route;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Route& route) { return printRoute(out, route); }
std::ostream& operator<<(std::ostream& out, const Route6& route) { return printRoute(out, route); }

void RouteCodec::encodeKey(const Pelt::Prefix& prefix, RouteRecord* record) {
  record->addr = prefix.addr().networkOrder();
  record->len = prefix.len();
  std::memset(record->keyPad, 0, sizeof record->keyPad);
}

RouteRecord RouteCodec::encode(const Route& route) { return encodeRoute<RouteCodec>(route); }

Pelt::Prefix RouteCodec::decodeKey(const std::byte* key) {
  RouteRecord r;
  std::memcpy(&r, key, keySize);
  return Pelt::Prefix(Pelt::IpAddr::fromNetworkOrder(r.addr), r.len > 32 ? 32 : r.len);
}

Route RouteCodec::decode(const RouteRecord& record) { return decodeRoute<RouteCodec>(record); }

void Route6Codec::encodeKey(const Pelt::Ip6AddrWithMask& prefix, Route6Record* record) {
  prefix.addr().copyToBuffer(record->addr);
  record->len = prefix.len();
  std::memset(record->keyPad, 0, sizeof record->keyPad);
}

Route6Record Route6Codec::encode(const Route6& route) { return encodeRoute<Route6Codec>(route); }

Pelt::Ip6AddrWithMask Route6Codec::decodeKey(const std::byte* key) {
  Route6Record r;
  std::memcpy(&r, key, keySize);
  return Pelt::Ip6AddrWithMask(Pelt::Ip6Addr::fromBytes(r.addr), r.len > 128 ? 128 : r.len);
}

Route6 Route6Codec::decode(const Route6Record& record) { return decodeRoute<Route6Codec>(record); }

}  // namespace Tarn::Fib
