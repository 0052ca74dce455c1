// ipAddrTable, ipAddressPrefixTable and ipAddressTable in the real snmpd, filled by the address
// machines from a scenario file: every walk is the rows that the scenario's addresses imply, cell for
// cell and in OID order across every column boundary (an address's RowPointer naming its prefix
// row), a bulk walk is the same walk, a VRF's context shows that VRF's addresses, edits of the file
// while the agent runs show in the next walk, and every object the plug-in serves refuses SET.
#include <gtest/gtest.h>

#include "AgentUnderTest.h"
#include "ExpectedTable.h"
#include "SharedAgentTest.h"
#include "TableChecks.h"

namespace IntegrationTest {
namespace {

const Credentials publicCommunity = Credentials::v2c("public");
const std::string ipAddrTable = ".1.3.6.1.2.1.4.20";
const std::string ipAddressPrefixTable = ".1.3.6.1.2.1.4.32";
const std::string ipAddressTable = ".1.3.6.1.2.1.4.34";

// An address of an interface as the scenario gives it.
struct Address {
  unsigned ifIndex;
  std::string address;
  unsigned length;
  bool ipv6() const { return address.find(':') != std::string::npos; }
};

// The default VRF's interfaces; Ethernet2 is in red. A link-local address makes no row.
const std::string interfaces =
    "interfaces:\n"
    "  Management1:\n"
    "    kind: management\n"
    "    ifIndex: 999001\n"
    "    config: { ipv4: 192.0.2.10/24 }\n"
    "    status: { ipv4: 192.0.2.10/24 }\n"
    "  Ethernet1:\n"
    "    ifIndex: 1\n"
    "    config: { ipv4: 10.0.1.1/24, ipv6: [2001:db8:0:1::1/64] }\n"
    "    status: { ipv4: 10.0.1.1/24, ipv6: [2001:db8:0:1::1/64, fe80::21c:73ff:fe00:101/64] }\n"
    "  Ethernet2:\n"
    "    ifIndex: 2\n"
    "    config: { vrf: red, ipv4: 10.0.2.1/24 }\n"
    "    status: { vrf: red, ipv4: 10.0.2.1/24 }\n"
    "  Ethernet4:\n"
    "    ifIndex: 4\n"
    "    config: { ipv4: 10.4.0.1/16 }\n"
    "    status: { ipv4: 10.4.0.1/16 }\n"
    "  Loopback0:\n"
    "    kind: loopback\n"
    "    ifIndex: 5000\n"
    "    config: { ipv4: 10.255.0.1/32 }\n"
    "    status: { ipv4: 10.255.0.1/32 }\n";

const std::vector<Address> defaultVrfAddresses = {{999001, "192.0.2.10", 24},
                                                  {1, "10.0.1.1", 24},
                                                  {1, "2001:db8:0:1::1", 64},
                                                  {4, "10.4.0.1", 16},
                                                  {5000, "10.255.0.1", 32}};
const std::vector<Address> redAddresses = {{2, "10.0.2.1", 24}};

// Ethernet5, which the editing test adds and takes away again.
const std::string ethernet5 =
    "  Ethernet5:\n"
    "    ifIndex: 5\n"
    "    config: { ipv4: 10.0.5.1/24, ipv6: [2001:db8:0:5::1/64] }\n"
    "    status: { ipv4: 10.0.5.1/24, ipv6: [2001:db8:0:5::1/64] }\n";
const std::vector<Address> ethernet5Addresses = {{5, "10.0.5.1", 24}, {5, "2001:db8:0:5::1", 64}};

std::string switchScenario(const std::string& moreInterfaces = "") {
  return "routing:\n  ipv4: true\n  ipv6: true\n"
         "vrfs:\n"
         "  red:\n"
         "    routing: { ipv4: true }\n"
         "    published: true\n"
         "    config: { routeDistinguisher: \"65000:100\" }\n"
         "    status: { state: active, namespace: ns-red }\n" +
         interfaces + moreInterfaces + "snmp:\n  initialized: true\n";
}

std::string prefixIndex(const Address& a) {
  return "." + std::to_string(a.ifIndex) + (a.ipv6() ? ".2." : ".1.") + addressIndex(subnetOf(a.address, a.length), true) +
         "." + std::to_string(a.length);
}

ExpectedTable ipAddrTableOf(const std::vector<Address>& addresses) {
  ExpectedTable table(ipAddrTable);
  for (const Address& a : addresses) {
    if (a.ipv6()) continue;
    const std::string index = "." + addressIndex(a.address, false);
    table.cellIs(1, index, "IpAddress", a.address);
    table.cellIs(2, index, "INTEGER", std::to_string(a.ifIndex));
    table.cellIs(3, index, "IpAddress", ipv4Mask(a.length));
    table.cellIs(4, index, "INTEGER", "0");
    table.cellIs(5, index, "INTEGER", "65535");
  }
  return table;
}

// One row per prefix and interface, all of whose columns are constants.
ExpectedTable ipAddressPrefixTableOf(const std::vector<Address>& addresses) {
  ExpectedTable table(ipAddressPrefixTable);
  for (const Address& a : addresses) {
    const std::string index = prefixIndex(a);
    table.cellIs(5, index, "INTEGER", "1");
    table.cellIs(6, index, "INTEGER", "1");
    table.cellIs(7, index, "INTEGER", "2");
    table.cellIs(8, index, "Gauge32", "4294967295");
    table.cellIs(9, index, "Gauge32", "4294967295");
  }
  return table;
}

ExpectedTable ipAddressTableOf(const std::vector<Address>& addresses) {
  ExpectedTable table(ipAddressTable);
  for (const Address& a : addresses) {
    const std::string index = (a.ipv6() ? ".2." : ".1.") + addressIndex(a.address, true);
    table.cellIs(3, index, "INTEGER", std::to_string(a.ifIndex));
    table.cellIs(4, index, "INTEGER", "1");
    table.cellIs(5, index, "OID", ipAddressPrefixTable + ".1.5" + prefixIndex(a));
    table.cellIs(6, index, "INTEGER", "1");
    table.cellIs(7, index, "INTEGER", "1");
    table.cellIs(8, index, "Timeticks", "(0) 0:00:00.00");
    table.cellIs(9, index, "Timeticks", "(0) 0:00:00.00");
    table.cellIs(10, index, "INTEGER", "1");
    table.cellIs(11, index, "INTEGER", "1");
  }
  return table;
}

std::vector<Address> joined(std::vector<Address> a, const std::vector<Address>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

class AddressTablesTest : public SharedAgentTest<AddressTablesTest> {
 public:
  static std::string scenario() { return switchScenario(); }
};

// ipAddrTable has the IPv4 addresses, ipAddressPrefixTable one row per prefix and interface, and
// ipAddressTable IPv4 before IPv6 without the link-local address.
TEST_F(AddressTablesTest, EachTableIsTheRowsThatTheScenariosAddressesImply) {
  expectWalk(*agent, ipAddrTableOf(defaultVrfAddresses));
  expectWalk(*agent, ipAddressPrefixTableOf(defaultVrfAddresses));
  expectWalk(*agent, ipAddressTableOf(defaultVrfAddresses));
}

TEST_F(AddressTablesTest, VrfContextShowsItsOwnAddressesOnly) {
  expectWalk(*agent, ipAddrTableOf(redAddresses), Credentials::v3("red"));
  expectWalk(*agent, ipAddressTableOf(redAddresses), Credentials::v2c("public@red"));
}

// Every object that the plug-in serves refuses a SET, whatever the value's type, in the default
// context and in a VRF's; an instance that does not exist is refused too, and nothing changes.
TEST_F(AddressTablesTest, SetOfEveryServedObjectIsRefused) {
  for (const Credentials& who : {publicCommunity, Credentials::v3("red")}) {
    std::vector<std::string> objects;
    for (const std::string root : {".1.3.6.1.2.1.4", ".1.3.6.1.4.1.48213.3"})
      for (const Varbind& vb : agent->tools().bulkWalk(who, root).varbinds) objects.push_back(vb.oid);
    ASSERT_GT(objects.size(), 20u);
    for (const std::string& oid : objects) {
      for (const auto& [type, value] : {std::pair{"i", "2"}, {"s", "x"}}) {
        ToolOutput refused = agent->tools().set(who, oid, type, value);
        EXPECT_EQ(refused.error, "notWritable") << oid << " " << type << "\n" << refused.run.output;
      }
    }
  }
  const std::pair<std::string, std::string> absent[] = {{".1.3.6.1.2.1.4.1.1", "noCreation"},
                                                        {ipAddressTable + ".1.3.1.4.10.9.9.9", "notWritable"},
                                                        {".1.3.6.1.2.1.4.24.4.1.1.10.9.9.0.255.255.255.0.0.10.9.9.1",
                                                         "notWritable"}};
  for (const auto& [oid, error] : absent) EXPECT_EQ(agent->tools().set(publicCommunity, oid, "i", "1").error, error) << oid;
  expectWalk(*agent, ipAddrTableOf(defaultVrfAddresses));
  expectWalk(*agent, ipAddressTableOf(defaultVrfAddresses));
  EXPECT_EQ(agent->tools().getOne(publicCommunity, ".1.3.6.1.2.1.4.1.0").value_or(Varbind{}).value, "1");
}

// The agent follows edits of the scenario file; the test has an agent of its own.
TEST(AddressEditsTest, AddressAddedWhileRunningAppearsAndGoesAgainWhenRemoved) {
  if (!toolsInstalled()) GTEST_SKIP() << "snmpd and the snmp tools are not installed";
  AgentUnderTest agent(switchScenario());
  ASSERT_TRUE(agent.ready()) << agent.diagnostics();

  agent.scenarioIs(switchScenario(ethernet5));
  const std::vector<Address> more = joined(defaultVrfAddresses, ethernet5Addresses);
  EXPECT_TRUE(eventually([&] { return walksAs(agent, ipAddressTableOf(more)); }))
      << "the new addresses did not appear\n" << agent.diagnostics();
  expectWalk(agent, ipAddrTableOf(more));
  expectWalk(agent, ipAddressPrefixTableOf(more));

  agent.scenarioIs(switchScenario());
  EXPECT_TRUE(eventually([&] { return walksAs(agent, ipAddressTableOf(defaultVrfAddresses)); }))
      << "the removed addresses stayed\n" << agent.diagnostics();
  expectWalk(agent, ipAddrTableOf(defaultVrfAddresses));
  expectWalk(agent, ipAddressPrefixTableOf(defaultVrfAddresses));
}

}  // namespace
}  // namespace IntegrationTest
