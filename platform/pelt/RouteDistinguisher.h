#pragma once
// The route distinguisher of a VRF, the eight bytes of RFC 4364: a 16-bit type, then an
// administrator and an assigned number whose widths depend on the type.
//   type 0: 2-byte AS number and 4-byte number, written "65000:100";
//   type 1: IPv4 address and 2-byte number, written "10.0.0.1:100";
//   type 2: 4-byte AS number and 2-byte number, written "4200000000:100".
// The default value is type 0 with both parts zero, "0:0".
#include <iosfwd>
#include <optional>
#include <string_view>

#include "platform/quor/String.h"

namespace Pelt {

class RouteDistinguisher {
 public:
  constexpr RouteDistinguisher() noexcept = default;
  // The eight bytes read as one big-endian number.
  static constexpr RouteDistinguisher fromValue(U64 value) noexcept {
    RouteDistinguisher rd;
    rd.value_ = value;
    return rd;
  }
  // One of the text forms above; anything else raises Quor::RangeException. A type 0 form is
  // taken when the AS number fits 16 bits, else type 2.
  explicit RouteDistinguisher(std::string_view text);
  static std::optional<RouteDistinguisher> parse(std::string_view text) noexcept;

  U64 value() const noexcept { return value_; }
  U16 type() const noexcept { return static_cast<U16>(value_ >> 48); }
  Quor::String8 stringValue() const;

  friend bool operator==(const RouteDistinguisher&, const RouteDistinguisher&) = default;

 private:
  U64 value_ = 0;
};

std::ostream& operator<<(std::ostream& out, const RouteDistinguisher& rd);

}  // namespace Pelt
