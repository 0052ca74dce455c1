// ipsnmp-tarn: writes the shared-memory tables of a running system from another process, as the
// routing and neighbour agents do: routes and FECs of a VRF, ARP entries, VRF ids.
//
//   ipsnmp-tarn [--root DIR] [--vrf NAME] COMMAND...     one command
//   ipsnmp-tarn [--root DIR] [--vrf NAME] -f FILE        one command per line ("-": stdin, "#" comments)
//
//   route put PREFIX FEC-ID [metric=N] [preference=N] [type=N]
//   route del PREFIX
//   fec put FEC-ID [HOP@INTERFACE ...]                    e.g. 10.0.0.1@Ethernet1, 0.0.0.0@Vlan10, 10.0.0.9@
//   fec del FEC-ID
//   route6 put PREFIX FEC-ID [...] | route6 del PREFIX      the IPv6 tables, as route and fec
//   fec6 put FEC-ID [HOP@INTERFACE ...] | fec6 del FEC-ID   e.g. fe80::1@Ethernet1, ::@Vlan10
//   arp put VRF-ID INTERFACE ADDRESS MAC [static]
//   arp del VRF-ID INTERFACE ADDRESS
//   vrf put VRF-ID NAME
//   vrf del VRF-ID
//
// The tables are those the agent mounts, under --root (else $TARN_ROOT, else /dev/shm/tarn); route
// and fec commands write the tables of --vrf (default: the default VRF). A route's type is 8
// (connected) unless given. Every command is checked
// before anything is written; a bad one is reported with its line and the word at fault, and ends the
// run with status 2 and nothing written. All commands of a run are committed together at the end; a
// write that fails (a full table, another writer holding on) ends the run with status 1.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <vector>

#include "platform/tarn/ArpEntry.h"
#include "platform/tarn/FecWriter.h"
#include "platform/tarn/Mount.h"
#include "platform/tarn/RecordWriter.h"
#include "platform/tarn/TableSizes.h"
#include "platform/tarn/Util.h"
#include "platform/tarn/VrfEntry.h"

namespace {

// How long to wait for another writer of the same table to finish.
constexpr double lockWait = 5;

struct BadInput {
  std::string message;
};

[[noreturn]] void bad(const std::string& message) { throw BadInput{message}; }

U64 number(const std::string& word, const char* what, U64 max) {
  char* end = nullptr;
  errno = 0;
  unsigned long long value = std::strtoull(word.c_str(), &end, 10);
  if (word.empty() || word[0] == '-' || *end != '\0' || errno == ERANGE || value > max)
    bad(std::string("bad ") + what + " '" + word + "' (a number up to " + std::to_string(max) + ")");
  return value;
}

template <class T>
T parsed(const std::string& word, const char* what) {
  std::optional<T> value = T::parse(word);
  if (!value) bad(std::string("bad ") + what + " '" + word + "'");
  return *value;
}

Pelt::IntfId interface(const std::string& word) {
  if (word.size() > Tarn::intfNameBytes)
    bad("interface name '" + word + "' is longer than " + std::to_string(Tarn::intfNameBytes) + " bytes");
  return Pelt::IntfId(word);
}

Pelt::IpGenAddr address(const std::string& word) {
  if (auto v4 = Pelt::IpAddr::parse(word)) return *v4;
  if (auto v6 = Pelt::Ip6Addr::parse(word)) return *v6;
  bad("bad address '" + word + "'");
}

Vrf::VrfIdMap::VrfId vrfId(const std::string& word) {
  return Vrf::VrfIdMap::VrfId(static_cast<U32>(number(word, "VRF id", 0xfffffffeu)));
}

void arity(const std::vector<std::string>& words, std::size_t least, std::size_t most, const char* usage) {
  if (words.size() < least || words.size() > most) bad(std::string("usage: ") + usage);
}

template <class Codec>
std::unique_ptr<Tarn::RecordWriter<Codec>> writerOf(const std::string& path, U32 usual) {
  return std::make_unique<Tarn::RecordWriter<Codec>>(path, std::max(usual, Tarn::presentMaxMembers<Codec>(path)), lockWait);
}

// The writers of one run, opened when first needed.
class Tables {
 public:
  Tables(std::string root, const L3::VrfName& vrf) : root_(std::move(root)), vrf_(vrf) {}

  void commit() {
    if (routes_) routes_->commit();
    if (fecs_) fecs_->commit();
    if (routes6_) routes6_->commit();
    if (fecs6_) fecs6_->commit();
    if (arp_) arp_->commit();
    if (vrfIds_) vrfIds_->commit();
  }

  std::string file(const std::string& mountPath, const char* table) const { return root_ + "/" + mountPath + "/" + table; }
  Tarn::RecordWriter<Tarn::Fib::RouteCodec>& routes() {
    if (!routes_) routes_ = writerOf<Tarn::Fib::RouteCodec>(file(Tarn::Fib::routePathOf(vrf_), "route"), Tarn::usualRoutes);
    return *routes_;
  }
  Tarn::Fib::FecWriter& fecs() { return fecWriter(fecs_, Tarn::Fib::forwardingPathOf(vrf_)); }
  Tarn::RecordWriter<Tarn::Fib::Route6Codec>& routes6() {
    if (!routes6_)
      routes6_ = writerOf<Tarn::Fib::Route6Codec>(file(Tarn::Fib::route6PathOf(vrf_), "route"), Tarn::usualRoutes);
    return *routes6_;
  }
  Tarn::Fib::Fec6Writer& fecs6() { return fecWriter(fecs6_, Tarn::Fib::forwarding6PathOf(vrf_)); }
  Tarn::RecordWriter<Arp::Table::ArpCodec>& arp() {
    if (!arp_) arp_ = writerOf<Arp::Table::ArpCodec>(file(Arp::Table::statusPath, "arpEntry"), Tarn::usualArpEntries);
    return *arp_;
  }
  Tarn::RecordWriter<Vrf::VrfIdMap::VrfEntryCodec>& vrfIds() {
    if (!vrfIds_) vrfIds_ = writerOf<Vrf::VrfIdMap::VrfEntryCodec>(file(Vrf::VrfIdMap::statusPath, "vrfEntry"), Tarn::usualVrfIds);
    return *vrfIds_;
  }

 private:
  template <class Writer>
  Writer& fecWriter(std::unique_ptr<Writer>& writer, const std::string& mountPath) {
    if (!writer)
      writer = std::make_unique<Writer>(file(mountPath, "fec"), Tarn::Fib::FecWriter::defaultMaxFecs,
                                        Tarn::Fib::FecWriter::defaultMaxChunks, lockWait);
    return *writer;
  }

  std::string root_;
  L3::VrfName vrf_;
  std::unique_ptr<Tarn::RecordWriter<Tarn::Fib::RouteCodec>> routes_;
  std::unique_ptr<Tarn::Fib::FecWriter> fecs_;
  std::unique_ptr<Tarn::RecordWriter<Tarn::Fib::Route6Codec>> routes6_;
  std::unique_ptr<Tarn::Fib::Fec6Writer> fecs6_;
  std::unique_ptr<Tarn::RecordWriter<Arp::Table::ArpCodec>> arp_;
  std::unique_ptr<Tarn::RecordWriter<Vrf::VrfIdMap::VrfEntryCodec>> vrfIds_;
};

// A command checked and ready to write.
using Write = std::function<void(Tables&)>;

// A route command of the table that `table` opens, whose routes are `Route`s.
template <class Route, class Table>
Write routeCommand(const std::vector<std::string>& w, const char* usage, Table table) {
  arity(w, 3, 7, usage);
  const auto prefix = parsed<decltype(Route::prefix)>(w[2], "prefix");
  if (w[1] == "del") {
    arity(w, 3, 3, usage);
    return [prefix, table](Tables& t) { (t.*table)().erase(prefix); };
  }
  if (w[1] != "put" || w.size() < 4) bad(std::string("usage: ") + usage);
  Route route;
  route.prefix = prefix;
  route.fecId = Tarn::Fib::FecId(number(w[3], "FEC id", ~U64(0)));
  route.routeType = Routing::Fib::routeTypeConnected;
  for (std::size_t i = 4; i < w.size(); ++i) {
    std::size_t eq = w[i].find('=');
    std::string name = w[i].substr(0, eq), value = eq == std::string::npos ? "" : w[i].substr(eq + 1);
    if (name == "metric")
      route.metric = Routing::RouteMetric(static_cast<U32>(number(value, "metric", 0xffffffffu)));
    else if (name == "preference")
      route.preference = Routing::RoutePreference(static_cast<U8>(number(value, "preference", 255)));
    else if (name == "type")
      route.routeType = static_cast<Routing::Fib::RouteType>(number(value, "route type", 0xffff));
    else
      bad("unknown route attribute '" + w[i] + "' (metric=, preference=, type=)");
  }
  return [route, table](Tables& t) { (t.*table)().put(route); };
}

// A FEC command of the table that `table` opens, whose FECs are `Fec`s.
template <class Fec, class Table>
Write fecCommand(const std::vector<std::string>& w, const char* usage, Table table) {
  arity(w, 3, 3 + Fec::maxVias, usage);
  Tarn::Fib::FecId id(number(w[2], "FEC id", ~U64(0)));
  if (w[1] == "del") {
    arity(w, 3, 3, usage);
    return [id, table](Tables& t) { (t.*table)().erase(id); };
  }
  if (w[1] != "put") bad(std::string("usage: ") + usage);
  auto fec = std::make_shared<Fec>();
  fec->fecId = id;
  for (std::size_t i = 3; i < w.size(); ++i) {
    std::size_t at = w[i].find('@');
    if (at == std::string::npos) bad("bad via '" + w[i] + "' (HOP@INTERFACE)");
    fec->viaAdd({parsed<decltype(Fec::Via::hop)>(w[i].substr(0, at), "next hop"), interface(w[i].substr(at + 1))});
  }
  return [fec, table](Tables& t) { (t.*table)().put(*fec); };
}

Write arpCommand(const std::vector<std::string>& w) {
  const char* usage = "arp put VRF-ID INTERFACE ADDRESS MAC [static] | arp del VRF-ID INTERFACE ADDRESS";
  arity(w, 5, 7, usage);
  Arp::Table::ArpEntry entry{vrfId(w[2]), interface(w[3]), address(w[4]), {}, false};
  if (w[1] == "del") {
    arity(w, 5, 5, usage);
    return [key = entry.key()](Tables& t) { t.arp().erase(key); };
  }
  if (w[1] != "put" || w.size() < 6) bad(std::string("usage: ") + usage);
  entry.ethAddr = parsed<Pelt::EthAddr>(w[5], "MAC address");
  if (w.size() == 7 && w[6] != "static") bad("unknown word '" + w[6] + "' (static)");
  entry.isStatic = w.size() == 7;
  return [entry](Tables& t) { t.arp().put(entry); };
}

Write vrfCommand(const std::vector<std::string>& w) {
  const char* usage = "vrf put VRF-ID NAME | vrf del VRF-ID";
  arity(w, 3, 4, usage);
  Vrf::VrfIdMap::VrfId id = vrfId(w[2]);
  if (w[1] == "del") {
    arity(w, 3, 3, usage);
    return [id](Tables& t) { t.vrfIds().erase(id); };
  }
  if (w[1] != "put" || w.size() != 4) bad(std::string("usage: ") + usage);
  if (w[3].empty() || w[3].size() > L3::VrfName::maxBytes) bad("bad VRF name '" + w[3] + "' (1 to 100 bytes)");
  Vrf::VrfIdMap::VrfEntry entry(id, L3::VrfName(w[3]));
  return [entry](Tables& t) { t.vrfIds().put(entry); };
}

Write command(const std::vector<std::string>& w) {
  if (w.size() < 2) bad("a command is a table (route, fec, route6, fec6, arp, vrf), put or del, and its values");
  if (w[0] == "route")
    return routeCommand<Tarn::Fib::Route>(
        w, "route put PREFIX FEC-ID [metric=N] [preference=N] [type=N] | route del PREFIX", &Tables::routes);
  if (w[0] == "fec")
    return fecCommand<Tarn::Fib::Fec>(w, "fec put FEC-ID [HOP@INTERFACE ...] | fec del FEC-ID", &Tables::fecs);
  if (w[0] == "route6")
    return routeCommand<Tarn::Fib::Route6>(
        w, "route6 put PREFIX FEC-ID [metric=N] [preference=N] [type=N] | route6 del PREFIX", &Tables::routes6);
  if (w[0] == "fec6")
    return fecCommand<Tarn::Fib::Fec6>(w, "fec6 put FEC-ID [HOP@INTERFACE ...] | fec6 del FEC-ID", &Tables::fecs6);
  if (w[0] == "arp") return arpCommand(w);
  if (w[0] == "vrf") return vrfCommand(w);
  bad("unknown table '" + w[0] + "' (route, fec, route6, fec6, arp, vrf)");
}

int usage() {
  std::cerr << "usage: ipsnmp-tarn [--root DIR] [--vrf NAME] (COMMAND... | -f FILE)\n"
               "  route put PREFIX FEC-ID [metric=N] [preference=N] [type=N] | route del PREFIX\n"
               "  fec put FEC-ID [HOP@INTERFACE ...] | fec del FEC-ID\n"
               "  route6 ... | fec6 ...: the same for the IPv6 tables\n"
               "  arp put VRF-ID INTERFACE ADDRESS MAC [static] | arp del VRF-ID INTERFACE ADDRESS\n"
               "  vrf put VRF-ID NAME | vrf del VRF-ID\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  std::string root = Tarn::RootPath();
  std::string vrf = "default";
  std::string commandFile;
  std::size_t i = 0;
  for (; i + 1 < args.size() && args[i].starts_with("-"); i += 2) {
    if (args[i] == "--root")
      root = args[i + 1];
    else if (args[i] == "--vrf")
      vrf = args[i + 1];
    else if (args[i] == "-f")
      commandFile = args[i + 1];
    else
      return usage();
  }
  std::vector<std::string> words(args.begin() + static_cast<std::ptrdiff_t>(i), args.end());
  if (commandFile.empty() == words.empty()) return usage();

  std::vector<Write> writes;
  std::string where = "command";
  try {
    if (vrf.empty() || vrf.size() > L3::VrfName::maxBytes) bad("bad VRF name '" + vrf + "' (1 to 100 bytes)");
    if (commandFile.empty()) {
      writes.push_back(command(words));
    } else {
      std::ifstream file;
      if (commandFile != "-") {
        file.open(commandFile);
        if (!file) bad("cannot read " + commandFile);
      }
      std::istream& in = commandFile == "-" ? std::cin : file;
      std::string line;
      for (int number = 1; std::getline(in, line); ++number) {
        where = commandFile + ":" + std::to_string(number);
        std::istringstream split(line.substr(0, line.find('#')));
        std::vector<std::string> lineWords;
        for (std::string word; split >> word;) lineWords.push_back(word);
        if (!lineWords.empty()) writes.push_back(command(lineWords));
      }
    }
  } catch (const BadInput& e) {
    std::cerr << "ipsnmp-tarn: " << where << ": " << e.message << '\n';
    return 2;
  } catch (const Quor::Exception& e) {
    std::cerr << "ipsnmp-tarn: " << where << ": " << e.text() << '\n';
    return 2;
  }
  try {
    Tables tables(root, L3::VrfName(vrf));
    for (const Write& write : writes) write(tables);
    tables.commit();
  } catch (const std::exception& e) {
    std::cerr << "ipsnmp-tarn: " << e.what() << '\n';
    return 1;
  }
  return 0;
}
