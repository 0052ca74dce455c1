#pragma once
// Immutable byte strings that share one reference-counted buffer, so that a copy costs one pointer.
//
// String8 (text), Name (entity names) and Snmp::String (SNMP octet strings) are thin value types
// over the same buffer and convert into each other without copying bytes.
#include <atomic>
#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "platform/quor/Types.h"

namespace Quor {

template <class C>
class StringN;

// The shared buffer: a reference count, a size and the bytes behind them in one allocation.
template <>
class StringN<unsigned char> {
 public:
  static StringN* create(const void* bytes, std::size_t size);
  void newRef() const noexcept { refs_.fetch_add(1, std::memory_order_relaxed); }
  void deleteRef() const noexcept;
  std::size_t size() const noexcept { return size_; }
  const unsigned char* data() const noexcept { return reinterpret_cast<const unsigned char*>(this + 1); }
  static U32 hash(const unsigned char* bytes, std::size_t size) noexcept;

 private:
  explicit StringN(std::size_t size) : size_(size) {}
  mutable std::atomic<U32> refs_{1};
  std::size_t size_;
};

class ByteString {
 public:
  ByteString() noexcept = default;
  ByteString(const char* text);
  ByteString(std::string_view text);
  ByteString(const std::string& text) : ByteString(std::string_view(text)) {}
  ByteString(const void* bytes, std::size_t size);
  ByteString(const ByteString& o) noexcept : buf_(o.buf_) { if (buf_) buf_->newRef(); }
  ByteString(ByteString&& o) noexcept : buf_(o.buf_) { o.buf_ = nullptr; }
  ByteString& operator=(ByteString o) noexcept {
    std::swap(buf_, o.buf_);
    return *this;
  }
  ~ByteString() { if (buf_) buf_->deleteRef(); }

  std::size_t size() const noexcept { return buf_ ? buf_->size() : 0; }
  bool empty() const noexcept { return size() == 0; }
  const unsigned char* bytes() const noexcept;
  const char* data() const noexcept { return reinterpret_cast<const char*>(bytes()); }
  std::string_view view() const noexcept { return {data(), size()}; }
  std::string str() const { return std::string(view()); }
  U32 hash() const noexcept { return StringN<unsigned char>::hash(bytes(), size()); }
  // Identity of the shared buffer: two values share it only if one was copied from the other.
  const StringN<unsigned char>* buffer() const noexcept { return buf_; }

  friend bool operator==(const ByteString& a, const ByteString& b) noexcept;
  // Shorter strings first, then bytes as unsigned numbers: the order of an SNMP octet-string index.
  friend bool operator<(const ByteString& a, const ByteString& b) noexcept;
  friend bool operator==(const ByteString& a, const char* b) noexcept { return a.view() == std::string_view(b); }

 private:
  StringN<unsigned char>* buf_ = nullptr;
};

std::ostream& operator<<(std::ostream& out, const ByteString& s);

class String8 : public ByteString {
 public:
  using ByteString::ByteString;
  String8() noexcept = default;
  String8(const ByteString& s) noexcept : ByteString(s) {}
};

class Name : public ByteString {
 public:
  using ByteString::ByteString;
  Name() noexcept = default;
  Name(const ByteString& s) noexcept : ByteString(s) {}
};

String8 format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

}  // namespace Quor

namespace Snmp {

class String : public Quor::ByteString {
 public:
  using ByteString::ByteString;
  String() noexcept = default;
  String(const ByteString& s) noexcept : ByteString(s) {}
};

}  // namespace Snmp

template <>
struct std::hash<Quor::String8> {
  std::size_t operator()(const Quor::String8& s) const noexcept { return s.hash(); }
};
