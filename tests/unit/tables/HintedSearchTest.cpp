// A hint never changes an answer: every hinted table answers a GET and a GETNEXT of any index as it
// does with hints off, when every search scans from the first row. Through the agent's helpers, over
// realistic rows of each table, thousands of seeded indexes per table: the rows' own, the rows' with
// a sub-identifier moved, indexes built from the components' kinds with the rows' values or the
// boundaries (0, 255, 256, 2^31, 2^32 - 1, 2^32, 2^64 - 1), cut short, run long, with a wrong string
// length, and noise. A hint starts a search at the row it names, at the first row not below its key
// when that key writes back exactly the request's index (a GET's search then ends after the last key
// with that index), or at the first row.
//
// Where the rows are in index order, the answers are also those of the table's walk: a GETNEXT gives
// the first instance above the request, a GET the instance itself or none. The route table of the
// context "tos" holds keys with a type of service other than 0, which the index does not show: its
// rows are not in index order and share indexes, and only the comparison with hints off holds there.
// inetCidrRouteTable shows the IPv4 rows of ipCidrRouteTable, then the IPv6 rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "AgentRequests.h"
#include "MibTree.h"
#include "frontend/IpBase.h"
#include "frontend/IpForward.h"
#include "frontend/IteratorHint.h"
#include "frontend/VrfBase.h"
#include "platform/morvane/Store.h"
#include "platform/snmp/ContextTeardown.h"
#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/TableEntity.h"

namespace {

using TableTest::Oid;
using TableTest::oidOf;

constexpr int probesPerTable = 2500;
constexpr std::uint64_t seed = 20261124;

// How a component of an index reads in sub-identifiers: one number, four octets, or a length and
// that many octets.
enum class Component { number, address, octets };

struct Table {
  const char* name;
  const char* context;
  Oid entry;
  std::vector<Component> index;
  bool indexOrder;
};

const Table tables[] = {
    {"ipCidrRouteTable", "", oidOf("1.3.6.1.2.1.4.24.4.1"),
     {Component::address, Component::address, Component::number, Component::address}, true},
    {"ipCidrRouteTable", "tos", oidOf("1.3.6.1.2.1.4.24.4.1"),
     {Component::address, Component::address, Component::number, Component::address}, false},
    {"inetCidrRouteTable", "", oidOf("1.3.6.1.2.1.4.24.7.1"),
     {Component::number, Component::octets, Component::number, Component::octets, Component::number,
      Component::octets},
     true},
    {"inetCidrRouteTable", "tos", oidOf("1.3.6.1.2.1.4.24.7.1"),
     {Component::number, Component::octets, Component::number, Component::octets, Component::number,
      Component::octets},
     false},
    {"ipAddrTable", "", oidOf("1.3.6.1.2.1.4.20.1"), {Component::address}, true},
    {"ipNetToMediaTable", "", oidOf("1.3.6.1.2.1.4.22.1"), {Component::number, Component::address}, true},
    {"ipAddressPrefixTable", "", oidOf("1.3.6.1.2.1.4.32.1"),
     {Component::number, Component::number, Component::octets, Component::number}, true},
    {"ipAddressTable", "", oidOf("1.3.6.1.2.1.4.34.1"), {Component::number, Component::octets}, true},
    {"oskelVrfTable", "", oidOf("1.3.6.1.4.1.48213.3.18.1.1.1"), {Component::octets}, true},
    {"oskelVrfIfTable", "", oidOf("1.3.6.1.4.1.48213.3.18.1.2.1"), {Component::number}, true},
};

const oid boundaries[] = {0,           1,           2,           3,          4,
                          127,         128,         255,         256,        65535,
                          2147483647,  2147483648,  4294967295,  4294967296, 9223372036854775807ull,
                          9223372036854775808ull,   18446744073709551615ull};

// Indexes to ask for, drawn from the rows' indexes and the kinds of the table's components.
class Probes {
 public:
  Probes(const Table& table, const std::vector<Oid>& rows, std::uint64_t from)
      : table_(table), rows_(rows), random_(from) {
    for (const Oid& row : rows_) columns_.push_back(row[table_.entry.size()]);
  }

  // A name below the table, mostly a column and an index.
  Oid next() {
    Oid name = table_.entry;
    const unsigned shape = below(100);
    if (shape < 3) return Oid(table_.entry.begin(), table_.entry.end() - 1);  // the table
    if (shape < 6) return name;                                             // the entry
    name.push_back(shape < 90 ? columns_[below(columns_.size())] : below(columns_.back() + 3));
    Oid index = this->index();
    // The agent library holds at most 128 sub-identifiers in a name.
    index.resize(std::min(index.size(), MAX_OID_LEN - name.size()));
    name.insert(name.end(), index.begin(), index.end());
    return name;
  }

 private:
  Oid index() {
    const unsigned kind = below(100);
    if (kind < 20) return rowIndex(rows_[below(rows_.size())]);
    if (kind < 90) {
      Oid index;
      for (std::size_t i = 0; i < table_.index.size(); ++i) append(index, i);
      if (kind >= 65) malform(index);
      return index;
    }
    Oid noise(below(16));
    for (oid& part : noise) part = below(2) ? below(20) : boundary();
    return noise;
  }

  Oid rowIndex(const Oid& row) const { return Oid(row.begin() + table_.entry.size() + 1, row.end()); }

  // Component `i`: that of a row, one of its sub-identifiers moved, or made up.
  void append(Oid& index, std::size_t i) {
    Oid part = components(rowIndex(rows_[below(rows_.size())]))[i];
    const unsigned how = below(10);
    if (how >= 6 && how < 8 && !part.empty()) {
      oid& moved = part[below(part.size())];
      moved = below(3) == 0 ? boundary() : moved + (below(2) ? 1 : -1);
    } else if (how >= 8) {
      part = madeUp(table_.index[i]);
    }
    index.insert(index.end(), part.begin(), part.end());
  }

  Oid madeUp(Component component) {
    switch (component) {
      case Component::number: return {below(2) ? below(10) : boundary()};
      case Component::address: return {octet(), octet(), octet(), octet()};
      case Component::octets: {
        Oid part{below(18)};
        for (oid i = 0; i < part[0]; ++i) part.push_back(octet());
        return part;
      }
    }
    return {};
  }

  // Cut short, run long, or one sub-identifier (a string's length, perhaps) set anew.
  void malform(Oid& index) {
    switch (below(3)) {
      case 0: index.resize(below(index.size() + 1)); break;
      case 1:
        for (unsigned n = 1 + below(3); n; --n) index.push_back(below(2) ? below(20) : boundary());
        break;
      default:
        if (!index.empty()) index[below(index.size())] = below(2) ? below(20) : boundary();
    }
  }

  // The sub-identifiers of each component of a well-formed index.
  std::vector<Oid> components(const Oid& index) const {
    std::vector<Oid> parts;
    auto at = index.begin();
    for (Component component : table_.index) {
      const std::size_t length = component == Component::number    ? 1
                                 : component == Component::address ? 4
                                                                   : 1 + *at;
      parts.emplace_back(at, at + static_cast<std::ptrdiff_t>(length));
      at += static_cast<std::ptrdiff_t>(length);
    }
    return parts;
  }

  oid octet() { return below(8) ? below(256) : boundary(); }
  oid boundary() { return boundaries[below(std::size(boundaries))]; }
  oid below(std::size_t bound) { return std::uniform_int_distribution<oid>(0, bound - 1)(random_); }

  const Table& table_;
  const std::vector<Oid>& rows_;
  std::vector<oid> columns_;
  std::mt19937_64 random_;
};

// A response as text, varbind by varbind, for comparison and for the message of a failure.
std::string describe(const TableTest::Response& response) {
  std::ostringstream text;
  text << "error " << response.errorStatus << "/" << response.errorIndex;
  for (const TableTest::Varbind& v : response.varbinds) {
    text << "; " << TableTest::textOf(v.name) << " type " << int(v.type) << " = " << v.integer << " "
         << v.counter64 << " " << TableTest::textOf(v.objectId) << " '";
    for (unsigned char c : v.octets) text << int(c) << ".";
    text << "'";
  }
  return text.str();
}

// Whether `response` is what the walk of a table in index order says: for a GET the instance `name`
// or none, for a GETNEXT the first instance above `name`, or an object beyond the table.
bool answeredAsWalked(const std::vector<TableTest::Varbind>& walk, const Oid& name, bool getNext,
                      const TableTest::Response& response, const Oid& entry) {
  if (response.varbinds.size() != 1) return false;
  const auto above = [](const TableTest::Varbind& v, const Oid& n) { return v.name < n; };
  auto at = std::lower_bound(walk.begin(), walk.end(), name, above);
  if (getNext && at != walk.end() && at->name == name) ++at;
  const TableTest::Varbind& answer = response.varbinds[0];
  if (at != walk.end() && (getNext || at->name == name)) return describe({0, 0, {*at}}) == describe(response);
  if (getNext) return answer.type == SNMP_ENDOFMIBVIEW || !TableTest::isBelow(answer.name, entry);
  return answer.type == SNMP_NOSUCHINSTANCE || answer.type == SNMP_NOSUCHOBJECT;
}

class HintedSearchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    arp->mount("", Tarn::TableType::inProcess);
    addRoutes(*tree.ipForwardMib);
    IpSnmp::IpForwardMib& tos = tree.vrfIpForwardMib("tos");
    addRoutes(tos);
    TableTest::addRoute(tos, "10.0.1.0", 24, "192.0.2.0", 1, 0, 0, 4);
    TableTest::addRoute(tos, "10.0.1.0", 24, "192.0.2.1", 1, 0, 0, 8);
    TableTest::addRoute(tos, "10.0.2.0", 24, "192.0.2.9", 1, 0, 0, 255);
    TableTest::addRoute(tos, "10.9.0.0", 16, "192.0.2.3", 1, 0, 0, 4294967295u);

    for (const auto& [address, length, ifIndex] : {std::tuple{"10.0.1.1", 24u, 1u}, {"10.0.2.1", 24u, 2u},
                                                    {"10.0.2.9", 32u, 2u}, {"192.0.2.7", 30u, 3u},
                                                    {"255.255.255.254", 31u, 2147483647u}})
      TableTest::addIpv4Address(*tree.ipMib, address, length, ifIndex);
    TableTest::addIpv6Address(*tree.ipMib, "2001:db8::1", 64, 2);
    TableTest::addIpv6Address(*tree.ipMib, "fe80::1", 10, 1);
    TableTest::addIpv6Address(*tree.ipMib, "::1", 128, 1);

    for (const auto& [ifIndex, address] : {std::pair{1u, "10.0.1.5"}, {1u, "10.0.1.50"}, {2u, "10.0.2.5"},
                                           {2u, "10.0.2.255"}, {1000u, "0.0.0.0"}, {2147483647u, "255.255.255.255"}})
      tree.ipMib->arpTableIs({ifIndex, Pelt::IpAddr(address)}, Pelt::IntfId("Ethernet1"), arp, Vrf::VrfIdMap::VrfId(0));

    for (const char* name : {"a", "b", "red", "blue", "green", "vrf0001", "vrf-with-a-longer-name"})
      tree.ipVrfMib->vrfTableIs(Snmp::String(name), nullptr, nullptr)->vrfRoutingStatusIs(Quor::Name(name), nullptr);
    for (const auto& [ifIndex, vrf] : {std::pair{1u, ""}, {7u, "red"}, {300u, "blue"}, {2147483647u, "green"}})
      tree.ipVrfMib->vrfIfTableIs(ifIndex)->vrfNameIs(Snmp::String(vrf));

    init_IpBase("");
    init_IpForward("");
    init_IpForward("tos");
    init_VrfBase("");
  }

  void TearDown() override {
    iteratorHintsEnabledIs(true);
    unregister_IpForward("tos");
    shutdown_tree_in_context("tos");
    clear_cache_in_context("tos");
    Snmp::unregisterHandlersOfThisLibrary();
  }

  // Routes as the route machine makes them: the default route, ECMP next hops, a prefix split in
  // two, host routes and the highest address.
  static void addRoutes(IpSnmp::IpForwardMib& mib) {
    TableTest::addRoute(mib, "0.0.0.0", 0, "192.0.2.254");
    for (int i = 0; i < 8; ++i) {
      const std::string dest = "10.0." + std::to_string(i) + ".0";
      TableTest::addRoute(mib, dest.c_str(), 24, "192.0.2.1");
      if (i % 3 == 0) {
        TableTest::addRoute(mib, dest.c_str(), 24, "192.0.2.2");
        TableTest::addRoute(mib, dest.c_str(), 24, "192.0.2.9");
      }
    }
    TableTest::addRoute(mib, "10.0.3.0", 25, "192.0.2.1");
    TableTest::addRoute(mib, "10.0.3.128", 25, "192.0.2.1");
    TableTest::addRoute(mib, "10.1.0.1", 32, "0.0.0.0");
    TableTest::addRoute(mib, "172.16.0.0", 12, "192.0.2.3");
    TableTest::addRoute(mib, "255.255.255.255", 32, "255.255.255.255");
    // IPv6: connected, ECMP over a global and two link-local next hops of one address, the highest.
    TableTest::addRoute6(mib, "::", 0, "2001:db8::fe");
    TableTest::addRoute6(mib, "2001:db8:1::", 64, "::", 2);
    for (U32 ifIndex : {1u, 2u, 4294967295u}) TableTest::addRoute6(mib, "2001:db8:2::", 48, "fe80::1", ifIndex);
    TableTest::addRoute6(mib, "2001:db8:2::", 48, "2001:db8::9");
    TableTest::addRoute6(mib, "2001:db8:2::", 56, "fe80::2", 3);
    TableTest::addRoute6(mib, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", 128, "ffff::1");
  }

  Quor::Ptr<Arp::Table::Status> arp = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
  TableTest::MibTree tree;
  // The forwarding scalars answer, so that a GETNEXT past a table finds the next object.
  Morvane::Store store = Morvane::buildStore(tree.root);
};

TEST_F(HintedSearchTest, EveryIndexIsAnsweredAsByAScanFromTheFirstRow) {
  for (const Table& table : tables) {
    SCOPED_TRACE(std::string(table.name) + " in context '" + table.context + "'");
    const TableTest::AgentRequests agent(table.context);
    iteratorHintsEnabledIs(false);
    const std::vector<TableTest::Varbind> walk = agent.walk(table.entry);
    iteratorHintsEnabledIs(true);
    ASSERT_GT(walk.size(), 1u);
    std::vector<Oid> rows;
    for (const TableTest::Varbind& v : walk) rows.push_back(v.name);
    if (table.indexOrder) {
      ASSERT_TRUE(std::is_sorted(rows.begin(), rows.end()));
    }

    Probes probes(table, rows, seed);
    int failures = 0;
    for (int i = 0; i < probesPerTable && failures < 5; ++i) {
      const Oid name = probes.next();
      for (const bool getNext : {false, true}) {
        const auto ask = [&](bool hints) {
          iteratorHintsEnabledIs(hints);
          return getNext ? agent.getNext({name}) : agent.get({name});
        };
        const TableTest::Response hinted = ask(true);
        const TableTest::Response scanned = ask(false);
        const bool asScanned = describe(hinted) == describe(scanned);
        const bool asWalked = !table.indexOrder || answeredAsWalked(walk, name, getNext, hinted, table.entry);
        if (!asScanned || !asWalked) {
          ++failures;
          ADD_FAILURE() << (getNext ? "GETNEXT " : "GET ") << TableTest::textOf(name) << " (seed " << seed << ", probe "
                        << i << ")" << (asWalked ? "" : ", not the walk's answer") << "\n  with hints: "
                        << describe(hinted) << "\n  scanned:    " << describe(scanned);
        }
      }
    }
  }
}

}  // namespace
