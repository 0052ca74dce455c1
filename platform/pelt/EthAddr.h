#pragma once
// A MAC address as three 16-bit words, the first word holding the first two octets.
#include <iosfwd>
#include <optional>
#include <string_view>

#include "platform/quor/Types.h"

namespace Pelt {

class EthAddr {
 public:
  constexpr EthAddr() noexcept = default;
  constexpr EthAddr(U16 w0, U16 w1, U16 w2) noexcept : words_{w0, w1, w2} {}
  // "00:1c:73:00:00:01"; anything else raises Quor::RangeException.
  explicit EthAddr(std::string_view text);
  static std::optional<EthAddr> parse(std::string_view text) noexcept;

  U16 word(unsigned i) const noexcept { return words_[i]; }
  // Writes the 6 octets in wire order.
  void copyToBuffer(U8* out) const noexcept;
  bool isZero() const noexcept { return (words_[0] | words_[1] | words_[2]) == 0; }

  friend bool operator==(const EthAddr&, const EthAddr&) = default;
  friend bool operator<(const EthAddr& a, const EthAddr& b) noexcept {
    for (unsigned i = 0; i < 3; ++i)
      if (a.words_[i] != b.words_[i]) return a.words_[i] < b.words_[i];
    return false;
  }

 private:
  U16 words_[3] = {0, 0, 0};
};

std::ostream& operator<<(std::ostream& out, const EthAddr& addr);

}  // namespace Pelt
