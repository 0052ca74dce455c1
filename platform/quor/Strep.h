#pragma once
// The textual value form ("strep") of values: printed in traces and failure messages, parsed back.
//
// A struct-like value prints as "Value('<Type>', ** {'<attr>': <value>, ...})". Parsing runs a
// type's parsing constructor T(position, end), which reads the form at `position` and leaves
// `position` behind it. Integers and strings parse through sequenceToValue(position, end, T*), and an
// enumeration supplies its own sequenceToValue beside it (found by argument-dependent lookup).
// Every parsing failure is a RangeException.
#include <charconv>
#include <concepts>
#include <functional>
#include <initializer_list>
#include <string_view>

#include "platform/quor/Exception.h"
#include "platform/quor/String.h"

namespace Quor {

// A place in a text being parsed. It remembers where the text began, so a failure can name the
// column (counted from 0) at which it happened.
class StrepIterator {
 public:
  StrepIterator() = default;
  StrepIterator(const char* begin, const char* at) noexcept : begin_(begin), at_(at) {}

  char operator*() const noexcept { return *at_; }
  StrepIterator& operator++() noexcept {
    ++at_;
    return *this;
  }
  StrepIterator& operator+=(std::ptrdiff_t n) noexcept {
    at_ += n;
    return *this;
  }
  const char* ptr() const noexcept { return at_; }
  long long column() const noexcept { return at_ - begin_; }
  friend bool operator==(const StrepIterator& a, const StrepIterator& b) noexcept { return a.at_ == b.at_; }

 private:
  const char* begin_ = nullptr;
  const char* at_ = nullptr;
};

// Decimal digits.
String8 valueToStrep(U64 value);
// The bytes in single quotes; a quote, a backslash and bytes outside printable ASCII are escaped
// ("\'", "\\", "\xNN"), so that readQuotedString gives back the same bytes.
String8 valueToStrep(const ByteString& value);
// A reference to an object that is printed, not followed: its address, or None for null.
String8 valueToStrepOfRawPtr(const void* p);

// "Value('<typeName>', ** {'a': 1, 'b': 2})", with the attributes' forms in the order given.
struct StrepAttr {
  std::string_view name;
  String8 strep;
};
String8 valueFormStrep(std::string_view typeName, std::initializer_list<StrepAttr> attrs);

// Demands `text` at `position` and steps over it. A blank in `text` stands for optional white space.
// A failure names the demanded text and the column at which it was demanded.
void needString(StrepIterator& position, const StrepIterator& end, std::string_view text);
// Reads a single-quoted string with the escapes that valueToStrep(ByteString) writes.
String8 readQuotedString(StrepIterator& position, const StrepIterator& end);

// The failure of a value's parser that cannot use the text at `position`.
[[noreturn]] void cannotConvert(const StrepIterator& position, const StrepIterator& end, std::string_view typeName);
// Raises `failure` again, naming the attribute whose value it concerns.
[[noreturn]] void rethrowFromDeserializeAttr(const RangeException& failure, std::string_view attrName);

template <std::integral T>
T sequenceToValue(StrepIterator& position, const StrepIterator& end, T*) {
  T value{};
  auto [stop, ec] = std::from_chars(position.ptr(), end.ptr(), value);
  if (ec != std::errc()) cannotConvert(position, end, "integer");
  position += stop - position.ptr();
  return value;
}

template <class S>
  requires std::derived_from<S, ByteString>
S sequenceToValue(StrepIterator& position, const StrepIterator& end, S*) {
  return S(readQuotedString(position, end));
}

// One value of type T at `position`: T's sequenceToValue when it has one, else its parsing constructor.
template <class T>
T valueFromStrep(StrepIterator& position, const StrepIterator& end) {
  if constexpr (requires { sequenceToValue(position, end, static_cast<T*>(nullptr)); })
    return sequenceToValue(position, end, static_cast<T*>(nullptr));
  else
    return T(position, end);
}

// Parses the value of attribute `attrName` into `attr`; a failure names the attribute.
template <class A>
void deserializeAttr(StrepIterator& position, const StrepIterator& end, std::string_view attrName, A& attr) {
  try {
    attr = valueFromStrep<A>(position, end);
  } catch (const RangeException& failure) {
    rethrowFromDeserializeAttr(failure, attrName);
  }
}

// The body of a parsing constructor for "Value('<quotedType>', ** {...})". `readAttr(name)` parses
// the value of attribute `name` at `position` (usually with deserializeAttr) and returns false for
// a name that the type does not have. Attributes may come in any order, be left out (they keep what
// the caller set before) or come twice (the later wins). `shortName` names the type in failures:
// "premature end of value type <shortName>", "<shortName> has no such attribute: <name>".
void readValueForm(StrepIterator& position, const StrepIterator& end, std::string_view quotedType,
                   std::string_view shortName, const std::function<bool(const String8& name)>& readAttr);

// Parses the whole of `text` as a T; text left behind the value is a failure.
template <class T>
T strepToValue(const String8& text);
// The same, with `emptyValue` for an empty text.
template <class T>
T strepToValue(const String8& text, const T& emptyValue);

// Raises "junk at column <position> deserializing <text>" unless `position` is at the end.
void needEndOfStrep(const StrepIterator& position, const StrepIterator& end, const String8& text);

template <class T>
T strepToValue(const String8& text) {
  StrepIterator position(text.data(), text.data());
  const StrepIterator end(text.data(), text.data() + text.size());
  T value = valueFromStrep<T>(position, end);
  needEndOfStrep(position, end, text);
  return value;
}

template <class T>
T strepToValue(const String8& text, const T& emptyValue) {
  return text.empty() ? emptyValue : strepToValue<T>(text);
}

}  // namespace Quor
