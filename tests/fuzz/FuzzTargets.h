#pragma once
// The entry functions of the fuzz targets. Each feeds arbitrary bytes to one family of parsers and
// returns normally whatever the bytes are: a parser's documented refusal is caught inside the entry,
// while a crash, a sanitizer report, any other exception or a broken property is a finding. libFuzzer
// reaches them through FuzzMain.cpp; the corpus replay test calls them directly with every kept input.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>

#include "tests/support/TestSupport.h"

namespace Fuzz {

// The text form of values (keys, records, enumerations, platform values), read back after printing.
int strep(const std::uint8_t* data, std::size_t size);
// The kernel counter files /proc/net/snmp with /proc/net/netstat, or /proc/net/snmp6.
int procNet(const std::uint8_t* data, std::size_t size);
// The YAML scenario of the scenario source.
int scenario(const std::uint8_t* data, std::size_t size);
// A shared-memory table file of any of the four record types, read whole through its codec.
int tableFile(const std::uint8_t* data, std::size_t size);

// A directory of this process for the files that a target's parser reads, made at the first call
// and removed at exit.
inline std::filesystem::path scratchDirectory() {
  static const TestSupport::TempDir dir;
  return dir.path();
}

// What a parser did that it must never do with any input.
class PropertyViolation : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

// Raises PropertyViolation(`what`) unless `holds`.
inline void require(bool holds, const char* what) {
  if (!holds) throw PropertyViolation(what);
}

// Reads the input front to back: the fields of an input's own framing, zero once it is used up.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  std::uint8_t byte() { return at_ < size_ ? data_[at_++] : 0; }
  std::uint32_t u32() {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value |= std::uint32_t(byte()) << (8 * i);
    return value;
  }
  // The next `n` bytes, or as many as are left.
  const std::uint8_t* take(std::size_t n, std::size_t* taken) {
    const std::uint8_t* from = data_ + at_;
    *taken = n < size_ - at_ ? n : size_ - at_;
    at_ += *taken;
    return from;
  }
  std::size_t left() const noexcept { return size_ - at_; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

}  // namespace Fuzz
