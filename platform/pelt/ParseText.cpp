#include "platform/pelt/ParseText.h"

#include <charconv>

#include "platform/quor/Exception.h"

namespace Pelt {

std::optional<PrefixText> splitPrefixText(std::string_view text, unsigned maxLen) noexcept {
  auto slash = text.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  auto len = parseDecimal(text.substr(slash + 1), maxLen);
  if (!len) return std::nullopt;
  return PrefixText{text.substr(0, slash), static_cast<unsigned>(*len)};
}

std::optional<unsigned long long> parseDecimal(std::string_view text, unsigned long long max) noexcept {
  unsigned long long value = 0;
  const char* end = text.data() + text.size();
  auto [stop, ec] = std::from_chars(text.data(), end, value);
  if (text.empty() || ec != std::errc() || stop != end || value > max) return std::nullopt;
  return value;
}

void cannotParse(std::string_view text, const char* what) {
  Quor::throwRangeException("'" + std::string(text) + "' is not " + what);
}

}  // namespace Pelt
