#pragma once
// The identifier of an interface, made from its name ("Ethernet1", "Vlan10").
//
// Names are interned: equal names share one record that lives as long as the process, so an IntfId
// is one pointer, a copy costs nothing and equality is a pointer comparison. The empty name is the
// default value (no record). The order is that of the names' bytes, the empty name first.
#include <iosfwd>
#include <string>
#include <string_view>

#include "platform/quor/Strep.h"

namespace Pelt {

class IntfId {
 public:
  constexpr IntfId() noexcept = default;
  explicit IntfId(std::string_view name) { handleInitialized(name); }
  explicit IntfId(const char* name) : IntfId(std::string_view(name)) {}
  explicit IntfId(const std::string& name) : IntfId(std::string_view(name)) {}
  explicit IntfId(const Quor::ByteString& name) : IntfId(name.view()) {}

  // (Re)initialises the identifier from an interface name.
  void handleInitialized(std::string_view name);

  const Quor::String8& stringValue() const noexcept;
  bool empty() const noexcept { return interned_ == nullptr; }
  explicit operator bool() const noexcept { return interned_ != nullptr; }
  U32 hash() const noexcept;

  friend bool operator==(IntfId a, IntfId b) noexcept { return a.interned_ == b.interned_; }
  friend bool operator<(IntfId a, IntfId b) noexcept;

 private:
  struct Interned;
  // The record of a non-empty name, created on first use.
  static const Interned* intern(std::string_view name);
  const Interned* interned_ = nullptr;
};

std::ostream& operator<<(std::ostream& out, IntfId id);
// The name in single quotes, and back.
Quor::String8 valueToStrep(IntfId id);
IntfId sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, IntfId*);

}  // namespace Pelt
