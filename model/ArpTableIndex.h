#pragma once
// The key of arpTable (ipNetToMediaTable): interface index, then neighbour address.
#include <iosfwd>

#include "model/KeyOperators.h"
#include "platform/pelt/IpAddr.h"
#include "platform/quor/Strep.h"

namespace IpSnmp {

struct ArpTableIndex : KeyOperators<ArpTableIndex> {
  U32 ifIndex = 0;
  Pelt::IpAddr ipAddr;

  ArpTableIndex() = default;
  ArpTableIndex(U32 i, Pelt::IpAddr a) : ifIndex(i), ipAddr(a) {}
  ArpTableIndex(Quor::StrepIterator& position, const Quor::StrepIterator& end);

  friend bool operator==(const ArpTableIndex& a, const ArpTableIndex& b) {
    return a.ifIndex == b.ifIndex && a.ipAddr == b.ipAddr;
  }
  friend bool operator<(const ArpTableIndex& a, const ArpTableIndex& b) {
    return a.ifIndex != b.ifIndex ? a.ifIndex < b.ifIndex : a.ipAddr < b.ipAddr;
  }
};

Quor::String8 valueToStrep(const ArpTableIndex& key);
std::ostream& operator<<(std::ostream& out, const ArpTableIndex& key);

}  // namespace IpSnmp
