#include "sources/linux/RouteTables.h"

#include <algorithm>

#include "platform/quor/Exception.h"
#include "platform/tarn/Mount.h"
#include "platform/tarn/TableReader.h"

namespace Sources::Linux {

namespace {

const Quor::Tracer tracer("Linux", "RouteTables");

}  // namespace

template <class Family>
bool BasicRouteTables<Family>::ViaOrder::operator()(const FecKey& a, const FecKey& b) const noexcept {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](const Via& x, const Via& y) {
                                        if (!(x.hop == y.hop)) return x.hop < y.hop;
                                        return x.intfId < y.intfId;
                                      });
}

template <class Family>
BasicRouteTables<Family>::BasicRouteTables(const std::string& root, const L3::VrfName& vrf)
    : fecPath_(root + "/" + Family::forwardingPath(vrf) + "/fec"),
      routeTable_(root + "/" + Family::routePath(vrf) + "/route", leastRoutes) {
  using FecCodec = typename Family::FecCodec;
  try {
    if (auto reader = Tarn::TableReader::open(fecPath_, FecCodec::type, FecCodec::keySize, sizeof(typename FecCodec::Record))) {
      maxFecs_ = std::max(maxFecs_, reader->geometry().maxMembers);
      typename FecCodec::Record record;
      for (U32 slot = reader->nextOccupied(0, &record); slot < reader->capacity();
           slot = reader->nextOccupied(slot + 1, &record))
        staleFecs_.insert(record.fecId);
    }
  } catch (const Tarn::CorruptionDetectedException&) {
    staleFecs_.clear();  // the writer builds a fresh file
  }
  maxChunks_ = std::max(maxChunks_, Tarn::presentMaxMembers(FecCodec::chunkFileOf(fecPath_), FecCodec::chunkType,
                                                             FecCodec::chunkKeySize, sizeof(typename FecCodec::ChunkRecord)));
  fecTable_ = std::make_unique<Tarn::Fib::BasicFecWriter<FecCodec>>(fecPath_, maxFecs_, maxChunks_, tableLockWait);
  if (!staleFecs_.empty()) nextFecId_ = *staleFecs_.rbegin() + 1;
  routeTable_.forEach([this](const Route& route) { routes_[route.prefix] = Published{route, std::nullopt}; });
}

template <class Family>
void BasicRouteTables<Family>::routeIs(const Prefix& prefix, const std::optional<Wanted>& wanted) {
  auto it = routes_.find(prefix);
  if (!wanted) {
    if (it == routes_.end()) return;
    routeTable_.erase(prefix);
    std::optional<FecKey> fec = std::move(it->second.fec);
    routes_.erase(it);
    if (fec) release(*fec);
    return;
  }
  Route route = wanted->route;
  route.prefix = prefix;
  if (it != routes_.end() && it->second.fec == wanted->vias) {
    route.fecId = fecs_.at(wanted->vias).id;
    if (route == it->second.route) return;
    routeTable_.put(route);
    it->second.route = route;
    return;
  }
  route.fecId = acquire(wanted->vias);
  routeTable_.put(route);
  std::optional<FecKey> old;
  if (it != routes_.end()) old = std::move(it->second.fec);
  routes_[prefix] = Published{route, wanted->vias};
  if (old) release(*old);
}

template <class Family>
auto BasicRouteTables<Family>::prefixes() const -> std::vector<Prefix> {
  std::vector<Prefix> all;
  all.reserve(routes_.size());
  for (const auto& entry : routes_) all.push_back(entry.first);
  return all;
}

template <class Family>
void BasicRouteTables<Family>::sweepStaleFecs() {
  for (U64 id : staleFecs_) fecTable_->erase(Tarn::Fib::FecId(id));
  staleFecs_.clear();
}

template <class Family>
void BasicRouteTables<Family>::commit() {
  fecTable_->commit();
  routeTable_.commit();
}

template <class Family>
Tarn::Fib::FecId BasicRouteTables<Family>::acquire(const FecKey& vias) {
  auto [it, made] = fecs_.try_emplace(vias);
  if (made) {
    it->second.id = Tarn::Fib::FecId(nextFecId_++);
    Fec fec;
    fec.fecId = it->second.id;
    for (const Via& via : vias) fec.viaAdd(via);
    try {
      putFec(fec);
    } catch (...) {
      fecs_.erase(it);
      throw;
    }
  }
  ++it->second.users;
  return it->second.id;
}

template <class Family>
void BasicRouteTables<Family>::release(const FecKey& vias) {
  auto it = fecs_.find(vias);
  if (it == fecs_.end() || --it->second.users > 0) return;
  fecTable_->erase(it->second.id);
  fecs_.erase(it);
}

template <class Family>
void BasicRouteTables<Family>::putFec(const Fec& fec) {
  // A FEC being rewritten holds its old and its new chunks for a moment: 8 to spare.
  const U32 chunksNeeded = fecTable_->chunks() + Tarn::Fib::chunksFor(fec.viaCount) + 8;
  if (fecTable_->members() + 1 >= maxFecs_ || chunksNeeded > maxChunks_) {
    while (fecTable_->members() + 1 >= maxFecs_) maxFecs_ *= 2;
    while (chunksNeeded > maxChunks_) maxChunks_ *= 2;
    growFecs();
  }
  fecTable_->put(fec);
}

template <class Family>
void BasicRouteTables<Family>::growFecs() {
  fecTable_.reset();
  // The writer of another size carries every FEC into the new pair of files, stale ones included.
  fecTable_ = std::make_unique<Tarn::Fib::BasicFecWriter<typename Family::FecCodec>>(fecPath_, maxFecs_, maxChunks_, tableLockWait);
  QTRACE(tracer, 1, fecPath_ << " grown to " << maxFecs_ << " FECs and " << maxChunks_ << " chunks");
}

template class BasicRouteTables<Ipv4Tables>;
template class BasicRouteTables<Ipv6Tables>;

}  // namespace Sources::Linux
