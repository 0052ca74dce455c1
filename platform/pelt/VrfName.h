#pragma once
// The name of a VRF: at most 100 bytes. "default" is the default VRF; the empty name is no VRF
// (what an interface without L3 object reads as), which is not the default VRF.
#include <iosfwd>
#include <string>
#include <string_view>

#include "platform/quor/String.h"

namespace L3 {

class VrfName {
 public:
  static constexpr std::size_t maxBytes = 100;

  VrfName() noexcept = default;
  // Each raises Quor::RangeException "VrfName::bytes > 100 not allowed" for a longer name.
  VrfName(const char* name) : VrfName(Quor::String8(name)) {}
  VrfName(std::string_view name) : VrfName(Quor::String8(name)) {}
  VrfName(const std::string& name) : VrfName(Quor::String8(name)) {}
  VrfName(const Quor::ByteString& name);

  const Quor::String8& stringValue() const noexcept { return name_; }
  Quor::Name nameValue() const noexcept { return Quor::Name(name_); }
  bool empty() const noexcept { return name_.empty(); }
  bool isDefault() const noexcept { return name_ == "default"; }
  U32 hash() const noexcept { return name_.hash(); }

  friend bool operator==(const VrfName& a, const VrfName& b) noexcept { return a.name_ == b.name_; }
  // Byte order of the names, shorter first on a common start: "blue" < "default" < "red".
  friend bool operator<(const VrfName& a, const VrfName& b) noexcept { return a.name_.view() < b.name_.view(); }

 private:
  Quor::String8 name_;
};

std::ostream& operator<<(std::ostream& out, const VrfName& name);

}  // namespace L3
