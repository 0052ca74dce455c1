#pragma once
// Exceptions of the framework. Each knows its full type name, so traces can say what was raised.
#include <exception>
#include <iosfwd>
#include <string>

namespace Quor {

class Exception : public std::exception {
 public:
  explicit Exception(std::string text) : text_(std::move(text)) {}
  const char* what() const noexcept override { return text_.c_str(); }
  const std::string& text() const { return text_; }
  virtual const char* name() const { return "Quor::Exception"; }

 private:
  std::string text_;
};

std::ostream& operator<<(std::ostream& out, const Exception& e);

// A value is out of range: a null ValidPtr, an unknown enumerator, an over-long name.
class RangeException : public Exception {
 public:
  using Exception::Exception;
  const char* name() const override { return "Quor::RangeException"; }
};

// A member was created again with different constructor parameters.
class NameInUseException : public Exception {
 public:
  using Exception::Exception;
  const char* name() const override { return "Quor::NameInUseException"; }
};

[[noreturn]] void throwRangeException(const std::string& text);
[[noreturn]] void throwNameInUseException(const std::string& text);

// Exception identifiers that a scope may declare as expected (see Expect).
inline constexpr int rangeExceptionId = 12;
inline constexpr int nameInUseExceptionId = 16;

// Declares, for the length of a scope, which exception the code in it expects and handles itself.
// It changes no behaviour: it documents the expectation and lets diagnostics tell it apart.
class Expect {
 public:
  explicit Expect(int exceptionId) : previous_(current_) { current_ = exceptionId; }
  ~Expect() { current_ = previous_; }
  Expect(const Expect&) = delete;
  Expect& operator=(const Expect&) = delete;
  static int current() { return current_; }

 private:
  int previous_;
  static inline thread_local int current_ = 0;
};

}  // namespace Quor
