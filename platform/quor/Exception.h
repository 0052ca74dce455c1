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

}  // namespace Quor
