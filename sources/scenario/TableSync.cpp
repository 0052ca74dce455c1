#include "sources/scenario/TableSync.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <map>
#include <set>

#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/FecWriter.h"
#include "platform/tarn/ForwardingStatus.h"
#include "platform/tarn/Mount.h"
#include "platform/tarn/RouteStatus.h"
#include "platform/tarn/TableReader.h"
#include "platform/tarn/TableSizes.h"
#include "platform/tarn/VrfIdMapStatus.h"

namespace Sources {

namespace {

// Room for the chunks of FECs being rewritten, which live beside the new ones for a moment.
constexpr U32 chunkSlack = 8;

U32 sizeFor(U32 present, U64 needed, U32 usual) {
  if (present >= needed && present > 0) return present;
  return static_cast<U32>(std::max<U64>(usual, std::bit_ceil(needed)));
}

template <class Codec>
U32 sizeFor(const std::string& path, U64 needed, U32 usual) {
  return sizeFor(Tarn::presentMaxMembers<Codec>(path), needed, usual);
}

template <class Run>
U64 entriesOf(const std::vector<Run>& runs) {
  U64 total = 0;
  for (const Run& run : runs) total += run.count;
  return total;
}

// One table of plain records. `wanted(key)` tells whether the scenario has the key;
// `eachWanted(put)` calls put with every value the scenario gives.
template <class Codec, class Wanted, class EachWanted>
void syncRecords(const std::string& path, U64 needed, U32 usual, double lockWait, Wanted wanted, EachWanted eachWanted,
                 TableSyncCounts& counts) {
  using Key = typename Codec::Key;
  using Value = typename Codec::Value;
  using Record = typename Codec::Record;
  if (needed == 0 && !std::filesystem::exists(path)) return;
  Tarn::TableWriter table(path, Codec::type,
                          Tarn::TableGeometry::forRecords(Codec::keySize, sizeof(Record), sizeFor<Codec>(path, needed, usual)),
                          lockWait);
  std::vector<Key> gone;
  table.forEachRecord([&](const void* record) {
    Key key = Codec::decodeKey(static_cast<const std::byte*>(record));
    if (!wanted(key)) gone.push_back(key);
  });
  for (const Key& key : gone) {
    Record record{};
    Codec::encodeKey(key, &record);
    table.erase(&record);
  }
  counts.erased += gone.size();
  eachWanted([&](const Value& value) {
    Record record = Codec::encode(value), present;
    if (table.find(&record, &present) && Codec::decode(present) == value) return;
    table.put(&record);
    ++counts.written;
  });
  table.commit();
}

// One forwarding table: `want(id, fec)` fills the scenario's FEC of `id`, false when it has none;
// `eachWanted(put)` calls put with every FEC the scenario gives.
template <class Codec, class Want, class EachWanted>
void syncFecs(const std::string& path, U64 needed, U64 chunks, double lockWait, Want want, EachWanted eachWanted,
              TableSyncCounts& counts) {
  using namespace Tarn::Fib;
  using Fec = typename Codec::Value;
  using Record = typename Codec::Record;
  if (needed == 0 && !std::filesystem::exists(path)) return;
  const std::string chunkPath = Codec::chunkFileOf(path);
  BasicFecWriter<Codec> writer(
      path, sizeFor(Tarn::presentMaxMembers(path, Codec::type, Codec::keySize, sizeof(Record)), needed, FecWriter::defaultMaxFecs),
      sizeFor(Tarn::presentMaxMembers(chunkPath, Codec::chunkType, Codec::chunkKeySize, sizeof(typename Codec::ChunkRecord)),
              chunks + chunkSlack, FecWriter::defaultMaxChunks),
      lockWait);

  // What the file holds, read back through a reader while the writer keeps others out.
  std::vector<FecId> gone, same;
  auto reader = Tarn::TableReader::open(path, Codec::type, Codec::keySize, sizeof(Record));
  const Codec codec(path);
  Fec present, wanted;
  Record record;
  for (U32 slot = reader->nextOccupied(0, &record); slot < reader->capacity();
       slot = reader->nextOccupied(slot + 1, &record)) {
    present = Codec::decode(record);
    if (!want(present.fecId, &wanted))
      gone.push_back(present.fecId);
    else if (codec.complete(record, &present) && present == wanted)
      same.push_back(present.fecId);
  }
  std::sort(same.begin(), same.end());
  for (FecId id : gone) writer.erase(id);
  counts.erased += gone.size();
  eachWanted([&](const Fec& fec) {
    if (std::binary_search(same.begin(), same.end(), fec.fecId)) return;
    writer.put(fec);
    ++counts.written;
  });
  writer.commit();
}

void syncFib(const std::string& root, const L3::VrfName& vrf, const FibScenario& fib, double lockWait,
             TableSyncCounts& counts) {
  using namespace Tarn::Fib;
  const FibIndex index(fib);
  U64 chunks = 0;
  for (const FecRun& run : fib.fecs) chunks += U64(run.count) * chunksFor(static_cast<U32>(run.vias.size()));
  syncFecs<FecCodec>(
      root + "/" + forwardingPathOf(vrf) + "/" + ForwardingStatus::attributeName, entriesOf(fib.fecs), chunks, lockWait,
      [&](FecId id, Fec* fec) { return index.fec(id, fec); },
      [&](auto put) {
        Fec fec;
        for (const FecRun& run : fib.fecs)
          for (U64 i = 0; i < run.count; ++i) {
            fecOf(run, i, &fec);
            put(fec);
          }
      },
      counts);
  syncRecords<RouteCodec>(
      root + "/" + routePathOf(vrf) + "/" + RouteStatus::attributeName, entriesOf(fib.routes), Tarn::usualRoutes, lockWait,
      [&](const Pelt::Prefix& prefix) { return index.route(prefix).has_value(); },
      [&](auto put) {
        for (const RouteRun& run : fib.routes)
          for (U64 i = 0; i < run.count; ++i) put(routeOf(run, i));
      },
      counts);

  std::map<FecId, const Fec6*> fecs6;
  U64 chunks6 = 0;
  for (const Fec6& fec : fib.fecs6) {
    fecs6[fec.fecId] = &fec;
    chunks6 += chunksFor(fec.viaCount);
  }
  syncFecs<Fec6Codec>(
      root + "/" + forwarding6PathOf(vrf) + "/" + Forwarding6Status::attributeName, fib.fecs6.size(), chunks6, lockWait,
      [&](FecId id, Fec6* fec) {
        auto it = fecs6.find(id);
        if (it != fecs6.end()) *fec = *it->second;
        return it != fecs6.end();
      },
      [&](auto put) {
        for (const auto& [id, fec] : fecs6) put(*fec);
      },
      counts);
  std::map<Pelt::Ip6AddrWithMask, const Route6*> routes6;
  for (const Route6& route : fib.routes6) routes6[route.prefix] = &route;
  syncRecords<Route6Codec>(
      root + "/" + route6PathOf(vrf) + "/" + Route6Status::attributeName, routes6.size(), Tarn::usualRoutes, lockWait,
      [&](const Pelt::Ip6AddrWithMask& prefix) { return routes6.count(prefix) > 0; },
      [&](auto put) {
        for (const auto& [prefix, route] : routes6) put(*route);
      },
      counts);
}

// The VRFs that have tables under the root, besides the default one.
std::set<L3::VrfName> vrfsWithTables(const std::string& root) {
  std::set<L3::VrfName> vrfs;
  for (const char* format : {Tarn::Fib::vrfRoutePathFormat, Tarn::Fib::vrfForwardingPathFormat,
                             Tarn::Fib::vrfRoute6PathFormat, Tarn::Fib::vrfForwarding6PathFormat}) {
    std::string dir = root + "/" + std::string(format).substr(0, std::string(format).rfind('/'));
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(dir, ignored)) {
      std::string name = entry.path().filename().string();
      if (entry.is_directory() && name.size() <= L3::VrfName::maxBytes) vrfs.insert(L3::VrfName(name));
    }
  }
  return vrfs;
}

}  // namespace

TableSyncCounts syncTables(const TablesScenario& tables, const std::string& root, double lockWait) {
  TableSyncCounts counts;
  if (tables.vrfIds) {
    const auto& ids = *tables.vrfIds;
    syncRecords<Vrf::VrfIdMap::VrfEntryCodec>(
        root + "/" + Vrf::VrfIdMap::statusPath + "/" + Vrf::VrfIdMap::Status::attributeName, ids.size(), Tarn::usualVrfIds,
        lockWait, [&](Vrf::VrfIdMap::VrfId id) { return ids.count(id) > 0; },
        [&](auto put) {
          for (const auto& [id, name] : ids) put(Vrf::VrfIdMap::VrfEntry(id, name));
        },
        counts);
  }
  if (tables.fib) {
    std::set<L3::VrfName> vrfs = vrfsWithTables(root);
    vrfs.insert(L3::VrfName("default"));
    for (const auto& [vrf, fib] : *tables.fib) vrfs.insert(vrf);
    const FibScenario none;
    for (const L3::VrfName& vrf : vrfs) {
      auto it = tables.fib->find(vrf);
      syncFib(root, vrf, it == tables.fib->end() ? none : it->second, lockWait, counts);
    }
  }
  if (tables.arp) {
    const ArpIndex index(*tables.arp);
    syncRecords<Arp::Table::ArpCodec>(
        root + "/" + Arp::Table::statusPath + "/" + Arp::Table::Status::attributeName, entriesOf(*tables.arp),
        Tarn::usualArpEntries, lockWait, [&](const Arp::Table::ArpKey& key) { return index.entry(key).has_value(); },
        [&](auto put) {
          for (const ArpRun& run : *tables.arp)
            for (U64 i = 0; i < run.count; ++i) put(arpEntryOf(run, i));
        },
        counts);
  }
  return counts;
}

}  // namespace Sources
