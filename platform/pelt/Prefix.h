#pragma once
// An IPv4 prefix, the key of the route table: an address and a length of 0 to 32, kept as given.
#include <iosfwd>
#include <optional>
#include <string_view>

#include "platform/pelt/IpAddr.h"

namespace Pelt {

class Prefix {
 public:
  constexpr Prefix() noexcept = default;
  // A length above 32 raises Quor::RangeException.
  Prefix(IpAddr addr, unsigned len);
  // "10.0.0.0/8"; anything else raises Quor::RangeException.
  explicit Prefix(std::string_view text);
  static std::optional<Prefix> parse(std::string_view text) noexcept;

  IpAddr addr() const noexcept { return addr_; }
  U8 len() const noexcept { return len_; }
  // An integer mix of the host-order address and the length; the collections bit-reverse it.
  U32 hash() const noexcept;

  friend bool operator==(const Prefix&, const Prefix&) = default;
  // Address as a number first, then the shorter length.
  friend bool operator<(const Prefix& a, const Prefix& b) noexcept {
    return a.addr_ == b.addr_ ? a.len_ < b.len_ : a.addr_ < b.addr_;
  }

 private:
  IpAddr addr_;
  U8 len_ = 0;
};

std::ostream& operator<<(std::ostream& out, const Prefix& prefix);

}  // namespace Pelt
