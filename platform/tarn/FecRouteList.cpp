#include "platform/tarn/FecRouteList.h"

#include <bit>
#include <cstring>

namespace Tarn::Fib {

namespace {
constexpr U32 minIndexBits = 4;
}

std::size_t FecRouteList::routeCount(FecId fecId) const {
  auto it = fecOf_.find(fecId.value());
  return it == fecOf_.end() ? 0 : fecs_[it->second].count;
}

std::optional<FecId> FecRouteList::fecOf(const Pelt::Prefix& prefix) const {
  U32 e = find(prefix);
  if (e == none) return std::nullopt;
  return fecs_[entries_[e].fec].id;
}

// Fibonacci hashing of the whole prefix: consecutive prefixes spread over the index.
U32 FecRouteList::bucketOf(U32 addr, U8 len) const noexcept {
  return static_cast<U32>(((U64(addr) << 8 | len) * 0x9e3779b97f4a7c15ull) >> (64 - indexBits_));
}

U32 FecRouteList::find(const Pelt::Prefix& prefix) const {
  if (indexBits_ == 0) return none;
  const U32 addr = prefix.addr().networkOrder();
  const U8 len = prefix.len();
  const U32 mask = (U32(1) << indexBits_) - 1;
  for (U32 b = bucketOf(addr, len);; b = (b + 1) & mask) {
    const U32 slot = index_[b];
    if (slot == 0) return none;
    const Entry& entry = entries_[slot - 1];
    if (entry.addr == addr && entry.len == len) return slot - 1;
  }
}

void FecRouteList::indexInsert(U32 entry) {
  const U32 mask = (U32(1) << indexBits_) - 1;
  U32 b = bucketOf(entries_[entry].addr, entries_[entry].len);
  while (index_[b] != 0) b = (b + 1) & mask;
  index_[b] = entry + 1;
}

// Linear probing without tombstones: the entries after the hole that may move back into it do.
void FecRouteList::indexErase(U32 entry) {
  const U32 mask = (U32(1) << indexBits_) - 1;
  U32 hole = bucketOf(entries_[entry].addr, entries_[entry].len);
  while (index_[hole] != entry + 1) hole = (hole + 1) & mask;
  for (U32 b = (hole + 1) & mask; index_[b] != 0; b = (b + 1) & mask) {
    const Entry& moving = entries_[index_[b] - 1];
    const U32 home = bucketOf(moving.addr, moving.len);
    // The entry at b may fill the hole unless its home lies cyclically in (hole, b].
    const bool homeBetween = hole < b ? (home > hole && home <= b) : (home > hole || home <= b);
    if (homeBetween) continue;
    index_[hole] = index_[b];
    hole = b;
  }
  index_[hole] = 0;
}

void FecRouteList::reserve(std::size_t routes) {
  if (routes > entries_.size() || routes * 4 > (std::size_t(3) << indexBits_)) grow(routes);
}

void FecRouteList::grow(std::size_t routes) {
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

U32 FecRouteList::newEntry() {
  if (routes_ + 1 > entries_.size() || (routes_ + 1) * 4 > (std::size_t(3) << indexBits_))
    grow(std::max<std::size_t>(16, 2 * (routes_ + 1)));
  if (free_ != none) return std::exchange(free_, entries_[free_].next);
  return used_++;
}

void FecRouteList::routeIs(const Pelt::Prefix& prefix, FecId fecId) {
  U32 e = find(prefix);
  if (e != none) {
    if (fecs_[entries_[e].fec].id == fecId) return;
    unlink(e);
  } else {
    e = newEntry();
    entries_[e].addr = prefix.addr().networkOrder();
    entries_[e].len = prefix.len();
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
  Fec& fec = fecs_[at->second];
  Entry& entry = entries_[e];
  entry.fec = at->second;
  entry.prev = none;
  entry.next = fec.head;
  if (fec.head != none) entries_[fec.head].prev = e;
  fec.head = e;
  ++fec.count;
}

void FecRouteList::routeDel(const Pelt::Prefix& prefix) {
  const U32 e = find(prefix);
  if (e == none) return;
  unlink(e);
  indexErase(e);
  entries_[e].fec = none;
  entries_[e].next = free_;
  free_ = e;
  --routes_;
}

void FecRouteList::unlink(U32 e) {
  Entry& entry = entries_[e];
  const U32 place = entry.fec;
  Fec& fec = fecs_[place];
  if (fec.cursor == e) fec.cursor = entry.next;
  if (entry.prev != none)
    entries_[entry.prev].next = entry.next;
  else
    fec.head = entry.next;
  if (entry.next != none) entries_[entry.next].prev = entry.prev;
  if (--fec.count > 0) return;
  fecOf_.erase(fec.id.value());
  fec = Fec();
  freeFecs_.push_back(place);
}

void FecRouteList::clear() {
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

bool FecRouteList::walkFrom(FecId fecId) {
  auto it = fecOf_.find(fecId.value());
  if (it == fecOf_.end()) return false;
  Fec& fec = fecs_[it->second];
  fec.cursor = fec.head;
  return fec.cursor != none;
}

std::optional<Pelt::Prefix> FecRouteList::walkNext(FecId fecId) {
  auto it = fecOf_.find(fecId.value());
  if (it == fecOf_.end()) return std::nullopt;
  Fec& fec = fecs_[it->second];
  if (fec.cursor == none) return std::nullopt;
  const U32 e = std::exchange(fec.cursor, entries_[fec.cursor].next);
  return entries_[e].prefix();
}

}  // namespace Tarn::Fib
