#pragma once
// A set of route prefixes walked in the order of a Quor::HashMap keyed by prefix: by the prefix's
// hash bit-reversed, then by prefix. It is the route machine's backlog, which a route table written
// while the machine runs fills with every prefix of the table at once, so its members are 12-byte
// values in a Quor::BlockMap (about 14 bytes a prefix) instead of a heap object and a bucket each;
// the blocks that a draining backlog lets go are the size of those of ipCidrRouteTable, which takes
// them over as its rows come. The walk's guarantees are those of CollectionIterator: a walk may
// remove the member it stands on, and resumes at a remembered prefix (startAtHash) after any change.
#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/Prefix.h"
#include "platform/quor/BlockMap.h"
#include "platform/quor/HashMap.h"

namespace IpSnmp {

// A member's place in the walk of a set of prefixes.
template <class Prefix>
struct PrefixPlace {
  U32 revHash = 0;
  Prefix prefix;
  static PrefixPlace of(const Prefix& prefix) { return {Quor::bitReverse(prefix.hash()), prefix}; }
  friend bool operator==(const PrefixPlace&, const PrefixPlace&) = default;
  friend bool operator<(const PrefixPlace& a, const PrefixPlace& b) noexcept {
    return a.revHash != b.revHash ? a.revHash < b.revHash : a.prefix < b.prefix;
  }
};

template <class Prefix>
class BasicPrefixSet {
 public:
  using Place = PrefixPlace<Prefix>;
  struct Member {
    Place place;
    const Place& fwkKey() const noexcept { return place; }
  };
  using Places = Quor::BlockMap<Member, Place>;
  using PlacesIterator = typename Places::IteratorConst;

  class IteratorConst {
   public:
    using Key = Prefix;
    IteratorConst() = default;
    explicit IteratorConst(PlacesIterator at) : at_(at) {}
    explicit operator bool() const noexcept { return static_cast<bool>(at_); }
    bool atEnd() const noexcept { return at_.atEnd(); }
    const Prefix& key() const noexcept { return at_.key().prefix; }
    void advance() { at_.advance(); }
    IteratorConst& operator++() {
      advance();
      return *this;
    }

   private:
    PlacesIterator at_;
  };
  using Iterator = IteratorConst;

  std::size_t members() const noexcept { return places_.members(); }
  bool member(const Prefix& prefix) const { return places_.member(Place::of(prefix)) != nullptr; }
  // Adds `prefix`; false when it was a member already.
  bool memberIs(const Prefix& prefix) {
    const Place place = Place::of(prefix);
    if (places_.member(place)) return false;
    places_.memberIs(Member{place});
    return true;
  }
  // Removes `prefix`; false when it was not a member.
  bool deleteMember(const Prefix& prefix) { return places_.deleteMember(Place::of(prefix)); }

  IteratorConst begin() const { return IteratorConst(places_.begin()); }
  // The first member at or after `prefix`'s place in the walk, whether or not it is a member.
  IteratorConst startAtHash(const Prefix& prefix) const { return IteratorConst(places_.startAt(Place::of(prefix))); }
  // The first member strictly after `prefix`'s place.
  IteratorConst findNextG(const Prefix& prefix) const { return IteratorConst(places_.findNext(Place::of(prefix))); }

 private:
  Places places_;
};

using PrefixSet = BasicPrefixSet<Pelt::Prefix>;
using Prefix6Set = BasicPrefixSet<Pelt::Ip6AddrWithMask>;

}  // namespace IpSnmp
