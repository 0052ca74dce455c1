#pragma once
// One occurrence of an address: which store side contributed it on which interface, and the prefix
// row it made. The key's order puts every status occurrence before every config occurrence, so the
// first occurrence of an address is its master.
#include <iosfwd>

#include "model/Enums.h"
#include "model/IpAddressPrefixEntry.h"
#include "model/KeyOperators.h"
#include "platform/pelt/IntfId.h"
#include "platform/quor/Ptr.h"

namespace IpSnmp {

struct IntfDataKey : KeyOperators<IntfDataKey> {
  AddressSource source = addressSourceStatus;
  Pelt::IntfId intfId;

  IntfDataKey() = default;
  IntfDataKey(AddressSource s, Pelt::IntfId i) : source(s), intfId(i) {}
  IntfDataKey(Quor::StrepIterator& position, const Quor::StrepIterator& end);

  friend bool operator==(const IntfDataKey& a, const IntfDataKey& b) {
    return a.source == b.source && a.intfId == b.intfId;
  }
  friend bool operator<(const IntfDataKey& a, const IntfDataKey& b) {
    return a.source != b.source ? a.source < b.source : a.intfId < b.intfId;
  }
};

struct IntfData {
  IntfDataKey key;
  Quor::Ptr<const IpAddressPrefixEntry> prefixEntry;  // null only in the default value

  IntfData() = default;
  IntfData(IntfDataKey k, Quor::Ptr<const IpAddressPrefixEntry> p) : key(std::move(k)), prefixEntry(std::move(p)) {}
  IntfData(Quor::StrepIterator& position, const Quor::StrepIterator& end);

  // Compares the prefix row by identity: equal content in another row is another occurrence.
  friend bool operator==(const IntfData& a, const IntfData& b) {
    return a.key == b.key && a.prefixEntry == b.prefixEntry;
  }
  bool operator!() const { return *this == IntfData(); }
};

Quor::String8 valueToStrep(const IntfDataKey& key);
Quor::String8 valueToStrep(const IntfData& data);
std::ostream& operator<<(std::ostream& out, const IntfDataKey& key);
std::ostream& operator<<(std::ostream& out, const IntfData& data);

}  // namespace IpSnmp
