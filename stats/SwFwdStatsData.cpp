#include "stats/SwFwdStatsData.h"

#include <algorithm>
#include <ostream>
#include <string_view>

namespace Ip {

namespace {

#define IP_SW_FWD_STATS_DATA_NAME(attr, Attr) #attr,
constexpr std::string_view attributeNames[] = {IP_SW_FWD_STATS_ATTRIBUTES(IP_SW_FWD_STATS_DATA_NAME)};
#undef IP_SW_FWD_STATS_DATA_NAME

}  // namespace

SwFwdStatsData::SwFwdStatsData(Quor::StrepIterator& position, const Quor::StrepIterator& end) {
  static_assert(std::size(attributeNames) == attributeCount);
  Quor::readValueForm(position, end, "'Ip::SwFwdStatsData'", "SwFwdStatsData", [&](const Quor::String8& name) {
    const auto* found = std::find(std::begin(attributeNames), std::end(attributeNames), name.view());
    if (found == std::end(attributeNames)) return false;
    Quor::deserializeAttr(position, end, *found, values_[found - std::begin(attributeNames)]);
    return true;
  });
}

Quor::String8 valueToStrep(const SwFwdStatsData& data) {
#define IP_SW_FWD_STATS_DATA_STREP(attr, Attr) {#attr, Quor::valueToStrep(data.attr())},
  return Quor::valueFormStrep("Ip::SwFwdStatsData", {IP_SW_FWD_STATS_ATTRIBUTES(IP_SW_FWD_STATS_DATA_STREP)});
#undef IP_SW_FWD_STATS_DATA_STREP
}

std::ostream& operator<<(std::ostream& out, const SwFwdStatsData& data) { return out << valueToStrep(data); }

}  // namespace Ip
