#pragma once
// IPv4 addresses, alone and with a prefix length.
//
// An IpAddr holds its 32 bits in network byte order, so its memory image is the address's octets,
// first octet first. Its order is that of the address read as a big-endian unsigned number, which
// is the order of an SNMP index of the address.
#include <bit>
#include <iosfwd>
#include <optional>
#include <string_view>

#include "platform/quor/Strep.h"

namespace Pelt {

class IpAddr {
 public:
  constexpr IpAddr() noexcept = default;
  constexpr IpAddr(U8 a, U8 b, U8 c, U8 d) noexcept
      : IpAddr(fromHostOrder(U32(a) << 24 | U32(b) << 16 | U32(c) << 8 | d)) {}
  // A dotted quad such as "10.1.2.3"; anything else raises Quor::RangeException.
  explicit IpAddr(std::string_view text);
  static std::optional<IpAddr> parse(std::string_view text) noexcept;
  static constexpr IpAddr fromHostOrder(U32 value) noexcept { return fromNetworkOrder(swapOnLittleEndian(value)); }
  static constexpr IpAddr fromNetworkOrder(U32 value) noexcept {
    IpAddr a;
    a.value_ = value;
    return a;
  }

  constexpr U32 networkOrder() const noexcept { return value_; }
  constexpr U32 hostOrder() const noexcept { return swapOnLittleEndian(value_); }
  constexpr bool isZero() const noexcept { return value_ == 0; }
  // Writes the 4 octets, first octet first.
  void copyToBuffer(U8* out) const noexcept;
  U32 hash() const noexcept;

  friend constexpr bool operator==(IpAddr a, IpAddr b) noexcept { return a.value_ == b.value_; }
  friend constexpr bool operator<(IpAddr a, IpAddr b) noexcept { return a.hostOrder() < b.hostOrder(); }

 private:
  static constexpr U32 swapOnLittleEndian(U32 v) noexcept {
    if constexpr (std::endian::native == std::endian::big) return v;
    return (v >> 24) | (v >> 8 & 0xff00u) | (v << 8 & 0xff0000u) | (v << 24);
  }
  U32 value_ = 0;
};

std::ostream& operator<<(std::ostream& out, IpAddr addr);
// The dotted quad in single quotes, and back.
Quor::String8 valueToStrep(IpAddr addr);
IpAddr sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, IpAddr*);

// An address with a prefix length of 0 to 32; the default is 0.0.0.0/0.
class IpAddrWithMask {
 public:
  constexpr IpAddrWithMask() noexcept = default;
  // A length above 32 raises Quor::RangeException.
  IpAddrWithMask(IpAddr addr, unsigned len);
  // "10.1.2.3/24"; anything else raises Quor::RangeException.
  explicit IpAddrWithMask(std::string_view text);
  static std::optional<IpAddrWithMask> parse(std::string_view text) noexcept;

  IpAddr addr() const noexcept { return addr_; }
  U8 len() const noexcept { return len_; }
  U32 hash() const noexcept;

  friend bool operator==(const IpAddrWithMask&, const IpAddrWithMask&) = default;
  friend bool operator<(const IpAddrWithMask& a, const IpAddrWithMask& b) noexcept {
    return a.addr_ == b.addr_ ? a.len_ < b.len_ : a.addr_ < b.addr_;
  }

 private:
  IpAddr addr_;
  U8 len_ = 0;
};

std::ostream& operator<<(std::ostream& out, const IpAddrWithMask& addr);

}  // namespace Pelt
