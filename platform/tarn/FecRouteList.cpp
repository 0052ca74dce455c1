#include "platform/tarn/FecRouteList.h"

#include <bit>
#include <cstring>

namespace Tarn::Fib {

namespace {

constexpr U32 minIndexBits = 4;

// The whole prefix as one number for the index's hash.
U64 mixOf(const Pelt::Prefix& prefix) { return U64(prefix.addr().networkOrder()) << 8 | prefix.len(); }
U64 mixOf(const Pelt::Ip6AddrWithMask& prefix) {
  U64 mix = prefix.len();
  for (U8 byte : prefix.addr().bytes()) mix = mix * 0x100000001b3ull ^ byte;
  return mix;
}

}  // namespace

template <class Prefix>
std::size_t BasicFecRouteList<Prefix>::routeCount(FecId fecId) const {
  auto it = fecOf_.find(fecId.value());
  return it == fecOf_.end() ? 0 : fecs_[it->second].count;
}

template <class Prefix>
std::optional<FecId> BasicFecRouteList<Prefix>::fecOf(const Prefix& prefix) const {
  U32 e = find(prefix);
  if (e == none) return std::nullopt;
  return fecs_[entries_[e].fec].id;
}

// Fibonacci hashing of the whole prefix: consecutive prefixes spread over the index.
template <class Prefix>
U32 BasicFecRouteList<Prefix>::bucketOf(const Prefix& prefix) const noexcept {
  return static_cast<U32>((mixOf(prefix) * 0x9e3779b97f4a7c15ull) >> (64 - indexBits_));
}

template <class Prefix>
U32 BasicFecRouteList<Prefix>::find(const Prefix& prefix) const {
  if (indexBits_ == 0) return none;
  const U32 mask = (U32(1) << indexBits_) - 1;
  for (U32 b = bucketOf(prefix);; b = (b + 1) & mask) {
    const U32 slot = index_[b];
    if (slot == 0) return none;
    if (entries_[slot - 1].prefix == prefix) return slot - 1;
  }
}

template <class Prefix>
void BasicFecRouteList<Prefix>::indexInsert(U32 entry) {
  const U32 mask = (U32(1) << indexBits_) - 1;
  U32 b = bucketOf(entries_[entry].prefix);
  while (index_[b] != 0) b = (b + 1) & mask;
  index_[b] = entry + 1;
}

// Linear probing without tombstones: the entries after the hole that may move back into it do.
template <class Prefix>
void BasicFecRouteList<Prefix>::indexErase(U32 entry) {
  const U32 mask = (U32(1) << indexBits_) - 1;
  U32 hole = bucketOf(entries_[entry].prefix);
  while (index_[hole] != entry + 1) hole = (hole + 1) & mask;
  for (U32 b = (hole + 1) & mask; index_[b] != 0; b = (b + 1) & mask) {
    const Entry& moving = entries_[index_[b] - 1];
    const U32 home = bucketOf(moving.prefix);
    // The entry at b may fill the hole unless its home lies cyclically in (hole, b].
    const bool homeBetween = hole < b ? (home > hole && home <= b) : (home > hole || home <= b);
    if (homeBetween) continue;
    index_[hole] = index_[b];
    hole = b;
  }
  index_[hole] = 0;
}

template <class Prefix>
void BasicFecRouteList<Prefix>::reserve(std::size_t routes) {
  if (routes > entries_.size() || routes * 4 > (std::size_t(3) << indexBits_)) grow(routes);
}

template <class Prefix>
void BasicFecRouteList<Prefix>::grow(std::size_t routes) {
  if (routes > entries_.size()) {
    ZeroedArray<Entry> entries(routes);
    if (used_) std::memcpy(&entries[0], &entries_[0], std::size_t(used_) * sizeof(Entry));
    entries_ = std::move(entries);
  }
  U32 bits = std::max<U32>(minIndexBits, std::bit_width(routes * 4 / 3));
  if (bits <= indexBits_) return;
  index_ = ZeroedArray<U32>(std::size_t(1) << bits);
  indexBits_ = bits;
  for (U32 e = 0; e < used_; ++e)
    if (entries_[e].fec != none) indexInsert(e);
}

template <class Prefix>
U32 BasicFecRouteList<Prefix>::newEntry() {
  if (routes_ + 1 > entries_.size() || (routes_ + 1) * 4 > (std::size_t(3) << indexBits_))
    grow(std::max<std::size_t>(16, 2 * (routes_ + 1)));
  if (free_ != none) return std::exchange(free_, entries_[free_].next);
  return used_++;
}

template <class Prefix>
void BasicFecRouteList<Prefix>::routeIs(const Prefix& prefix, FecId fecId) {
  U32 e = find(prefix);
  if (e != none) {
    if (fecs_[entries_[e].fec].id == fecId) return;
    unlink(e);
  } else {
    e = newEntry();
    entries_[e].prefix = prefix;
    indexInsert(e);
    ++routes_;
  }
  auto [at, added] = fecOf_.try_emplace(fecId.value(), U32(fecs_.size()));
  if (added) {
    if (freeFecs_.empty()) {
      fecs_.emplace_back();
    } else {
      at->second = freeFecs_.back();
      freeFecs_.pop_back();
    }
    fecs_[at->second].id = fecId;
  }
  FecPlace& fec = fecs_[at->second];
  Entry& entry = entries_[e];
  entry.fec = at->second;
  entry.prev = none;
  entry.next = fec.head;
  if (fec.head != none) entries_[fec.head].prev = e;
  fec.head = e;
  ++fec.count;
}

template <class Prefix>
void BasicFecRouteList<Prefix>::routeDel(const Prefix& prefix) {
  const U32 e = find(prefix);
  if (e == none) return;
  unlink(e);
  indexErase(e);
  entries_[e].fec = none;
  entries_[e].next = free_;
  free_ = e;
  --routes_;
}

template <class Prefix>
void BasicFecRouteList<Prefix>::unlink(U32 e) {
  Entry& entry = entries_[e];
  const U32 place = entry.fec;
  FecPlace& fec = fecs_[place];
  if (fec.cursor == e) fec.cursor = entry.next;
  if (entry.prev != none)
    entries_[entry.prev].next = entry.next;
  else
    fec.head = entry.next;
  if (entry.next != none) entries_[entry.next].prev = entry.prev;
  if (--fec.count > 0) return;
  fecOf_.erase(fec.id.value());
  fec = FecPlace();
  freeFecs_.push_back(place);
}

template <class Prefix>
void BasicFecRouteList<Prefix>::clear() {
  index_ = ZeroedArray<U32>();
  indexBits_ = 0;
  entries_ = ZeroedArray<Entry>();
  used_ = 0;
  free_ = none;
  routes_ = 0;
  fecs_ = {};
  freeFecs_ = {};
  fecOf_ = {};
}

template <class Prefix>
bool BasicFecRouteList<Prefix>::walkFrom(FecId fecId) {
  auto it = fecOf_.find(fecId.value());
  if (it == fecOf_.end()) return false;
  FecPlace& fec = fecs_[it->second];
  fec.cursor = fec.head;
  return fec.cursor != none;
}

template <class Prefix>
std::optional<Prefix> BasicFecRouteList<Prefix>::walkNext(FecId fecId) {
  auto it = fecOf_.find(fecId.value());
  if (it == fecOf_.end()) return std::nullopt;
  FecPlace& fec = fecs_[it->second];
  if (fec.cursor == none) return std::nullopt;
  const U32 e = std::exchange(fec.cursor, entries_[fec.cursor].next);
  return entries_[e].prefix;
}

template class BasicFecRouteList<Pelt::Prefix>;
template class BasicFecRouteList<Pelt::Ip6AddrWithMask>;

}  // namespace Tarn::Fib
