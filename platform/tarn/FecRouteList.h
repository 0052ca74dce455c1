#pragma once
// The reverse of a route table: for each FEC id, the prefixes whose routes name that FEC, so that a
// change of a FEC finds the routes it affects. FibUtils::FecRouteListSm keeps it up to date. One
// template for both families: FecRouteList of IPv4 prefixes, FecRoute6List of IPv6 ones.
//
// Storage, for route tables of millions of prefixes: every listed prefix is one entry of 20 bytes (36
// for IPv6) in
// one array (the prefix, its FEC's place and the links of that FEC's chain), found by prefix through
// an open-addressing index of entry numbers; each FEC that some route names has a place with its id,
// the head of its chain and its count. Both the index and the array come from zeroed mappings sized
// for the route table (reserve), so the pages of a table that is far from full are never touched,
// and letting the list go frees a few large blocks, not a node per prefix.
//
// Walks. A walk of one FEC's prefixes (walkFrom, walkNext) may be spread over many turns of the loop
// while routes come and go: a prefix that leaves the FEC before the walk reaches it is not visited,
// one that joins it meanwhile is not either (its own route change reaches the reader), and every
// prefix listed under the FEC throughout the walk is visited once. Each FEC has at most one walk;
// starting it again starts it from the beginning.
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/Prefix.h"
#include "platform/quor/Ptr.h"
#include "platform/tarn/FibRoute.h"
#include "platform/tarn/ZeroedArray.h"

namespace Tarn::Fib {

template <class Prefix>
class BasicFecRouteList : public Quor::PtrInterface {
 public:
  // FECs that some route names.
  std::size_t members() const noexcept { return fecOf_.size(); }
  // Listed prefixes.
  std::size_t routes() const noexcept { return routes_; }
  // The prefixes listed under `fecId`.
  std::size_t routeCount(FecId fecId) const;
  // The FEC `prefix` is listed under, none when it is not listed.
  std::optional<FecId> fecOf(const Prefix& prefix) const;
  // Visits the prefixes listed under `fecId`, most recently listed first.
  template <class Visit>
  void forEachRouteOf(FecId fecId, Visit&& visit) const;

  // Lists `prefix` under `fecId`, and under no other FEC.
  void routeIs(const Prefix& prefix, FecId fecId);
  // Lists `prefix` nowhere.
  void routeDel(const Prefix& prefix);
  // Lists nothing; the memory goes too.
  void clear();
  // Room for `routes` listed prefixes at once: growing by doubling would move every entry of a large
  // list inside one route notification. Growth past it (a route table rebuilt larger) still moves them.
  void reserve(std::size_t routes);

  // Starts the walk of `fecId`'s prefixes from its first, or again from its first; false when no
  // prefix is listed under it.
  bool walkFrom(FecId fecId);
  // The next prefix of the walk of `fecId`; none when the walk is over (or the FEC is gone).
  std::optional<Prefix> walkNext(FecId fecId);

 private:
  static constexpr U32 none = ~U32(0);
  struct Entry {
    Prefix prefix;  // meaningless in a free entry
    U32 fec;        // the FEC's place, `none` for a free entry (whose `next` is the next free one)
    U32 next;       // the FEC's chain, newest first
    U32 prev;
  };
  struct FecPlace {
    FecId id;
    U32 head = none;
    U32 count = 0;
    U32 cursor = none;  // what its walk visits next
  };

  U32 find(const Prefix& prefix) const;  // the entry, or none
  U32 bucketOf(const Prefix& prefix) const noexcept;
  void indexInsert(U32 entry);
  void indexErase(U32 entry);
  void grow(std::size_t routes);
  U32 newEntry();
  void unlink(U32 entry);

  // index_[bucket] is 1 + an entry number, 0 when empty (so that zeroed memory is an empty index).
  ZeroedArray<U32> index_;
  U32 indexBits_ = 0;
  ZeroedArray<Entry> entries_;
  U32 used_ = 0;  // entries ever handed out: [0, used_) are listed or free
  U32 free_ = none;
  std::size_t routes_ = 0;
  std::vector<FecPlace> fecs_;
  std::vector<U32> freeFecs_;
  std::unordered_map<U64, U32> fecOf_;
};

template <class Prefix>
template <class Visit>
void BasicFecRouteList<Prefix>::forEachRouteOf(FecId fecId, Visit&& visit) const {
  auto it = fecOf_.find(fecId.value());
  if (it == fecOf_.end()) return;
  for (U32 e = fecs_[it->second].head; e != none; e = entries_[e].next) visit(entries_[e].prefix);
}

using FecRouteList = BasicFecRouteList<Pelt::Prefix>;
using FecRoute6List = BasicFecRouteList<Pelt::Ip6AddrWithMask>;
extern template class BasicFecRouteList<Pelt::Prefix>;
extern template class BasicFecRouteList<Pelt::Ip6AddrWithMask>;

}  // namespace Tarn::Fib
