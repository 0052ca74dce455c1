#include "platform/pelt/RouteAttributes.h"

#include <ostream>

#include "platform/pelt/EnumText.h"
#include "platform/quor/Strep.h"

namespace Routing {

Quor::String8 valueToStrep(RouteMetric metric) { return Quor::format("%u", metric.value()); }

Quor::String8 valueToStrep(RoutePreference preference) { return Quor::format("%u", unsigned(preference.value())); }

std::ostream& operator<<(std::ostream& out, RouteMetric metric) { return out << metric.value(); }

std::ostream& operator<<(std::ostream& out, RoutePreference preference) { return out << unsigned(preference.value()); }

namespace Fib {

namespace {

constexpr Pelt::Enumerator<RouteType> names[] = {
    {routeTypeInvalid, "routeTypeInvalid"},
    {routeTypeReceive, "routeTypeReceive"},
    {routeTypeReceiveBcast, "routeTypeReceiveBcast"},
    {routeTypeDropped, "routeTypeDropped"},
    {routeTypeStaticConfig, "routeTypeStaticConfig"},
    {routeTypeKernel, "routeTypeKernel"},
    {routeTypeAggregate, "routeTypeAggregate"},
    {routeTypeRip, "routeTypeRip"},
    {routeTypeConnected, "routeTypeConnected"},
    {routeTypeIsisLevel1, "routeTypeIsisLevel1"},
    {routeTypeIsisLevel2, "routeTypeIsisLevel2"},
    {routeTypeVrfLeak, "routeTypeVrfLeak"},
    {routeTypeOspfIntraArea, "routeTypeOspfIntraArea"},
    {routeTypeOspfInterArea, "routeTypeOspfInterArea"},
    {routeTypeOspfExternalType1, "routeTypeOspfExternalType1"},
    {routeTypeOspfExternalType2, "routeTypeOspfExternalType2"},
    {routeTypeOspfNssaType1, "routeTypeOspfNssaType1"},
    {routeTypeOspfNssaType2, "routeTypeOspfNssaType2"},
    {routeTypeIbgp, "routeTypeIbgp"},
    {routeTypeEbgp, "routeTypeEbgp"},
};

}  // namespace

PELT_DEFINE_ENUM_TEXT(RouteType, names)

std::ostream& operator<<(std::ostream& out, RouteType type) { return out << stringValue(type); }

}  // namespace Fib
}  // namespace Routing
