#include "platform/pelt/EthAddr.h"

#include <charconv>
#include <cstdio>
#include <ostream>

#include "platform/pelt/ParseText.h"

namespace Pelt {

EthAddr::EthAddr(std::string_view text) {
  auto parsed = parse(text);
  if (!parsed) cannotParse(text, "a MAC address");
  *this = *parsed;
}

std::optional<EthAddr> EthAddr::parse(std::string_view text) noexcept {
  // Six pairs of hex digits separated by colons: exactly 17 characters.
  if (text.size() != 17) return std::nullopt;
  U8 octets[6];
  for (unsigned i = 0; i < 6; ++i) {
    const char* first = text.data() + 3 * i;
    if (i < 5 && first[2] != ':') return std::nullopt;
    auto [end, ec] = std::from_chars(first, first + 2, octets[i], 16);
    if (ec != std::errc() || end != first + 2) return std::nullopt;
  }
  return EthAddr(static_cast<U16>(octets[0] << 8 | octets[1]), static_cast<U16>(octets[2] << 8 | octets[3]),
                 static_cast<U16>(octets[4] << 8 | octets[5]));
}

void EthAddr::copyToBuffer(U8* out) const noexcept {
  for (unsigned i = 0; i < 3; ++i) {
    out[2 * i] = static_cast<U8>(words_[i] >> 8);
    out[2 * i + 1] = static_cast<U8>(words_[i]);
  }
}

std::ostream& operator<<(std::ostream& out, const EthAddr& addr) {
  U8 octets[6];
  addr.copyToBuffer(octets);
  char text[18];
  std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", octets[0], octets[1], octets[2], octets[3],
                octets[4], octets[5]);
  return out << text;
}

}  // namespace Pelt
