// Requests that no manager should send, against the real snmpd: indexes of the wrong length, type or
// range, sub-identifiers at their limit, OIDs of the greatest length, GETBULK with a huge repetition
// count, and a SET of every column of every row. Each gets its documented answer (noSuchInstance or
// noSuchObject for a GET, the next object for a GETNEXT, notWritable for a SET), never a general
// error, and the agent goes on answering.
#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

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
// The objects of the plug-in, walked for the SETs.
const std::string ipGroup = ".1.3.6.1.2.1.4";
const std::string privateTables = ".1.3.6.1.4.1.48213.3";

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
  };
}

// Columns that the tables do not serve: a GET is noSuchObject.
std::vector<std::string> absentColumns() {
  return {ipAddrEntry + ".0.10.0.1.1",         ipAddrEntry + ".6.10.0.1.1",
          ipAddressPrefixEntry + ".1.1.1.4.10.0.1.0.24", ipAddressPrefixEntry + ".10.1.1.4.10.0.1.0.24",
          ipAddressEntry + ".12.1.4.10.0.1.1", ipCidrRouteEntry + ".17.10.0.1.0.255.255.255.0.0.0.0.0.0",
          vrfIfEntry + ".2.1"};
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

TEST_F(RequestAbuseTest, GetBulkWithHugeRepetitionsAnswersInOrderAndInBounds) {
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

TEST_F(RequestAbuseTest, SetOfEveryColumnOfEveryRowIsNotWritable) {
  for (const auto& [who, isVrf] : everyContext()) {
    std::vector<Varbind> objects;
    for (const std::string& root : {ipGroup, privateTables}) {
      ToolOutput walk = agent->tools().bulkWalk(who, root);
      ASSERT_TRUE(walk.error.empty()) << walk.run.output;
      objects.insert(objects.end(), walk.varbinds.begin(), walk.varbinds.end());
    }
    ASSERT_FALSE(objects.empty());
    for (const Varbind& object : objects) {
      // The value is of the object's own type where the tool can send it, else an INTEGER.
      const bool octets = object.type == "STRING" || object.type == "Hex-STRING";
      ToolOutput refused = agent->tools().set(who, object.oid, octets ? "s" : "i", octets ? "x" : "1");
      EXPECT_EQ(refused.error, "notWritable") << object.oid << " (" << object.type << "): " << refused.run.output;
    }
    // Nothing changed.
    for (const Varbind& object : objects) {
      if (object.type == "Counter64" || object.type == "Counter32" || object.type == "Timeticks") continue;
      const std::optional<Varbind> now = agent->tools().getOne(who, object.oid);
      EXPECT_TRUE(now && now->value == object.value) << object.oid;
    }
  }
}

}  // namespace
}  // namespace IntegrationTest
