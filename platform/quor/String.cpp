#include "platform/quor/String.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <ostream>
#include <vector>

namespace Quor {

StringN<unsigned char>* StringN<unsigned char>::create(const void* bytes, std::size_t size) {
  void* mem = ::operator new(sizeof(StringN) + size);
  auto* s = new (mem) StringN(size);
  if (size) std::memcpy(const_cast<unsigned char*>(s->data()), bytes, size);
  return s;
}

void StringN<unsigned char>::deleteRef() const noexcept {
  if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    this->~StringN();
    ::operator delete(const_cast<StringN*>(this));
  }
}

U32 StringN<unsigned char>::hash(const unsigned char* bytes, std::size_t size) noexcept {
  U32 h = 2166136261u;  // FNV-1a
  for (std::size_t i = 0; i < size; ++i) h = (h ^ bytes[i]) * 16777619u;
  return h;
}

ByteString::ByteString(const char* text) : ByteString(std::string_view(text ? text : "")) {}

ByteString::ByteString(std::string_view text) : ByteString(text.data(), text.size()) {}

ByteString::ByteString(const void* bytes, std::size_t size)
    : buf_(size ? StringN<unsigned char>::create(bytes, size) : nullptr) {}

const unsigned char* ByteString::bytes() const noexcept {
  static const unsigned char empty[1] = {0};
  return buf_ ? buf_->data() : empty;
}

bool operator==(const ByteString& a, const ByteString& b) noexcept {
  return a.buf_ == b.buf_ || (a.size() == b.size() && std::memcmp(a.bytes(), b.bytes(), a.size()) == 0);
}

bool operator<(const ByteString& a, const ByteString& b) noexcept {
  if (a.size() != b.size()) return a.size() < b.size();
  return std::memcmp(a.bytes(), b.bytes(), a.size()) < 0;
}

std::ostream& operator<<(std::ostream& out, const ByteString& s) { return out.write(s.data(), s.size()); }

String8 format(const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  va_list again;
  va_copy(again, args);
  int n = std::vsnprintf(nullptr, 0, fmt, args);
  va_end(args);
  std::vector<char> text(n > 0 ? n + 1 : 1);
  std::vsnprintf(text.data(), text.size(), fmt, again);
  va_end(again);
  return String8(text.data(), n > 0 ? n : 0);
}

}  // namespace Quor
