#pragma once
// The route table's values: Tarn::Fib::Route under its Pelt::Prefix, naming its FEC by
// Tarn::Fib::FecId, and the plain record in which the table file stores a route (24 bytes).
#include <cstddef>
#include <iosfwd>

#include "platform/pelt/Prefix.h"
#include "platform/pelt/RouteAttributes.h"

namespace Tarn::Fib {

class FecId : public Pelt::TaggedNumber<U64, FecId> {
 public:
  using TaggedNumber::TaggedNumber;
};
std::ostream& operator<<(std::ostream& out, FecId id);

// The default route is the absent one: 0.0.0.0/0, metric 0, preference 1, type 0, FEC 0.
struct Route {
  Pelt::Prefix prefix;
  Routing::RouteMetric metric;
  Routing::RoutePreference preference{1};
  Routing::Fib::RouteType routeType = Routing::Fib::routeTypeInvalid;
  FecId fecId;
  friend bool operator==(const Route&, const Route&) = default;
};
std::ostream& operator<<(std::ostream& out, const Route& route);

struct RouteRecord {
  U32 addr;  // network order
  U8 len;
  U8 keyPad[3];
  U32 metric;
  U8 preference;
  U8 pad;
  U16 routeType;
  U64 fecId;
};
static_assert(sizeof(RouteRecord) == 24);

struct RouteCodec {
  using Key = Pelt::Prefix;
  using Value = Route;
  using Record = RouteRecord;
  static constexpr const char* type = "Tarn::Fib::Route";
  static constexpr U32 keySize = offsetof(RouteRecord, metric);
  static void encodeKey(const Pelt::Prefix& prefix, RouteRecord* record);
  static RouteRecord encode(const Route& route);
  static Pelt::Prefix decodeKey(const std::byte* key);
  static Route decode(const RouteRecord& record);
};

}  // namespace Tarn::Fib
