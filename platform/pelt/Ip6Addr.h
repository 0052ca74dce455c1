#pragma once
// IPv6 addresses, alone and with a prefix length. The 16 bytes are held in network order, so the
// order of two addresses is that of their bytes, first byte first.
#include <array>
#include <iosfwd>
#include <optional>
#include <string_view>

#include "platform/quor/String.h"

namespace Pelt {

class Ip6Addr {
 public:
  constexpr Ip6Addr() noexcept = default;
  // Four 32-bit words, most significant first: fe80::1 is (0xfe800000, 0, 0, 1).
  Ip6Addr(U32 w0, U32 w1, U32 w2, U32 w3) noexcept;
  // The text form of RFC 4291, such as "2001:db8::1"; anything else raises Quor::RangeException.
  explicit Ip6Addr(std::string_view text);
  static std::optional<Ip6Addr> parse(std::string_view text) noexcept;
  static Ip6Addr fromBytes(const U8* bytes) noexcept;

  // Writes the 16 bytes in network order.
  void copyToBuffer(U8* out) const noexcept;
  const std::array<U8, 16>& bytes() const noexcept { return bytes_; }
  // fe80::/10.
  bool isLinkLocal() const noexcept { return bytes_[0] == 0xfe && (bytes_[1] & 0xc0) == 0x80; }
  bool isZero() const noexcept;
  U32 hash() const noexcept;

  friend bool operator==(const Ip6Addr&, const Ip6Addr&) = default;
  friend bool operator<(const Ip6Addr& a, const Ip6Addr& b) noexcept { return a.bytes_ < b.bytes_; }

 private:
  std::array<U8, 16> bytes_{};
};

std::ostream& operator<<(std::ostream& out, const Ip6Addr& addr);

// An address with a prefix length of 0 to 128; the default is ::/0.
class Ip6AddrWithMask {
 public:
  Ip6AddrWithMask() noexcept = default;
  // A length above 128 raises Quor::RangeException.
  Ip6AddrWithMask(const Ip6Addr& addr, unsigned len);
  // "2001:db8::1/64"; anything else raises Quor::RangeException.
  explicit Ip6AddrWithMask(std::string_view text);
  static std::optional<Ip6AddrWithMask> parse(std::string_view text) noexcept;

  const Ip6Addr& addr() const noexcept { return addr_; }
  U8 len() const noexcept { return len_; }
  // The same length with the host bits of the address zero.
  Ip6AddrWithMask subnet() const noexcept;
  U32 hash() const noexcept;

  friend bool operator==(const Ip6AddrWithMask&, const Ip6AddrWithMask&) = default;
  // Address first, then the shorter length.
  friend bool operator<(const Ip6AddrWithMask& a, const Ip6AddrWithMask& b) noexcept {
    return a.addr_ == b.addr_ ? a.len_ < b.len_ : a.addr_ < b.addr_;
  }

 private:
  Ip6Addr addr_;
  U8 len_ = 0;
};

std::ostream& operator<<(std::ostream& out, const Ip6AddrWithMask& addr);

}  // namespace Pelt
