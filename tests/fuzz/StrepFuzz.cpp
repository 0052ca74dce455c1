// The text form of values: the first byte picks the type, the rest is the text. A text that parses
// must print as a text that parses back to the same value.
#include <optional>

#include "FuzzTargets.h"
#include "agent/IfIndexMap.h"
#include "model/ArpTableIndex.h"
#include "model/Enums.h"
#include "model/InetAddress.h"
#include "model/IntfData.h"
#include "model/IpAddressPrefixKey.h"
#include "model/IpCidrRouteTableIndex.h"
#include "platform/pelt/IntfId.h"
#include "platform/pelt/IpAddr.h"
#include "platform/pelt/IpVersion.h"
#include "platform/quor/Strep.h"
#include "stats/SwFwdStatsData.h"

namespace {

template <class T>
void readBack(const Quor::String8& text) {
  std::optional<T> value;
  try {
    value.emplace(Quor::strepToValue<T>(text));
  } catch (const Quor::RangeException&) {
    return;
  }
  const Quor::String8 printed = valueToStrep(*value);
  std::optional<T> again;
  try {
    again.emplace(Quor::strepToValue<T>(printed));
  } catch (const Quor::RangeException&) {
    Fuzz::require(false, "the printed form of a parsed value does not parse");
  }
  Fuzz::require(*again == *value, "a parsed value reads back from its printed form as another value");
}

using ReadBack = void (*)(const Quor::String8&);

constexpr ReadBack types[] = {
    readBack<IpSnmp::InetAddress>,        readBack<IpSnmp::IpAddressPrefixKey>,
    readBack<IpSnmp::IntfDataKey>,        readBack<IpSnmp::IntfData>,
    readBack<IpSnmp::ArpTableIndex>,      readBack<IpSnmp::IpCidrRouteTableIndex>,
    readBack<IpSnmp::IfIndexMap>,         readBack<Ip::SwFwdStatsData>,
    readBack<IpSnmp::AddressSource>,      readBack<IpSnmp::AddressStatus>,
    readBack<IpSnmp::AddressType>,        readBack<IpSnmp::IpRouteProtocol>,
    readBack<Pelt::IpAddr>,               readBack<Pelt::IntfId>,
    readBack<Ip::IpVersion>,
};

}  // namespace

namespace Fuzz {

int strep(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Quor::String8 text(reinterpret_cast<const char*>(data + 1), size - 1);
  types[data[0] % std::size(types)](text);
  return 0;
}

}  // namespace Fuzz
