#include "sources/scenario/ScenarioParser.h"

#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

#include "platform/pelt/ParseText.h"
#include "platform/quor/Exception.h"

namespace Sources {

namespace {

// What a value should have been, in the errors.
constexpr const char* routeDistinguisherText = "a route distinguisher such as 65000:100";
constexpr const char* ipv4Text = "an IPv4 address with prefix length such as 10.0.0.1/24";
constexpr const char* ipv6Text = "an IPv6 address with prefix length such as 2001:db8::1/64";

// One key of a YAML map with its value. A problem with the entry is reported at the key's line,
// since a value may be empty and then has no place of its own.
struct Entry {
  std::string key;
  YAML::Node value;
  YAML::Mark mark;
};

class Reader {
 public:
  explicit Reader(std::string_view fileName) : fileName_(fileName) {}

  Scenario scenario(const YAML::Node& root) {
    Scenario s;
    for (const Entry& e : entries(root, YAML::Mark(), "the scenario", {"routing", "vrfs", "interfaces", "snmp"})) {
      if (e.key == "routing") s.routing = routing(e);
      if (e.key == "vrfs") vrfs(e, s.vrfs);
      if (e.key == "interfaces") interfaces(e, s.interfaces);
      if (e.key == "snmp") s.snmp = snmp(e);
    }
    return s;
  }

  [[noreturn]] void fail(const YAML::Mark& at, const std::string& problem) const {
    throw ScenarioError(fileName_ + ":" + std::to_string(at.line + 1) + ": " + problem);
  }

 private:
  RoutingScenario routing(const Entry& section) {
    RoutingScenario r;
    for (const Entry& e : entries(section.value, section.mark, "routing", {"ipv4", "ipv6"}))
      (e.key == "ipv4" ? r.ipv4 : r.ipv6) = boolean(e, "routing");
    return r;
  }

  void vrfs(const Entry& section, std::map<L3::VrfName, VrfScenario>& out) {
    for (const Entry& e : entries(section.value, section.mark, "vrfs")) {
      L3::VrfName name = vrfName(e.key, e.mark);
      if (name.isDefault())
        fail(e.mark, "the default VRF is not listed in vrfs: its routing is the top-level 'routing'");
      out[name] = vrf(e, "vrf " + e.key);
    }
  }

  VrfScenario vrf(const Entry& entry, const std::string& where) {
    VrfScenario v;
    for (const Entry& e : entries(entry.value, entry.mark, where, {"routing", "published", "config", "status"})) {
      if (e.key == "routing") {
        v.routingIpv4 = false;
        for (const Entry& r : entries(e.value, e.mark, "routing of " + where, {"ipv4"}))
          v.routingIpv4 = boolean(r, "routing of " + where);
      }
      if (e.key == "published") v.published = boolean(e, where);
      if (e.key == "config") {
        v.config.emplace();
        for (const Entry& c : entries(e.value, e.mark, "config of " + where, {"routeDistinguisher"}))
          v.config = parsed<Pelt::RouteDistinguisher>(c, "config of " + where, routeDistinguisherText);
      }
      if (e.key == "status") v.status = vrfStatus(e, "status of " + where);
    }
    return v;
  }

  VrfStatusScenario vrfStatus(const Entry& entry, const std::string& where) {
    VrfStatusScenario s;
    for (const Entry& e : entries(entry.value, entry.mark, where, {"state", "namespace", "nsInode"})) {
      if (e.key == "state") s.state = vrfState(e, where);
      if (e.key == "namespace") s.networkNamespace = text(e, where);
      if (e.key == "nsInode") s.nsInode = integer<U64>(e, where);
    }
    return s;
  }

  void interfaces(const Entry& section, std::map<Pelt::IntfId, IntfScenario>& out) {
    for (const Entry& e : entries(section.value, section.mark, "interfaces")) {
      if (e.key.empty()) fail(e.mark, "an interface name must not be empty");
      out[Pelt::IntfId(e.key)] = intf(e, "interface " + e.key);
    }
  }

  IntfScenario intf(const Entry& entry, const std::string& where) {
    IntfScenario i;
    std::optional<Quor::Name> kind;
    std::optional<YAML::Mark> kindMark;
    for (const Entry& e : entries(entry.value, entry.mark, where, {"kind", "ifIndex", "config", "status"})) {
      if (e.key == "kind") {
        kind = Quor::Name(text(e, where));
        kindMark = e.mark;
      }
      if (e.key == "ifIndex") i.presence = IntfPresence{Quor::Name("ethernet"), integer<S32>(e, where)};
      if (e.key == "config") i.config = intfSide(e, "config of " + where);
      if (e.key == "status") i.status = intfSide(e, "status of " + where);
    }
    if (kind && !i.presence) fail(*kindMark, "'kind' in " + where + " needs 'ifIndex': an interface exists with both");
    if (kind) i.presence->kind = *kind;
    return i;
  }

  IntfSideScenario intfSide(const Entry& entry, const std::string& where) {
    IntfSideScenario side;
    side.vrf = L3::VrfName("default");
    for (const Entry& e : entries(entry.value, entry.mark, where, {"vrf", "ipv4", "ipv6"})) {
      if (e.key == "vrf") side.vrf = e.value.IsNull() ? std::nullopt : std::optional(vrfName(text(e, where), e.mark));
      if (e.key == "ipv4") side.ipv4 = parsed<Pelt::IpAddrWithMask>(e, where, ipv4Text);
      if (e.key == "ipv6") side.ipv6 = ip6Addresses(e, where);
    }
    return side;
  }

  std::set<Pelt::Ip6AddrWithMask> ip6Addresses(const Entry& entry, const std::string& where) {
    std::set<Pelt::Ip6AddrWithMask> addrs;
    if (entry.value.IsNull()) return addrs;
    if (!entry.value.IsSequence()) fail(entry.mark, "'ipv6' in " + where + " must be a list of addresses");
    for (const YAML::Node& item : entry.value) {
      Entry one{"ipv6", item, item.Mark().is_null() ? entry.mark : item.Mark()};
      auto addr = parsed<Pelt::Ip6AddrWithMask>(one, where, ipv6Text);
      if (!addrs.insert(addr).second) fail(one.mark, "'ipv6' in " + where + " lists " + item.Scalar() + " twice");
    }
    return addrs;
  }

  SnmpScenario snmp(const Entry& section) {
    SnmpScenario s;
    for (const Entry& e : entries(section.value, section.mark, "snmp", {"initialized", "coldStart"}))
      (e.key == "initialized" ? s.initialized : s.coldStart) = boolean(e, "snmp");
    return s;
  }

  // The entries of a map, in file order; an empty value is an empty map. `known` lists the keys
  // allowed, or is empty for a map of names.
  std::vector<Entry> entries(const YAML::Node& map, const YAML::Mark& at, const std::string& where,
                             std::initializer_list<std::string_view> known = {}) {
    std::vector<Entry> out;
    if (map.IsNull()) return out;
    if (!map.IsMap()) fail(markOf(map, at), where + " must be a map of keys and values");
    for (auto it = map.begin(); it != map.end(); ++it) {
      YAML::Mark mark = markOf(it->first, at);
      if (!it->first.IsScalar()) fail(mark, "a key in " + where + " must be a name");
      const std::string& key = it->first.Scalar();
      if (known.size() && std::find(known.begin(), known.end(), key) == known.end())
        fail(mark, "unknown key '" + key + "' in " + where);
      for (const Entry& seen : out)
        if (seen.key == key) fail(mark, "duplicate key '" + key + "' in " + where);
      out.push_back({key, it->second, mark});
    }
    return out;
  }

  bool boolean(const Entry& e, const std::string& where) {
    if (e.value.IsScalar() && (e.value.Scalar() == "true" || e.value.Scalar() == "false"))
      return e.value.Scalar() == "true";
    fail(e.mark, "'" + e.key + "' in " + where + " must be true or false" + shown(e.value));
  }

  std::string text(const Entry& e, const std::string& where) {
    if (!e.value.IsScalar() || e.value.Scalar().empty())
      fail(e.mark, "'" + e.key + "' in " + where + " must be a non-empty text");
    return e.value.Scalar();
  }

  template <class T>
  T integer(const Entry& e, const std::string& where) {
    const std::string digits = e.value.IsScalar() ? e.value.Scalar() : std::string();
    const char* end = digits.data() + digits.size();
    T value{};
    auto [stop, ec] = std::from_chars(digits.data(), end, value);
    if (digits.empty() || ec != std::errc() || stop != end)
      fail(e.mark, "'" + e.key + "' in " + where + " must be a whole number from " +
                       std::to_string(std::numeric_limits<T>::min()) + " to " +
                       std::to_string(std::numeric_limits<T>::max()) + shown(e.value));
    return value;
  }

  Ip::VrfState vrfState(const Entry& e, const std::string& where) {
    const std::string name = e.value.IsScalar() ? e.value.Scalar() : std::string();
    if (name == "initializing") return Ip::vrfStateInitializing;
    if (name == "active") return Ip::vrfStateActive;
    if (name == "deleting") return Ip::vrfStateDeleting;
    if (auto n = Pelt::parseDecimal(name, std::numeric_limits<S32>::max())) return static_cast<Ip::VrfState>(*n);
    fail(e.mark, "'state' in " + where + " must be initializing, active, deleting or a number" + shown(e.value));
  }

  template <class T>
  T parsed(const Entry& e, const std::string& where, const std::string& expected) {
    if (e.value.IsScalar())
      if (auto value = T::parse(e.value.Scalar())) return *value;
    fail(e.mark, "'" + e.key + "' in " + where + " must be " + expected + shown(e.value));
  }

  L3::VrfName vrfName(const std::string& name, const YAML::Mark& at) {
    if (name.empty()) fail(at, "a VRF name must not be empty");
    try {
      return L3::VrfName(name);
    } catch (const Quor::RangeException& e) {
      fail(at, "VRF name of " + std::to_string(name.size()) + " bytes: " + e.text());
    }
  }

  static std::string shown(const YAML::Node& value) {
    return value.IsScalar() ? ", not '" + value.Scalar() + "'" : std::string();
  }

  static YAML::Mark markOf(const YAML::Node& node, const YAML::Mark& fallback) {
    return node.Mark().is_null() ? fallback : node.Mark();
  }

  std::string fileName_;
};

}  // namespace

Scenario parseScenario(std::string_view text, std::string_view fileName) {
  Reader reader(fileName);
  YAML::Node root;
  try {
    root = YAML::Load(std::string(text));
  } catch (const YAML::Exception& e) {
    reader.fail(e.mark, "malformed YAML: " + e.msg);
  }
  return reader.scenario(root);
}

}  // namespace Sources
