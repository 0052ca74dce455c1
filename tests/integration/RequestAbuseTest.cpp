// Requests that no manager should send, against the real snmpd: indexes of the wrong length, type or
// range, sub-identifiers at their limit and beyond, OIDs longer than an OID may be, GETBULK with
// repetition counts of any size and sign, and a SET of every object with its own type and another.
// Each gets its documented answer (noSuchInstance or noSuchObject for a GET, the next object for a
// GETNEXT, notWritable or noCreation for a SET, a message that cannot be parsed dropped and counted),
// never a general error, and the agent goes on answering. The tools send what they can build; the
// rest is encoded by hand (RawSnmp.h).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "RawSnmp.h"
#include "SharedAgentTest.h"

namespace IntegrationTest {
namespace {

// Addresses in the default context and in VRF red, so that the IP tables have rows in both.
const char* const addressesScenario =
    "routing:\n  ipv4: true\n  ipv6: true\n"
    "vrfs:\n  red:\n    routing: { ipv4: true }\n    published: true\n"
    "    config: { routeDistinguisher: \"65000:100\" }\n    status: { state: active }\n"
    "interfaces:\n"
    "  Ethernet1:\n    ifIndex: 1\n"
    "    config: { ipv4: 10.0.1.1/24, ipv6: [2001:db8:0:1::1/64] }\n"
    "    status: { ipv4: 10.0.1.1/24, ipv6: [2001:db8:0:1::1/64] }\n"
    "  Ethernet2:\n    ifIndex: 2\n"
    "    config: { vrf: red, ipv4: 10.0.2.1/24 }\n    status: { vrf: red, ipv4: 10.0.2.1/24 }\n"
    "snmp:\n  initialized: true\n";

const std::string ipForwardingObject = ".1.3.6.1.2.1.4.1";
const std::string ipForwarding = ipForwardingObject + ".0";
const std::string ipAddrEntry = ".1.3.6.1.2.1.4.20.1";
const std::string ipNetToMediaEntry = ".1.3.6.1.2.1.4.22.1";
const std::string ipCidrRouteEntry = ".1.3.6.1.2.1.4.24.4.1";
const std::string ipAddressPrefixEntry = ".1.3.6.1.2.1.4.32.1";
const std::string ipAddressEntry = ".1.3.6.1.2.1.4.34.1";
const std::string vrfEntry = ".1.3.6.1.4.1.48213.3.18.1.1.1";
const std::string vrfIfEntry = ".1.3.6.1.4.1.48213.3.18.1.2.1";
const std::string statsEntry = ".1.3.6.1.4.1.48213.3.1.1.1.1";
const std::string ipv6IpForwarding = ".1.3.6.1.2.1.4.25.0";
const std::string ipCidrRouteNumber = ".1.3.6.1.2.1.4.24.3.0";
// The objects of the plug-in, walked for the SETs.
const std::string ipGroup = ".1.3.6.1.2.1.4";
const std::string privateTables = ".1.3.6.1.4.1.48213.3";
// snmpInASNParseErrs: the messages that the agent could not parse.
const std::string asnParseErrors = ".1.3.6.1.2.1.11.6.0";
// The v2c communities of the default context and of VRF red, for hand-made messages.
const char* const communities[] = {"public", "public@red"};

std::vector<unsigned long> numbersOf(const std::string& oid) {
  std::vector<unsigned long> numbers;
  std::istringstream in(oid);
  for (std::string part; std::getline(in, part, '.');)
    if (!part.empty()) numbers.push_back(std::stoul(part));
  return numbers;
}

std::string repeated(const std::string& part, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += part;
  return text;
}

// OIDs below the plug-in's tables that name no instance: too short, too long, of the wrong type or
// out of range.
std::vector<std::string> malformedInstances() {
  const std::string max = ".4294967295";
  return {
      ipAddrEntry + ".1.10.0.1",                          // an address of three octets
      ipAddrEntry + ".1.10.0.1.1.7",                      // of five
      ipAddrEntry + ".1.10.0.1.256",                      // an octet out of range
      ipAddrEntry + ".1" + repeated(max, 4),              // sub-identifiers at their limit
      ipAddrEntry + ".1" + repeated(".1", 118),           // 128 sub-identifiers, the most an OID has
      ipAddressEntry + ".3.1.16" + repeated(".10", 16),   // an IPv4 address of sixteen octets
      ipAddressEntry + ".3.2.4.32.1.13.184",              // an IPv6 address of four
      ipAddressEntry + ".3.1.200.10.0.1.1",               // a length beyond the sub-identifiers
      ipAddressEntry + ".3.7.4.10.0.1.1",                 // an address type that does not exist
      ipAddressEntry + ".3.1.4.10.0.1.1000",              // an octet out of range
      ipAddressPrefixEntry + ".5.1.1.4.10.0.1.0",         // no prefix length
      ipAddressPrefixEntry + ".5.2147483648.1.4.10.0.1.0.24",  // an ifIndex beyond INTEGER
      ipAddressPrefixEntry + ".5.1.1.4.10.0.1.0" + max,   // a prefix length at the limit
      ipCidrRouteEntry + ".1.10.0.1.0.255.255.255.0.0",   // no next hop
      ipCidrRouteEntry + ".1.10.0.1.0.255.255.255.0" + max + ".0.0.0.0",  // a tos beyond INTEGER
      ipNetToMediaEntry + ".2" + max + ".10.0.1.1",       // an ifIndex beyond INTEGER
      ipNetToMediaEntry + ".2.1.10.0.1",                  // an address of three octets
      vrfEntry + ".2.200.114.101.100",                    // a name shorter than its length
      vrfEntry + ".2.3.114.101.100.1",                    // and longer
      vrfEntry + ".2.101" + repeated(".118", 101),        // a name of 101 bytes
      vrfIfEntry + ".1" + max,                            // an ifIndex beyond INTEGER
      statsEntry + ".3.7",                                // an IP version that does not exist
      statsEntry + ".3.1.1",                              // an index too long
      statsEntry + ".3",                                  // no index at all
      ipNetToMediaEntry + ".2.1.10.0.1.1.5",              // an address of five octets
      ipCidrRouteEntry + ".1.10.0.1.0.255.255.255.0.0.10.0.1.1.9",  // a next hop of five octets
      ipAddressPrefixEntry + ".5.1.3.4.10.0.1.0.24",      // an address type that the table does not hold
      ipAddressPrefixEntry + ".5.1.2.4.10.0.1.0.24",      // an IPv6 prefix of four octets
      vrfIfEntry + ".1.2.1",                              // an index too long
  };
}

// Columns that the tables do not serve: a GET is noSuchObject.
std::vector<std::string> absentColumns() {
  return {ipAddrEntry + ".0.10.0.1.1",         ipAddrEntry + ".6.10.0.1.1",
          ipAddressPrefixEntry + ".1.1.1.4.10.0.1.0.24", ipAddressPrefixEntry + ".10.1.1.4.10.0.1.0.24",
          ipAddressEntry + ".12.1.4.10.0.1.1", ipCidrRouteEntry + ".17.10.0.1.0.255.255.255.0.0.0.0.0.0",
          vrfIfEntry + ".2.1"};
}

// `oid` with `tail` after it.
RawSnmp::Oid below(const std::string& oid, const RawSnmp::Oid& tail) {
  RawSnmp::Oid numbers = RawSnmp::parseOid(oid);
  numbers.insert(numbers.end(), tail.begin(), tail.end());
  return numbers;
}

RawSnmp::Request request(const std::string& community, std::uint8_t pdu, std::int32_t id,
                         const std::vector<RawSnmp::Oid>& oids, const RawSnmp::Value& value = {}) {
  RawSnmp::Request r;
  r.community = community;
  r.pdu = pdu;
  r.requestId = id;
  for (const RawSnmp::Oid& oid : oids) r.varbinds.push_back({oid, value});
  return r;
}

// A value of the type that the tools print for an object.
RawSnmp::Value valueOfType(const std::string& type) {
  using namespace RawSnmp;
  if (type == "INTEGER") return integer(1);
  if (type == "STRING" || type == "Hex-STRING") return octets("x");
  if (type == "IpAddress") return {asnIpAddress, std::string("\x0a\x00\x01\x01", 4)};
  if (type == "Gauge32") return {asnGauge32, "\x01"};
  if (type == "Counter32") return {asnCounter32, "\x01"};
  if (type == "Counter64") return {asnCounter64, "\x01"};
  if (type == "Timeticks") return {asnTimeTicks, "\x01"};
  if (type == "OID") return objectId({0, 0});
  ADD_FAILURE() << "no value for an object of type " << type;
  return integer(1);
}

std::string describe(const RawSnmp::Oid& oid) {
  std::string text;
  for (std::uint64_t n : oid) text += "." + std::to_string(n);
  return text;
}

class RequestAbuseTest : public SharedAgentTest<RequestAbuseTest> {
 public:
  static std::string scenario() { return addressesScenario; }

 protected:
  void TearDown() override {
    SharedAgentTest::TearDown();
    if (!agent || !agent->ready()) return;
    // Whatever came before, the agent still answers.
    const std::optional<Varbind> forwarding = agent->tools().getOne(Credentials::v2c("public"), ipForwarding);
    EXPECT_TRUE(forwarding && forwarding->type == "INTEGER") << agent->diagnostics();
    EXPECT_TRUE(agent->running());
  }

  struct Context {
    Credentials who;
    bool isVrf;
  };
  static std::vector<Context> everyContext() {
    return {{Credentials::v2c("public"), false}, {Credentials::v3("red"), true}};
  }
  // The v2c community of the context, for hand-made messages.
  static std::string communityOf(bool isVrf) { return isVrf ? "public@red" : "public"; }

  // The messages that the agent could not parse so far.
  static long parseErrors() {
    const std::optional<Varbind> count = agent->tools().getOne(Credentials::v2c("public"), asnParseErrors);
    EXPECT_TRUE(count && count->type == "Counter32");
    return count && count->type == "Counter32" ? std::stol(count->value) : -1;
  }

  // snmpbulkget with `nonRepeaters` and `maxRepetitions` (-Cn, -Cr).
  static ToolOutput bulkGet(const Credentials& who, int nonRepeaters, long maxRepetitions,
                            const std::vector<std::string>& oids) {
    std::vector<std::string> argv{"snmpbulkget", "-m", "", "-On", "-t", "3", "-r", "1",
                                  "-Cn" + std::to_string(nonRepeaters), "-Cr" + std::to_string(maxRepetitions)};
    argv.insert(argv.end(), who.args.begin(), who.args.end());
    argv.push_back(agent->address());
    argv.insert(argv.end(), oids.begin(), oids.end());
    return parseToolOutput(runCommand(argv));
  }
};

TEST_F(RequestAbuseTest, MalformedIndexesAreNoSuchInstance) {
  for (const auto& [who, isVrf] : everyContext()) {
    for (const std::string& oid : malformedInstances()) {
      ToolOutput out = agent->tools().get(who, {oid});
      EXPECT_TRUE(out.error.empty() && !out.timedOut) << oid << ": " << out.run.output;
      ASSERT_EQ(out.varbinds.size(), 1u) << oid << ": " << out.run.output;
      // The VRF tables exist in the default context only.
      const bool vrfTable = oid.starts_with(vrfEntry) || oid.starts_with(vrfIfEntry);
      EXPECT_EQ(out.varbinds[0].type, isVrf && vrfTable ? "noSuchObject" : "noSuchInstance")
          << oid << ": " << out.run.output;
    }
  }
}

TEST_F(RequestAbuseTest, ColumnsThatTablesDoNotServeAreNoSuchObject) {
  for (const std::string& oid : absentColumns()) {
    ToolOutput out = agent->tools().get(Credentials::v2c("public"), {oid});
    ASSERT_EQ(out.varbinds.size(), 1u) << oid << ": " << out.run.output;
    EXPECT_EQ(out.varbinds[0].type, "noSuchObject") << oid << ": " << out.run.output;
  }
}

TEST_F(RequestAbuseTest, GetNextFromAMalformedIndexAnswersTheNextObject) {
  std::vector<std::string> from = malformedInstances();
  from.insert(from.end(), {ipAddrEntry + ".0", ipAddressEntry + ".3.255", vrfIfEntry + ".99"});
  for (const auto& [who, isVrf] : everyContext()) {
    for (const std::string& oid : from) {
      ToolOutput out = agent->tools().getNext(who, {oid});
      EXPECT_TRUE(out.error.empty() && !out.timedOut) << oid << ": " << out.run.output;
      ASSERT_EQ(out.varbinds.size(), 1u) << oid << ": " << out.run.output;
      if (out.varbinds[0].type != "endOfMibView") {
        EXPECT_GT(numbersOf(out.varbinds[0].oid), numbersOf(oid)) << oid << ": " << out.run.output;
      }
    }
  }
}

TEST_F(RequestAbuseTest, OidsBeyondWhatAnOidHoldsAreDroppedAsUnparsable) {
  using namespace RawSnmp;
  const std::vector<Oid> beyond = {
      below(ipAddrEntry + ".1", Oid(119, 1)),                  // 129 sub-identifiers, one too many
      below(ipCidrRouteEntry + ".1", Oid(1000, 255)),          // over a thousand
      below(ipAddressEntry + ".3.1.4.10.0.1", {1ull << 32}),   // a sub-identifier of 33 bits
      below(vrfEntry + ".2.3.114.101", {~0ull}),               // of 64
      below(ipForwardingObject, {1ull << 32}),
  };
  const long before = parseErrors();
  Client client(agent->address());
  std::int32_t sent = 0;
  for (const char* community : communities) {
    for (std::uint8_t pdu : {getRequest, getNextRequest, getBulkRequest, setRequest}) {
      for (const Oid& oid : beyond) {
        Request bad = request(community, pdu, ++sent, {oid}, pdu == setRequest ? integer(1) : Value{});
        if (pdu == getBulkRequest) bad.second = 10;
        client.send(encode(bad));
      }
    }
  }
  // The agent answers in the order it receives: the answer to a good request sent last shows that
  // none came for those before it.
  const Request good = request("public", getRequest, sent + 1, {parseOid(ipForwarding)});
  client.send(encode(good));
  const std::optional<Response> first = client.receive(5.0);
  ASSERT_TRUE(first) << "no answer to a good request after the bad ones";
  EXPECT_EQ(first->requestId, good.requestId) << "an OID beyond the limits was answered";
  EXPECT_EQ(parseErrors() - before, sent);

  // The longest OID there is still gets its answer.
  const Oid longest = below(ipAddrEntry + ".1", Oid(118, 4294967295u));
  ASSERT_EQ(longest.size(), 128u);
  for (const char* community : communities) {
    std::optional<Response> get = client.exchange(request(community, getRequest, ++sent, {longest}));
    ASSERT_TRUE(get && get->varbinds.size() == 1) << community;
    EXPECT_EQ(get->varbinds[0].second.tag, noSuchInstance) << community;
    std::optional<Response> next = client.exchange(request(community, getNextRequest, ++sent, {longest}));
    ASSERT_TRUE(next && next->varbinds.size() == 1) << community;
    EXPECT_GT(next->varbinds[0].first, longest) << community;
    std::optional<Response> set = client.exchange(request(community, setRequest, ++sent, {longest}, integer(1)));
    ASSERT_TRUE(set) << community;
    EXPECT_EQ(set->errorStatus, notWritable) << community;
  }
}

TEST_F(RequestAbuseTest, GetBulkOfAnyCountsStaysWithinThemAndInOrder) {
  using namespace RawSnmp;
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
  const std::vector<Oid> from = {parseOid(ipForwardingObject), parseOid(ipAddrEntry), parseOid(privateTables)};
  const std::pair<std::int64_t, std::int64_t> counts[] = {
      {0, most},  {1, most}, {2, most}, {3, most},       {5, most}, {most, most},
      {-5, 10},   {0, -5},   {1, -5},   {least, least}, {0, 0}};
  Client client(agent->address());
  std::int32_t id = 0;
  for (const char* community : communities) {
    for (const auto& [nonRepeaters, maxRepetitions] : counts) {
      SCOPED_TRACE(std::string(community) + " non-repeaters " + std::to_string(nonRepeaters) + " max-repetitions " +
                   std::to_string(maxRepetitions));
      Request bulk = request(community, getBulkRequest, ++id, from);
      bulk.first = nonRepeaters;
      bulk.second = maxRepetitions;
      const std::optional<Response> response = client.exchange(bulk);
      ASSERT_TRUE(response);
      EXPECT_EQ(response->errorStatus, noError);
      // Negative counts count as zero; the non-repeaters are answered once each, in front.
      const auto single = static_cast<std::size_t>(
          std::clamp<std::int64_t>(nonRepeaters, 0, static_cast<std::int64_t>(from.size())));
      const std::size_t repeaters = from.size() - single;
      const std::size_t rounds = maxRepetitions > 0 && repeaters ? (response->varbinds.size() - single) / repeaters : 0;
      ASSERT_GE(response->varbinds.size(), single);
      EXPECT_EQ(response->varbinds.size(), single + rounds * repeaters) << "a round cut short";
      if (maxRepetitions > 0 && repeaters) {
        EXPECT_GE(rounds, 1u);
      }
      EXPECT_LE(static_cast<std::int64_t>(rounds), std::max<std::int64_t>(maxRepetitions, 0));
      for (std::size_t i = 0; i < single; ++i) EXPECT_GT(response->varbinds[i].first, from[i]);
      // Each repeater's column climbs from its start until the end of the view.
      for (std::size_t column = 0; column < repeaters; ++column) {
        Oid last = from[single + column];
        for (std::size_t at = single + column; at < response->varbinds.size(); at += repeaters) {
          const auto& [oid, value] = response->varbinds[at];
          if (value.tag == endOfMibView) break;
          EXPECT_GT(oid, last) << describe(oid);
          last = oid;
        }
      }
    }
  }
  // Past the last object of a VRF's context: one round of endOfMibView, not two billion.
  Request pastTheEnd =
      request("public@red", getBulkRequest, ++id, {below(privateTables, {99}), parseOid(".1.3.6.1.4.1.48213.4")});
  pastTheEnd.second = most;
  const std::optional<Response> end = client.exchange(pastTheEnd);
  ASSERT_TRUE(end);
  ASSERT_EQ(end->varbinds.size(), 2u);
  EXPECT_EQ(end->varbinds[0].second.tag, endOfMibView);
  EXPECT_EQ(end->varbinds[1].second.tag, endOfMibView);
}

TEST_F(RequestAbuseTest, GetBulkThroughTheToolsWithHugeRepetitionsAnswersEveryContext) {
  for (const auto& [who, isVrf] : everyContext()) {
    for (long repetitions : {2147483647L, 100000L}) {
      ToolOutput out = bulkGet(who, 1, repetitions, {ipForwardingObject, ipAddrEntry, ipAddressEntry + ".3.1.200"});
      EXPECT_TRUE(out.error.empty() && !out.timedOut) << out.run.output;
      ASSERT_FALSE(out.varbinds.empty()) << out.run.output;
      EXPECT_EQ(out.varbinds[0].oid, ipForwarding) << out.run.output;
    }
    // Non-repeaters first, each answered once, then the repeater.
    ToolOutput out = bulkGet(who, 2, 2147483647L, {ipForwardingObject, ipForwardingObject, statsEntry});
    EXPECT_TRUE(out.error.empty() && !out.timedOut) << out.run.output;
    ASSERT_GE(out.varbinds.size(), 3u) << out.run.output;
    EXPECT_EQ(out.varbinds[0].oid, ipForwarding) << out.run.output;
    EXPECT_EQ(out.varbinds[1].oid, ipForwarding) << out.run.output;
  }
}

TEST_F(RequestAbuseTest, SetOfEveryObjectIsNotWritableWhateverTheValueType) {
  using namespace RawSnmp;
  std::int32_t id = 0;
  for (const auto& [who, isVrf] : everyContext()) {
    std::vector<Varbind> objects;
    for (const std::string& root : {ipGroup, privateTables}) {
      ToolOutput walk = agent->tools().bulkWalk(who, root);
      ASSERT_TRUE(walk.error.empty()) << walk.run.output;
      objects.insert(objects.end(), walk.varbinds.begin(), walk.varbinds.end());
    }
    ASSERT_FALSE(objects.empty());
    Client client(agent->address());
    for (const Varbind& object : objects) {
      const Oid oid = parseOid(object.oid);
      // Its own type, another type: the handler refuses both. A NULL value the agent refuses itself.
      const Value own = valueOfType(object.type);
      const Value other = own.tag == asnInteger ? octets("x") : integer(1);
      for (const auto& [value, error] : {std::pair{own, notWritable}, {other, notWritable}, {Value{}, wrongType}}) {
        const std::optional<Response> refused =
            client.exchange(request(communityOf(isVrf), setRequest, ++id, {oid}, value));
        ASSERT_TRUE(refused) << object.oid;
        EXPECT_EQ(refused->errorStatus, error) << object.oid << " (" << object.type << ") set with tag "
                                               << int(value.tag);
        EXPECT_EQ(refused->errorIndex, 1) << object.oid;
      }
    }
    // Nothing changed.
    for (const Varbind& object : objects) {
      if (object.type == "Counter64" || object.type == "Counter32" || object.type == "Timeticks") continue;
      const std::optional<Varbind> now = agent->tools().getOne(who, object.oid);
      EXPECT_TRUE(now && now->value == object.value) << object.oid;
    }
  }
}

TEST_F(RequestAbuseTest, SetOfAnInstanceThatDoesNotExistIsNotWritableOrNoCreation) {
  using namespace RawSnmp;
  // A writable scalar has one instance, .0, and no other can be created; everything else the
  // plug-in registers read-only, or not at all in a VRF's context, and is not writable.
  const std::pair<std::string, long> absent[] = {
      {ipForwardingObject + ".1", noCreation},
      {ipForwardingObject, noCreation},
      {ipForwarding + ".0", noCreation},
      {ipv6IpForwarding + ".0", noCreation},
      {ipCidrRouteNumber + ".1", notWritable},
      {ipAddrEntry + ".1.10.9.9.9", notWritable},
      {ipAddressEntry + ".3.1.4.10.9.9.9", notWritable},
      {ipAddressPrefixEntry + ".5.1.1.4.10.9.9.0.24", notWritable},
      {ipCidrRouteEntry + ".1.10.9.9.0.255.255.255.0.0.10.9.9.1", notWritable},
      {ipNetToMediaEntry + ".2.1.10.9.9.9", notWritable},
      {statsEntry + ".3.3", notWritable},
      {vrfEntry + ".2.4.98.108.117.101", notWritable},
      {vrfIfEntry + ".1.99", notWritable},
  };
  Client client(agent->address());
  std::int32_t id = 0;
  const auto setOne = [&](const std::string& community, const std::string& oid) {
    const std::optional<Response> refused =
        client.exchange(request(community, setRequest, ++id, {parseOid(oid)}, integer(1)));
    EXPECT_TRUE(refused) << community << " " << oid;
    return refused ? refused->errorStatus : -1;
  };
  for (const char* community : communities) {
    const bool vrf = community != std::string("public");
    for (const auto& [oid, error] : absent) {
      // ipv6IpForwarding is not registered in a VRF's context.
      const bool unregistered = vrf && oid.starts_with(ipv6IpForwarding);
      EXPECT_EQ(setOne(community, oid), unregistered ? notWritable : error) << community << " " << oid;
    }
    // An index that the table helper cannot read is refused before the handler, as noCreation, the
    // others by the handler; either way, never a general or commit error.
    for (const std::string& oid : malformedInstances()) {
      const long error = setOne(community, oid);
      EXPECT_TRUE(error == notWritable || error == noCreation) << community << " " << oid << ": " << error;
    }
  }
}

}  // namespace
}  // namespace IntegrationTest
