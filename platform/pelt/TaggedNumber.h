#pragma once
// A number of one kind (a metric, an id) that never mixes with numbers of another: made only
// explicitly, read by value(), compared and hashed among its kind. A kind derives from
// TaggedNumber<T, itself> and inherits the constructors.
#include <compare>

#include "platform/quor/String.h"

namespace Pelt {

template <class T, class Kind>
class TaggedNumber {
 public:
  constexpr TaggedNumber() noexcept = default;
  constexpr explicit TaggedNumber(T value) noexcept : value_(value) {}
  constexpr T value() const noexcept { return value_; }
  U32 hash() const noexcept { return static_cast<U32>((U64(value_) ^ U64(value_) >> 32) * 2654435761u); }
  friend constexpr auto operator<=>(const TaggedNumber&, const TaggedNumber&) = default;

 private:
  T value_ = 0;
};

}  // namespace Pelt
