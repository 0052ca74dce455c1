#include "sources/scenario/ScenarioParser.h"

#include <limits>
#include <string>

#include "platform/pelt/ParseText.h"
#include "sources/scenario/ScenarioYaml.h"
#include "sources/scenario/TableSections.h"

namespace Sources {

namespace {

using ScenarioYaml::Checker;
using ScenarioYaml::Entry;

// What a value should have been, in the errors.
constexpr const char* routeDistinguisherText = "a route distinguisher such as 65000:100";
constexpr const char* ipv4Text = "an IPv4 address with prefix length such as 10.0.0.1/24";
constexpr const char* ipv6Text = "an IPv6 address with prefix length such as 2001:db8::1/64";

class Reader {
 public:
  explicit Reader(const Checker& checker) : c_(checker) {}

  Scenario scenario(const YAML::Node& root) {
    Scenario s;
    const std::vector<Entry> sections = c_.entries(
        root, YAML::Mark(), "the scenario", {"routing", "vrfs", "interfaces", "snmp", "fib", "arp", "vrfIds"});
    // The ARP entries may name VRFs by the ids that vrfIds gives, wherever it stands.
    for (const Entry& e : sections)
      if (e.key == "vrfIds") s.tables.vrfIds = ScenarioYaml::readVrfIds(c_, e);
    for (const Entry& e : sections) {
      if (e.key == "routing") s.routing = routing(e);
      if (e.key == "vrfs") vrfs(e, s.vrfs);
      if (e.key == "interfaces") interfaces(e, s.interfaces);
      if (e.key == "snmp") s.snmp = snmp(e);
      if (e.key == "fib") s.tables.fib = ScenarioYaml::readFib(c_, e);
      if (e.key == "arp") s.tables.arp = ScenarioYaml::readArp(c_, e, s.tables.vrfIds);
    }
    return s;
  }

 private:
  RoutingScenario routing(const Entry& section) {
    RoutingScenario r;
    for (const Entry& e : c_.entries(section.value, section.mark, "routing", {"ipv4", "ipv6"}))
      (e.key == "ipv4" ? r.ipv4 : r.ipv6) = c_.boolean(e, "routing");
    return r;
  }

  void vrfs(const Entry& section, std::map<L3::VrfName, VrfScenario>& out) {
    for (const Entry& e : c_.entries(section.value, section.mark, "vrfs")) {
      L3::VrfName name = c_.vrfName(e.key, e.mark);
      if (name.isDefault())
        c_.fail(e.mark, "the default VRF is not listed in vrfs: its routing is the top-level 'routing'");
      out[name] = vrf(e, "vrf " + e.key);
    }
  }

  VrfScenario vrf(const Entry& entry, const std::string& where) {
    VrfScenario v;
    for (const Entry& e : c_.entries(entry.value, entry.mark, where, {"routing", "published", "config", "status"})) {
      if (e.key == "routing") {
        v.routingIpv4 = false;
        for (const Entry& r : c_.entries(e.value, e.mark, "routing of " + where, {"ipv4"}))
          v.routingIpv4 = c_.boolean(r, "routing of " + where);
      }
      if (e.key == "published") v.published = c_.boolean(e, where);
      if (e.key == "config") {
        v.config.emplace();
        for (const Entry& c : c_.entries(e.value, e.mark, "config of " + where, {"routeDistinguisher"}))
          v.config = c_.parsed<Pelt::RouteDistinguisher>(c, "config of " + where, routeDistinguisherText);
      }
      if (e.key == "status") v.status = vrfStatus(e, "status of " + where);
    }
    return v;
  }

  VrfStatusScenario vrfStatus(const Entry& entry, const std::string& where) {
    VrfStatusScenario s;
    for (const Entry& e : c_.entries(entry.value, entry.mark, where, {"state", "namespace", "nsInode"})) {
      if (e.key == "state") s.state = vrfState(e, where);
      if (e.key == "namespace") s.networkNamespace = c_.text(e, where);
      if (e.key == "nsInode") s.nsInode = c_.integer<U64>(e, where);
    }
    return s;
  }

  void interfaces(const Entry& section, std::map<Pelt::IntfId, IntfScenario>& out) {
    for (const Entry& e : c_.entries(section.value, section.mark, "interfaces")) {
      if (e.key.empty()) c_.fail(e.mark, "an interface name must not be empty");
      out[Pelt::IntfId(e.key)] = intf(e, "interface " + e.key);
    }
  }

  IntfScenario intf(const Entry& entry, const std::string& where) {
    IntfScenario i;
    std::optional<Quor::Name> kind;
    std::optional<YAML::Mark> kindMark;
    for (const Entry& e : c_.entries(entry.value, entry.mark, where, {"kind", "ifIndex", "config", "status"})) {
      if (e.key == "kind") {
        kind = Quor::Name(c_.text(e, where));
        kindMark = e.mark;
      }
      if (e.key == "ifIndex") i.presence = IntfPresence{Quor::Name("ethernet"), c_.integer<S32>(e, where)};
      if (e.key == "config") i.config = intfSide(e, "config of " + where);
      if (e.key == "status") i.status = intfSide(e, "status of " + where);
    }
    if (kind && !i.presence) c_.fail(*kindMark, "'kind' in " + where + " needs 'ifIndex': an interface exists with both");
    if (kind) i.presence->kind = *kind;
    return i;
  }

  IntfSideScenario intfSide(const Entry& entry, const std::string& where) {
    IntfSideScenario side;
    side.vrf = L3::VrfName("default");
    for (const Entry& e : c_.entries(entry.value, entry.mark, where, {"vrf", "ipv4", "ipv6"})) {
      if (e.key == "vrf") side.vrf = e.value.IsNull() ? std::nullopt : std::optional(c_.vrfName(c_.text(e, where), e.mark));
      if (e.key == "ipv4") side.ipv4 = c_.parsed<Pelt::IpAddrWithMask>(e, where, ipv4Text);
      if (e.key == "ipv6") side.ipv6 = ip6Addresses(e, where);
    }
    return side;
  }

  std::set<Pelt::Ip6AddrWithMask> ip6Addresses(const Entry& entry, const std::string& where) {
    std::set<Pelt::Ip6AddrWithMask> addrs;
    if (entry.value.IsNull()) return addrs;
    if (!entry.value.IsSequence()) c_.fail(entry.mark, "'ipv6' in " + where + " must be a list of addresses");
    for (const YAML::Node& item : entry.value) {
      Entry one{"ipv6", item, Checker::markOf(item, entry.mark)};
      auto addr = c_.parsed<Pelt::Ip6AddrWithMask>(one, where, ipv6Text);
      if (!addrs.insert(addr).second) c_.fail(one.mark, "'ipv6' in " + where + " lists " + item.Scalar() + " twice");
    }
    return addrs;
  }

  SnmpScenario snmp(const Entry& section) {
    SnmpScenario s;
    for (const Entry& e : c_.entries(section.value, section.mark, "snmp", {"initialized", "coldStart"}))
      (e.key == "initialized" ? s.initialized : s.coldStart) = c_.boolean(e, "snmp");
    return s;
  }

  Ip::VrfState vrfState(const Entry& e, const std::string& where) {
    const std::string name = e.value.IsScalar() ? e.value.Scalar() : std::string();
    if (name == "initializing") return Ip::vrfStateInitializing;
    if (name == "active") return Ip::vrfStateActive;
    if (name == "deleting") return Ip::vrfStateDeleting;
    if (auto n = Pelt::parseDecimal(name, std::numeric_limits<S32>::max())) return static_cast<Ip::VrfState>(*n);
    c_.fail(e.mark, "'state' in " + where + " must be initializing, active, deleting or a number" + Checker::shown(e.value));
  }

  const Checker& c_;
};

}  // namespace

Scenario parseScenario(std::string_view text, std::string_view fileName) {
  Checker checker(fileName);
  YAML::Node root;
  try {
    root = YAML::Load(std::string(text));
  } catch (const YAML::Exception& e) {
    checker.fail(e.mark, "malformed YAML: " + e.msg);
  }
  return Reader(checker).scenario(root);
}

}  // namespace Sources
