#include "platform/pelt/IntfId.h"

#include <ostream>
#include <unordered_map>

#include "platform/quor/Strep.h"

namespace Pelt {

struct IntfId::Interned {
  Quor::String8 name;
  U32 hash;
};

// Interned names are never released: an identifier may be copied into anything, at any time, and
// a switch has few interface names. The table is never destroyed, so that identifiers held by
// static objects stay valid to the end.
const IntfId::Interned* IntfId::intern(std::string_view name) {
  static auto* names = new std::unordered_map<std::string_view, const Interned*>;
  auto it = names->find(name);
  if (it == names->end()) {
    Quor::String8 stored(name);
    auto* record = new Interned{stored, stored.hash()};
    it = names->emplace(record->name.view(), record).first;
  }
  return it->second;
}

void IntfId::handleInitialized(std::string_view name) { interned_ = name.empty() ? nullptr : intern(name); }

const Quor::String8& IntfId::stringValue() const noexcept {
  static const Quor::String8 emptyName;
  return interned_ ? interned_->name : emptyName;
}

U32 IntfId::hash() const noexcept { return interned_ ? interned_->hash : stringValue().hash(); }

bool operator<(IntfId a, IntfId b) noexcept {
  return a.interned_ != b.interned_ && a.stringValue().view() < b.stringValue().view();
}

std::ostream& operator<<(std::ostream& out, IntfId id) { return out << id.stringValue(); }

Quor::String8 valueToStrep(IntfId id) { return Quor::valueToStrep(id.stringValue()); }

IntfId sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, IntfId*) {
  return IntfId(Quor::readQuotedString(position, end));
}

}  // namespace Pelt
