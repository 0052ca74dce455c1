#include "TableFiles.h"

#include <sys/wait.h>
#include <unistd.h>


#include "platform/tarn/Mount.h"
#include "platform/tarn/RecordWriter.h"
#include "platform/tarn/TableReader.h"

namespace ScenarioTest {

namespace {

template <class Codec, class Decode>
std::map<typename Codec::Key, typename Codec::Value> readTable(const std::string& path, Decode decode) {
  std::map<typename Codec::Key, typename Codec::Value> out;
  auto reader = Tarn::TableReader::open(path, Codec::type, Codec::keySize, sizeof(typename Codec::Record));
  if (!reader) return out;
  typename Codec::Record record;
  for (U32 slot = reader->nextOccupied(0, &record); slot < reader->capacity();
       slot = reader->nextOccupied(slot + 1, &record))
    out[Codec::decodeKey(reinterpret_cast<const std::byte*>(&record))] = decode(record);
  return out;
}

template <class Codec>
std::map<typename Codec::Key, typename Codec::Value> readTable(const std::string& path) {
  return readTable<Codec>(path, [](const typename Codec::Record& record) { return Codec::decode(record); });
}

}  // namespace

VrfIdTableHolder::VrfIdTableHolder(const std::string& root) {
  int ready[2], release[2];
  if (::pipe(ready) != 0 || ::pipe(release) != 0) throw std::runtime_error("pipe");
  pid_ = ::fork();
  if (pid_ == 0) {
    ::close(release[1]);
    Tarn::RecordWriter<Vrf::VrfIdMap::VrfEntryCodec> writer(vrfIdFile(root), 1024);
    char byte = 1;
    (void)!::write(ready[1], &byte, 1);
    while (::read(release[0], &byte, 1) > 0) {
    }
    ::_exit(0);
  }
  ::close(ready[1]);
  ::close(release[0]);
  char byte;
  (void)!::read(ready[0], &byte, 1);
  ::close(ready[0]);
  release_ = release[1];
}

VrfIdTableHolder::~VrfIdTableHolder() {
  ::close(release_);
  ::waitpid(pid_, nullptr, 0);
}

std::string routeFile(const std::string& root, const std::string& vrf) {
  return root + "/" + Tarn::Fib::routePathOf(L3::VrfName(vrf)) + "/route";
}

std::string fecFile(const std::string& root, const std::string& vrf) {
  return root + "/" + Tarn::Fib::forwardingPathOf(L3::VrfName(vrf)) + "/fec";
}

std::string arpFile(const std::string& root) { return root + "/" + Arp::Table::statusPath + "/arpEntry"; }

std::string vrfIdFile(const std::string& root) { return root + "/" + Vrf::VrfIdMap::statusPath + "/vrfEntry"; }

std::map<Pelt::Prefix, Tarn::Fib::Route> routesIn(const std::string& root, const std::string& vrf) {
  return readTable<Tarn::Fib::RouteCodec>(routeFile(root, vrf));
}

std::map<Tarn::Fib::FecId, Tarn::Fib::Fec> fecsIn(const std::string& root, const std::string& vrf) {
  const std::string path = fecFile(root, vrf);
  const Tarn::Fib::FecCodec codec(path);
  return readTable<Tarn::Fib::FecCodec>(path, [&](const Tarn::Fib::FecRecord& record) {
    Tarn::Fib::Fec fec = Tarn::Fib::FecCodec::decode(record);
    codec.complete(record, &fec);
    return fec;
  });
}

std::map<Arp::Table::ArpKey, Arp::Table::ArpEntry> arpIn(const std::string& root) {
  return readTable<Arp::Table::ArpCodec>(arpFile(root));
}

std::map<U32, std::string> vrfIdsIn(const std::string& root) {
  std::map<U32, std::string> out;
  for (const auto& [id, entry] : readTable<Vrf::VrfIdMap::VrfEntryCodec>(vrfIdFile(root)))
    out[id.value()] = entry.vrfName().stringValue().str();
  return out;
}

}  // namespace ScenarioTest
