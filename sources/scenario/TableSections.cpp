#include "sources/scenario/TableSections.h"

#include <array>
#include <cctype>
#include <limits>
#include <optional>
#include <sstream>

#include "platform/pelt/ParseText.h"
#include "platform/quor/Exception.h"
#include "platform/tarn/RecordFields.h"

namespace Sources::ScenarioYaml {

namespace {

constexpr U64 maxVrfId = 0xfffffffeu;  // all ones is the unknown id
constexpr U64 maxMac = (U64(1) << 48) - 1;

class TableReader {
 public:
  explicit TableReader(const Checker& checker) : c_(checker) {}

  FibScenario fib(const Entry& entry, const std::string& where) {
    FibScenario fib;
    std::vector<YAML::Mark> fecMarks, routeMarks;
    for (const Entry& e : c_.entries(entry.value, entry.mark, where, {"fecs", "routes"})) {
      if (e.key == "fecs")
        for (const Entry& f : c_.entries(e.value, e.mark, "fecs of " + where)) {
          if (isFec6(f)) {
            fib.fecs6.push_back(fec6(f, "FEC " + f.key + " of " + where));
            continue;
          }
          fib.fecs.push_back(fecRun(f, "FEC " + f.key + " of " + where));
          fecMarks.push_back(f.mark);
        }
      if (e.key == "routes")
        for (const Entry& r : c_.entries(e.value, e.mark, "routes of " + where)) {
          if (Pelt::Ip6AddrWithMask::parse(r.key)) {
            routes6(r, "route " + r.key + " of " + where, fib.routes6);
            continue;
          }
          fib.routes.push_back(routeRun(r, "route " + r.key + " of " + where));
          routeMarks.push_back(r.mark);
        }
    }
    checkTotal(fib.fecs, entry.mark, "FECs of " + where);
    checkTotal(fib.routes, entry.mark, "routes of " + where);
    FibIndex index(fib);
    if (auto both = index.fecOverlap())
      overlap(fecMarks, *both, "FECs from " + std::to_string(fib.fecs[both->second].first), where);
    if (auto both = index.routeOverlap())
      overlap(routeMarks, *both, "routes from " + text(fib.routes[both->second].first), where);
    return fib;
  }

  std::vector<ArpRun> arp(const Entry& section, const std::optional<VrfIds>& vrfIds) {
    std::vector<ArpRun> runs;
    std::vector<YAML::Mark> marks;
    if (section.value.IsNull()) return runs;
    if (!section.value.IsSequence()) c_.fail(section.mark, "arp must be a list of neighbours");
    for (const YAML::Node& item : section.value) {
      YAML::Mark mark = Checker::markOf(item, section.mark);
      runs.push_back(arpRun(Entry{"arp", item, mark}, "the neighbour of line " + std::to_string(Checker::lineOf(mark)),
                            vrfIds));
      marks.push_back(mark);
    }
    checkTotal(runs, section.mark, "arp");
    ArpIndex index(runs);
    if (auto both = index.overlap()) overlap(marks, *both, "neighbours from " + text(runs[both->second].first), "arp");
    return runs;
  }

  VrfIds vrfIds(const Entry& section) {
    VrfIds ids;
    for (const Entry& e : c_.entries(section.value, section.mark, "vrfIds")) {
      L3::VrfName name = c_.vrfName(e.key, e.mark);
      Vrf::VrfIdMap::VrfId id(static_cast<U32>(c_.number(e, "vrfIds", 0, maxVrfId)));
      if (!ids.emplace(id, name).second)
        c_.fail(e.mark, "VRF id " + std::to_string(id.value()) + " in vrfIds is given to " +
                            ids.at(id).stringValue().str() + " already");
    }
    return ids;
  }

 private:
  // A FEC whose first via has an IPv6 next hop is an IPv6 FEC.
  static bool isFec6(const Entry& entry) {
    if (!entry.value.IsSequence() || entry.value.size() == 0 || !entry.value[0].IsScalar()) return false;
    const std::string word = entry.value[0].Scalar();
    return Pelt::Ip6Addr::parse(word.substr(0, word.find('@'))).has_value();
  }

  Tarn::Fib::Fec6 fec6(const Entry& entry, const std::string& where) {
    Tarn::Fib::Fec6 fec;
    auto id = Pelt::parseDecimal(entry.key, std::numeric_limits<U64>::max());
    if (!id || *id == 0) c_.fail(entry.mark, "a FEC id must be a whole number from 1, not '" + entry.key + "'");
    fec.fecId = Tarn::Fib::FecId(*id);
    for (const YAML::Node& item : entry.value) {
      YAML::Mark mark = Checker::markOf(item, entry.mark);
      const std::string word = item.IsScalar() ? item.Scalar() : std::string();
      const std::size_t at = word.find('@');
      auto hop = Pelt::Ip6Addr::parse(word.substr(0, at));
      if (!hop)
        c_.fail(mark, "a via of " + where + " must be an IPv6 next hop with its interface such as fe80::1@Ethernet1" +
                          Checker::shown(item));
      if (fec.viaCount == Tarn::Fib::Fec6::maxVias)
        c_.fail(entry.mark, where + " has more than " + std::to_string(Tarn::Fib::Fec6::maxVias) + " vias");
      fec.viaAdd({*hop, at == std::string::npos ? Pelt::IntfId() : interface(word.substr(at + 1), mark, where)});
    }
    return fec;
  }

  // IPv6 routes: one, or a run of `count` routes, each the next block of the prefix's length.
  void routes6(const Entry& entry, const std::string& where, std::vector<Tarn::Fib::Route6>& out) {
    Tarn::Fib::Route6 route;
    route.prefix = *Pelt::Ip6AddrWithMask::parse(entry.key);
    route.routeType = Routing::Fib::routeTypeConnected;
    U32 runLength = 1;
    bool hasFec = false;
    for (const Entry& e : c_.entries(entry.value, entry.mark, where, {"fec", "count", "type", "metric", "preference"})) {
      if (e.key == "fec") {
        route.fecId = Tarn::Fib::FecId(c_.number(e, where, 0, std::numeric_limits<U64>::max()));
        hasFec = true;
      }
      if (e.key == "count") runLength = count(e, where);
      if (e.key == "type") route.routeType = routeType(e, where);
      if (e.key == "metric") route.metric = Routing::RouteMetric(static_cast<U32>(c_.number(e, where, 0, 0xffffffffu)));
      if (e.key == "preference") route.preference = Routing::RoutePreference(static_cast<U8>(c_.number(e, where, 0, 255)));
    }
    if (!hasFec) c_.fail(entry.mark, where + " needs 'fec', the FEC it uses");
    for (U32 i = 0; i < runLength; ++i) {
      std::optional<Pelt::Ip6Addr> addr = blockAfter(route.prefix, i);
      if (!addr) c_.fail(entry.mark, where + ": " + std::to_string(runLength) + " routes run past the last address");
      Tarn::Fib::Route6 member = route;
      member.prefix = Pelt::Ip6AddrWithMask(*addr, route.prefix.len());
      out.push_back(member);
    }
  }

  // The address `n` blocks of the prefix's length after the prefix's; none past the last address.
  static std::optional<Pelt::Ip6Addr> blockAfter(const Pelt::Ip6AddrWithMask& prefix, U64 n) {
    __extension__ using U128 = unsigned __int128;
    const unsigned shift = 128u - prefix.len();
    U128 value = 0;
    for (U8 byte : prefix.addr().bytes()) value = value << 8 | byte;
    const U128 step = shift >= 128 ? 0 : U128(1) << shift;
    if (n && (step == 0 || (U128(~U128(0)) - value) / step < n)) return std::nullopt;
    value += step * n;
    std::array<U8, 16> bytes;
    for (int i = 15; i >= 0; --i, value >>= 8) bytes[static_cast<std::size_t>(i)] = static_cast<U8>(value);
    return Pelt::Ip6Addr::fromBytes(bytes.data());
  }

  FecRun fecRun(const Entry& entry, const std::string& where) {
    FecRun run;
    auto id = Pelt::parseDecimal(entry.key, std::numeric_limits<U64>::max());
    if (!id || *id == 0) c_.fail(entry.mark, "a FEC id must be a whole number from 1, not '" + entry.key + "'");
    run.first = *id;
    if (entry.value.IsSequence() || entry.value.IsNull()) {
      run.vias = vias(entry, where);
    } else {
      for (const Entry& e : c_.entries(entry.value, entry.mark, where, {"count", "vias"})) {
        if (e.key == "count") run.count = count(e, where);
        if (e.key == "vias") run.vias = vias(e, where);
      }
    }
    if (run.first - 1 > std::numeric_limits<U64>::max() - run.count)
      c_.fail(entry.mark, where + " runs past the largest FEC id");
    for (const Tarn::Fib::Via& via : run.vias)
      if (!via.hop.isZero() && via.hop.hostOrder() > std::numeric_limits<U32>::max() - (run.count - 1))
        c_.fail(entry.mark, where + ": the next hops of its " + std::to_string(run.count) + " FECs run past 255.255.255.255");
    return run;
  }

  std::vector<Tarn::Fib::Via> vias(const Entry& entry, const std::string& where) {
    std::vector<Tarn::Fib::Via> out;
    if (entry.value.IsNull()) return out;
    if (!entry.value.IsSequence())
      c_.fail(entry.mark, "the vias of " + where + " must be a list such as [10.0.0.2@Ethernet1, 0.0.0.0@Vlan10]");
    for (const YAML::Node& item : entry.value) {
      YAML::Mark mark = Checker::markOf(item, entry.mark);
      const std::string word = item.IsScalar() ? item.Scalar() : std::string();
      const std::size_t at = word.find('@');
      auto hop = Pelt::IpAddr::parse(word.substr(0, at));
      if (!hop)
        c_.fail(mark, "a via of " + where + " must be a next hop with its interface such as 10.0.0.2@Ethernet1, or a "
                      "next hop alone" + Checker::shown(item));
      out.push_back({*hop, at == std::string::npos ? Pelt::IntfId() : interface(word.substr(at + 1), mark, where)});
    }
    if (out.size() > Tarn::Fib::Fec::maxVias)
      c_.fail(entry.mark, where + " has " + std::to_string(out.size()) + " vias; a FEC has at most " +
                              std::to_string(Tarn::Fib::Fec::maxVias));
    return out;
  }

  RouteRun routeRun(const Entry& entry, const std::string& where) {
    RouteRun run;
    auto prefix = Pelt::Prefix::parse(entry.key);
    if (!prefix) c_.fail(entry.mark, "a route must be a prefix such as 10.1.0.0/16, not '" + entry.key + "'");
    run.first = *prefix;
    bool hasFec = false;
    for (const Entry& e : c_.entries(entry.value, entry.mark, where, {"fec", "count", "type", "metric", "preference"})) {
      if (e.key == "fec") {
        run.fecs = fecIds(e, where);
        hasFec = true;
      }
      if (e.key == "count") run.count = count(e, where);
      if (e.key == "type") run.type = routeType(e, where);
      if (e.key == "metric") run.metric = Routing::RouteMetric(static_cast<U32>(c_.number(e, where, 0, 0xffffffffu)));
      if (e.key == "preference") run.preference = Routing::RoutePreference(static_cast<U8>(c_.number(e, where, 0, 255)));
    }
    if (!hasFec) c_.fail(entry.mark, where + " needs 'fec', the FEC it uses");
    if (run.count == 1 && run.fecs.size() > 1)
      c_.fail(entry.mark, where + " is one route and uses one FEC; a list of FECs is for routes with a count");
    const U64 step = U64(1) << (32 - run.first.len());
    if (run.first.addr().hostOrder() + (run.count - 1) * step > std::numeric_limits<U32>::max())
      c_.fail(entry.mark, where + ": " + std::to_string(run.count) + " routes of length " +
                              std::to_string(run.first.len()) + " run past 255.255.255.255");
    return run;
  }

  std::vector<Tarn::Fib::FecId> fecIds(const Entry& e, const std::string& where) {
    std::vector<Tarn::Fib::FecId> ids;
    auto one = [&](const YAML::Node& node, const YAML::Mark& mark) {
      ids.emplace_back(c_.number(Entry{"fec", node, mark}, where, 0, std::numeric_limits<U64>::max()));
    };
    if (!e.value.IsSequence()) {
      one(e.value, e.mark);
    } else {
      for (const YAML::Node& item : e.value) one(item, Checker::markOf(item, e.mark));
      if (ids.empty()) c_.fail(e.mark, "'fec' in " + where + " lists no FEC");
    }
    return ids;
  }

  Routing::Fib::RouteType routeType(const Entry& e, const std::string& where) {
    const std::string word = e.value.IsScalar() ? e.value.Scalar() : std::string();
    if (auto n = Pelt::parseDecimal(word, 0xffff)) return static_cast<Routing::Fib::RouteType>(*n);
    if (!word.empty()) {
      try {
        std::string name = "routeType" + word;
        name[9] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[9])));
        return Routing::Fib::RouteTypeInstance(Quor::String8(name));
      } catch (const Quor::RangeException&) {
      }
    }
    c_.fail(e.mark, "'type' in " + where + " must be a route type such as connected, staticConfig, ebgp or "
                    "ospfIntraArea, or a number up to 65535" + Checker::shown(e.value));
  }

  ArpRun arpRun(const Entry& entry, const std::string& where, const std::optional<VrfIds>& vrfIds) {
    ArpRun run;
    run.vrfId = Vrf::VrfIdMap::defaultVrfId;
    bool hasAddress = false, hasMac = false;
    for (const Entry& e :
         c_.entries(entry.value, entry.mark, where, {"vrf", "interface", "address", "count", "mac", "static"})) {
      if (e.key == "vrf") run.vrfId = vrfId(e, where, vrfIds);
      if (e.key == "interface") run.intfId = interface(c_.text(e, where), e.mark, where);
      if (e.key == "address") {
        run.first = address(e, where);
        hasAddress = true;
      }
      if (e.key == "count") run.count = count(e, where);
      if (e.key == "mac") {
        run.mac = c_.parsed<Pelt::EthAddr>(e, where, "a MAC address such as 00:1c:73:00:00:01");
        hasMac = true;
      }
      if (e.key == "static") run.isStatic = c_.boolean(e, where);
    }
    if (!run.intfId) c_.fail(entry.mark, where + " needs 'interface'");
    if (!hasAddress) c_.fail(entry.mark, where + " needs 'address'");
    if (!hasMac) c_.fail(entry.mark, where + " needs 'mac'");
    const U64 top = run.first.version() == Ip::ipVersion6 ? std::numeric_limits<U64>::max() : 0xffffffffu;
    if (addrLow(run.first) > top - (run.count - 1))
      c_.fail(entry.mark, where + ": its " + std::to_string(run.count) + " addresses run past the last one");
    if (macValue(run.mac) > maxMac - (run.count - 1))
      c_.fail(entry.mark, where + ": its " + std::to_string(run.count) + " MAC addresses run past ff:ff:ff:ff:ff:ff");
    return run;
  }

  Vrf::VrfIdMap::VrfId vrfId(const Entry& e, const std::string& where, const std::optional<VrfIds>& vrfIds) {
    const std::string word = e.value.IsScalar() ? e.value.Scalar() : std::string();
    if (auto n = Pelt::parseDecimal(word, maxVrfId)) return Vrf::VrfIdMap::VrfId(static_cast<U32>(*n));
    if (word == "default") return Vrf::VrfIdMap::defaultVrfId;
    if (vrfIds)
      for (const auto& [id, name] : *vrfIds)
        if (name.stringValue() == word) return id;
    c_.fail(e.mark, "'vrf' in " + where + " must be default, a VRF named in vrfIds or a VRF id up to " +
                        std::to_string(maxVrfId) + Checker::shown(e.value));
  }

  Pelt::IpGenAddr address(const Entry& e, const std::string& where) {
    const std::string word = e.value.IsScalar() ? e.value.Scalar() : std::string();
    if (auto v4 = Pelt::IpAddr::parse(word)) return *v4;
    if (auto v6 = Pelt::Ip6Addr::parse(word)) return *v6;
    c_.fail(e.mark, "'address' in " + where + " must be an IPv4 or IPv6 address" + Checker::shown(e.value));
  }

  Pelt::IntfId interface(const std::string& name, const YAML::Mark& mark, const std::string& where) {
    if (name.size() > Tarn::intfNameBytes)
      c_.fail(mark, "interface name '" + name + "' in " + where + " is longer than the " +
                        std::to_string(Tarn::intfNameBytes) + " bytes a table record holds");
    return Pelt::IntfId(name);
  }

  U32 count(const Entry& e, const std::string& where) {
    return static_cast<U32>(c_.number(e, where, 1, maxTableEntries));
  }

  template <class Run>
  void checkTotal(const std::vector<Run>& runs, const YAML::Mark& mark, const std::string& what) {
    U64 total = 0;
    for (const Run& run : runs) total += run.count;
    if (total > maxTableEntries)
      c_.fail(mark, what + " come to " + std::to_string(total) + " entries; a table holds at most " +
                        std::to_string(maxTableEntries));
  }

  void overlap(const std::vector<YAML::Mark>& marks, std::pair<std::size_t, std::size_t> both, const std::string& what,
               const std::string& where) {
    c_.fail(marks[both.second], what + " in " + where + " share entries with those of line " +
                                    std::to_string(Checker::lineOf(marks[both.first])));
  }

  template <class T>
  static std::string text(const T& value) {
    std::ostringstream out;
    out << value;
    return out.str();
  }

  const Checker& c_;
};

}  // namespace

std::map<L3::VrfName, FibScenario> readFib(const Checker& checker, const Entry& section) {
  std::map<L3::VrfName, FibScenario> fib;
  TableReader reader(checker);
  for (const Entry& e : checker.entries(section.value, section.mark, "fib")) {
    L3::VrfName name = checker.vrfName(e.key, e.mark);
    if (e.key.find('/') != std::string::npos || e.key == "." || e.key == "..")
      checker.fail(e.mark, "VRF name '" + e.key + "' in fib cannot name a directory of tables");
    fib[name] = reader.fib(e, "fib of vrf " + e.key);
  }
  return fib;
}

std::vector<ArpRun> readArp(const Checker& checker, const Entry& section, const std::optional<VrfIds>& vrfIds) {
  return TableReader(checker).arp(section, vrfIds);
}

VrfIds readVrfIds(const Checker& checker, const Entry& section) { return TableReader(checker).vrfIds(section); }

}  // namespace Sources::ScenarioYaml
