#include "platform/pelt/Prefix.h"

#include <ostream>
#include <string>

#include "platform/pelt/ParseText.h"
#include "platform/quor/Exception.h"

namespace Pelt {

Prefix::Prefix(IpAddr addr, unsigned len) : addr_(addr), len_(static_cast<U8>(len)) {
  if (len > 32) Quor::throwRangeException("IPv4 prefix length " + std::to_string(len) + " > 32");
}

Prefix::Prefix(std::string_view text) {
  auto parsed = parse(text);
  if (!parsed) cannotParse(text, "an IPv4 prefix");
  *this = *parsed;
}

std::optional<Prefix> Prefix::parse(std::string_view text) noexcept {
  auto parts = splitPrefixText(text, 32);
  if (!parts) return std::nullopt;
  auto addr = IpAddr::parse(parts->addr);
  if (!addr) return std::nullopt;
  return Prefix(*addr, parts->len);
}

U32 Prefix::hash() const noexcept {
  U32 x = addr_.hostOrder() ^ len_;
  x = ~x + (x << 15);
  x ^= x >> 12;
  x *= 5;
  x ^= x >> 4;
  x *= 2057;
  x ^= x >> 16;
  return x;
}

std::ostream& operator<<(std::ostream& out, const Prefix& prefix) {
  return out << prefix.addr() << '/' << unsigned(prefix.len());
}

}  // namespace Pelt
