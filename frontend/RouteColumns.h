#pragma once
// The columns that ipCidrRouteTable and inetCidrRouteTable derive alike from a route row: the
// interface index, the protocol, the metric and the administrative preference (served as metric 2),
// and the fixed numbers for which the route store has no value (type 1, status 1, metrics 3 to 5 of
// -1).
#include "frontend/Conversions.h"
#include "frontend/IteratedTable.h"

enum class RouteColumn { ifIndex, type, proto, metric1, metric2, metric3, metric4, metric5, status };

template <class Row>
ColumnValue routeColumnValue(RouteColumn column, const Row& row, unsigned char* buffer) {
  constexpr int unknownMetric = -1;
  constexpr int size = 1024;
  switch (column) {
    case RouteColumn::ifIndex:
      return integerValue(static_cast<int>(row.ifIndex()), buffer, "S32ToAsnInteger failed for: ifIndex");
    case RouteColumn::proto:
      return {ASN_INTEGER, RouteTypeToAsnInteger(row.protocol(), buffer, size),
              "RouteTypeToAsnInteger failed for: protocol"};
    case RouteColumn::metric1:
      return {ASN_INTEGER, RouteMetricToAsnInteger(row.metric(), buffer, size),
              "RouteMetricToAsnInteger failed for: metric"};
    case RouteColumn::metric2:
      return integerValue(row.preference().value(), buffer, "S32ToAsnInteger failed for: preference");
    case RouteColumn::metric3:
    case RouteColumn::metric4:
    case RouteColumn::metric5: return integerValue(unknownMetric, buffer, "S32ToAsnInteger failed for: ");
    case RouteColumn::type:
    case RouteColumn::status: break;
  }
  return integerValue(1, buffer, "S32ToAsnInteger failed for: ");
}
