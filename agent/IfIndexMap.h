#pragma once
// A value that maps interfaces to their index. No machine fills one: interface indexes are asked of
// the interface's details provider anew each time and never cached. The type is kept for the
// reflective access to attributes, and like every map-valued type it has no text form of its own: it
// prints, and parses, as "None".
#include <iosfwd>
#include <unordered_map>

#include "platform/pelt/IntfId.h"

namespace IpSnmp {

class IfIndexMap {
 public:
  IfIndexMap() = default;
  // Reads the form "None", which stands for every map.
  IfIndexMap(Quor::StrepIterator& position, const Quor::StrepIterator& end);

  // The index of `intfId`, 0 when absent.
  S32 ifIndex(Pelt::IntfId intfId) const;
  void ifIndexIs(Pelt::IntfId intfId, S32 ifIndex) { ifIndex_[intfId] = ifIndex; }
  void ifIndexDel(Pelt::IntfId intfId) { ifIndex_.erase(intfId); }
  void ifIndexDelAll() { ifIndex_.clear(); }
  std::size_t ifIndexes() const noexcept { return ifIndex_.size(); }

  friend bool operator==(const IfIndexMap&, const IfIndexMap&) = default;

 private:
  struct IntfIdHash {
    std::size_t operator()(Pelt::IntfId id) const noexcept { return id.hash(); }
  };
  std::unordered_map<Pelt::IntfId, S32, IntfIdHash> ifIndex_;
};

Quor::String8 valueToStrep(const IfIndexMap& map);
std::ostream& operator<<(std::ostream& out, const IfIndexMap& map);

}  // namespace IpSnmp
