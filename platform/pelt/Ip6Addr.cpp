#include "platform/pelt/Ip6Addr.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstring>
#include <ostream>

#include "platform/pelt/ParseText.h"
#include "platform/quor/Exception.h"

namespace Pelt {

Ip6Addr::Ip6Addr(U32 w0, U32 w1, U32 w2, U32 w3) noexcept {
  const U32 words[4] = {w0, w1, w2, w3};
  for (std::size_t i = 0; i < 16; ++i) bytes_[i] = static_cast<U8>(words[i / 4] >> (24 - 8 * (i % 4)));
}

Ip6Addr::Ip6Addr(std::string_view text) {
  auto parsed = parse(text);
  if (!parsed) cannotParse(text, "an IPv6 address");
  *this = *parsed;
}

std::optional<Ip6Addr> Ip6Addr::parse(std::string_view text) noexcept {
  char buffer[INET6_ADDRSTRLEN];
  if (text.size() >= sizeof buffer) return std::nullopt;
  text.copy(buffer, text.size());
  buffer[text.size()] = '\0';
  in6_addr addr;
  if (::inet_pton(AF_INET6, buffer, &addr) != 1) return std::nullopt;
  return fromBytes(addr.s6_addr);
}

Ip6Addr Ip6Addr::fromBytes(const U8* bytes) noexcept {
  Ip6Addr a;
  std::memcpy(a.bytes_.data(), bytes, a.bytes_.size());
  return a;
}

void Ip6Addr::copyToBuffer(U8* out) const noexcept { std::memcpy(out, bytes_.data(), bytes_.size()); }

bool Ip6Addr::isZero() const noexcept {
  return std::all_of(bytes_.begin(), bytes_.end(), [](U8 b) { return b == 0; });
}

U32 Ip6Addr::hash() const noexcept { return Quor::StringN<unsigned char>::hash(bytes_.data(), bytes_.size()); }

std::ostream& operator<<(std::ostream& out, const Ip6Addr& addr) {
  char text[INET6_ADDRSTRLEN];
  return out << ::inet_ntop(AF_INET6, addr.bytes().data(), text, sizeof text);
}

Ip6AddrWithMask::Ip6AddrWithMask(const Ip6Addr& addr, unsigned len) : addr_(addr), len_(static_cast<U8>(len)) {
  if (len > 128) Quor::throwRangeException("IPv6 prefix length " + std::to_string(len) + " > 128");
}

Ip6AddrWithMask::Ip6AddrWithMask(std::string_view text) {
  auto parsed = parse(text);
  if (!parsed) cannotParse(text, "an IPv6 address with prefix length");
  *this = *parsed;
}

std::optional<Ip6AddrWithMask> Ip6AddrWithMask::parse(std::string_view text) noexcept {
  auto parts = splitPrefixText(text, 128);
  if (!parts) return std::nullopt;
  auto addr = Ip6Addr::parse(parts->addr);
  if (!addr) return std::nullopt;
  return Ip6AddrWithMask(*addr, parts->len);
}

Ip6AddrWithMask Ip6AddrWithMask::subnet() const noexcept {
  U8 bytes[16];
  addr_.copyToBuffer(bytes);
  for (unsigned i = 0; i < 16; ++i) {
    unsigned kept = len_ > 8 * i ? std::min(8u, len_ - 8 * i) : 0;
    bytes[i] &= static_cast<U8>(0xff00u >> kept);
  }
  return Ip6AddrWithMask(Ip6Addr::fromBytes(bytes), len_);
}

U32 Ip6AddrWithMask::hash() const noexcept { return addr_.hash() ^ len_; }

std::ostream& operator<<(std::ostream& out, const Ip6AddrWithMask& addr) {
  return out << addr.addr() << '/' << unsigned(addr.len());
}

}  // namespace Pelt
