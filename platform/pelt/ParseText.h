#pragma once
// Helpers of the platform's value parsers (not part of any value's interface).
#include <optional>
#include <string>
#include <string_view>

namespace Pelt {

// An address text and a prefix length, split at the slash.
struct PrefixText {
  std::string_view addr;
  unsigned len;
};

// Splits "<address>/<length>"; the length must be decimal and at most `maxLen`.
std::optional<PrefixText> splitPrefixText(std::string_view text, unsigned maxLen) noexcept;

// A decimal number of at most `max`, the whole text and nothing else.
std::optional<unsigned long long> parseDecimal(std::string_view text, unsigned long long max) noexcept;

// Raises Quor::RangeException "'<text>' is not <what>".
[[noreturn]] void cannotParse(std::string_view text, const char* what);

}  // namespace Pelt
