#include "platform/pelt/RouteDistinguisher.h"

#include <ostream>

#include "platform/pelt/IpAddr.h"
#include "platform/pelt/ParseText.h"

namespace Pelt {

RouteDistinguisher::RouteDistinguisher(std::string_view text) {
  auto parsed = parse(text);
  if (!parsed) cannotParse(text, "a route distinguisher");
  *this = *parsed;
}

std::optional<RouteDistinguisher> RouteDistinguisher::parse(std::string_view text) noexcept {
  auto colon = text.rfind(':');
  if (colon == std::string_view::npos) return std::nullopt;
  std::string_view admin = text.substr(0, colon);
  std::string_view assigned = text.substr(colon + 1);
  if (auto ip = IpAddr::parse(admin)) {
    auto number = parseDecimal(assigned, 0xffff);
    if (!number) return std::nullopt;
    return fromValue(U64(1) << 48 | U64(ip->hostOrder()) << 16 | *number);
  }
  auto as = parseDecimal(admin, 0xffffffff);
  if (!as) return std::nullopt;
  if (*as <= 0xffff) {
    auto number = parseDecimal(assigned, 0xffffffff);
    if (!number) return std::nullopt;
    return fromValue(*as << 32 | *number);
  }
  auto number = parseDecimal(assigned, 0xffff);
  if (!number) return std::nullopt;
  return fromValue(U64(2) << 48 | *as << 16 | *number);
}

Quor::String8 RouteDistinguisher::stringValue() const {
  switch (type()) {
    case 0:
      return Quor::format("%u:%u", unsigned(value_ >> 32 & 0xffff), unsigned(value_ & 0xffffffff));
    case 1: {
      U32 ip = static_cast<U32>(value_ >> 16);
      return Quor::format("%u.%u.%u.%u:%u", ip >> 24, ip >> 16 & 0xff, ip >> 8 & 0xff, ip & 0xff,
                          unsigned(value_ & 0xffff));
    }
    case 2:
      return Quor::format("%u:%u", unsigned(value_ >> 16 & 0xffffffff), unsigned(value_ & 0xffff));
    default:
      return Quor::format("type%u:%llu", type(), static_cast<unsigned long long>(value_ & 0xffffffffffffULL));
  }
}

std::ostream& operator<<(std::ostream& out, const RouteDistinguisher& rd) { return out << rd.stringValue(); }

}  // namespace Pelt
