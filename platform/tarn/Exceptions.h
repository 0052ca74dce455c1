#pragma once
// Failures of the shared-memory tables.
//
// Brem::Exception is the base of what a table view raises about access: asking for what it does not
// offer (UnimplementedException). A read that
// meets memory a writer has left unusable raises Tarn::CorruptionDetectedException; the table's
// corruptionDetected(message) decides what follows.
#include <string>

#include "platform/quor/Exception.h"

namespace Brem {

class Exception : public Quor::Exception {
 public:
  // `logged` says that the raiser has traced the failure already, so a catcher need not.
  Exception(std::string text, bool logged) : Quor::Exception(std::move(text)), logged_(logged) {}
  explicit Exception(std::string text) : Exception(std::move(text), false) {}
  bool logged() const noexcept { return logged_; }
  const char* name() const override { return "Brem::Exception"; }

 private:
  bool logged_;
};

class UnimplementedException : public Exception {
 public:
  using Exception::Exception;
  const char* name() const override { return "Brem::UnimplementedException"; }
};

}  // namespace Brem

namespace Tarn {

class CorruptionDetectedException : public Brem::Exception {
 public:
  using Exception::Exception;
  const char* name() const override { return "Tarn::CorruptionDetectedException"; }
};

[[noreturn]] void throwCorruption(const std::string& text);

}  // namespace Tarn
