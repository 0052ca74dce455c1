#pragma once
// The route tables' values: Tarn::Fib::Route under its Pelt::Prefix (IPv4) and Tarn::Fib::Route6
// under its Pelt::Ip6AddrWithMask (IPv6), naming their FEC by Tarn::Fib::FecId in the forwarding
// table of their family, and the plain records in which the table files store them (24 and 40 bytes).
#include <cstddef>
#include <iosfwd>

#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/Prefix.h"
#include "platform/pelt/RouteAttributes.h"

namespace Tarn::Fib {

class FecId : public Pelt::TaggedNumber<U64, FecId> {
 public:
  using TaggedNumber::TaggedNumber;
};
std::ostream& operator<<(std::ostream& out, FecId id);

// The default route is the absent one: the zero prefix of length 0, metric 0, preference 1, type 0,
// FEC 0.
template <class Prefix>
struct BasicRoute {
  Prefix prefix;
  Routing::RouteMetric metric;
  Routing::RoutePreference preference{1};
  Routing::Fib::RouteType routeType = Routing::Fib::routeTypeInvalid;
  FecId fecId;
  friend bool operator==(const BasicRoute&, const BasicRoute&) = default;
};
using Route = BasicRoute<Pelt::Prefix>;
using Route6 = BasicRoute<Pelt::Ip6AddrWithMask>;
std::ostream& operator<<(std::ostream& out, const Route& route);
std::ostream& operator<<(std::ostream& out, const Route6& route);

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
  static constexpr const char* statusType = "Tarn::Fib::RouteStatus";
  static constexpr U32 keySize = offsetof(RouteRecord, metric);
  static void encodeKey(const Pelt::Prefix& prefix, RouteRecord* record);
  static RouteRecord encode(const Route& route);
  static Pelt::Prefix decodeKey(const std::byte* key);
  static Route decode(const RouteRecord& record);
};

struct Route6Record {
  U8 addr[16];
  U8 len;
  U8 keyPad[3];
  U32 metric;
  U8 preference;
  U8 pad;
  U16 routeType;
  U32 pad2;
  U64 fecId;
};
static_assert(sizeof(Route6Record) == 40);

struct Route6Codec {
  using Key = Pelt::Ip6AddrWithMask;
  using Value = Route6;
  using Record = Route6Record;
  static constexpr const char* type = "Tarn::Fib::Route6";
  static constexpr const char* statusType = "Tarn::Fib::Route6Status";
  static constexpr U32 keySize = offsetof(Route6Record, metric);
  static void encodeKey(const Pelt::Ip6AddrWithMask& prefix, Route6Record* record);
  static Route6Record encode(const Route6& route);
  static Pelt::Ip6AddrWithMask decodeKey(const std::byte* key);
  static Route6 decode(const Route6Record& record);
};

}  // namespace Tarn::Fib
