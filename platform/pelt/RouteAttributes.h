#pragma once
// What a route carries besides its prefix and FEC: metric, administrative preference and origin.
#include <iosfwd>

#include "platform/pelt/Enumeration.h"
#include "platform/pelt/TaggedNumber.h"

namespace Routing {

class RouteMetric : public Pelt::TaggedNumber<U32, RouteMetric> {
 public:
  using TaggedNumber::TaggedNumber;
};

class RoutePreference : public Pelt::TaggedNumber<U8, RoutePreference> {
 public:
  using TaggedNumber::TaggedNumber;
};

// Decimal digits.
Quor::String8 valueToStrep(RouteMetric metric);
Quor::String8 valueToStrep(RoutePreference preference);
std::ostream& operator<<(std::ostream& out, RouteMetric metric);
std::ostream& operator<<(std::ostream& out, RoutePreference preference);

namespace Fib {

// The origin of a route. The route intake maps these by number to the MIB's protocols; 0 to 3
// are the forwarding-only kinds that never reach the route table of the MIB.
enum RouteType : S32 {
  routeTypeInvalid = 0,
  routeTypeReceive = 1,
  routeTypeReceiveBcast = 2,
  routeTypeDropped = 3,
  routeTypeStaticConfig = 4,
  routeTypeKernel = 5,
  routeTypeAggregate = 6,
  routeTypeRip = 7,
  routeTypeConnected = 8,
  routeTypeIsisLevel1 = 9,
  routeTypeIsisLevel2 = 10,
  routeTypeVrfLeak = 11,
  routeTypeOspfIntraArea = 12,
  routeTypeOspfInterArea = 13,
  routeTypeOspfExternalType1 = 14,
  routeTypeOspfExternalType2 = 15,
  routeTypeOspfNssaType1 = 16,
  routeTypeOspfNssaType2 = 17,
  routeTypeIbgp = 18,
  routeTypeEbgp = 19,
};

PELT_DECLARE_ENUM_TEXT(RouteType);
std::ostream& operator<<(std::ostream& out, RouteType type);

}  // namespace Fib
}  // namespace Routing
