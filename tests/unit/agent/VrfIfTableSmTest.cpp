// The VRF interface table follows interfaces into and out of non-default VRFs.
#include <gtest/gtest.h>

#include "agent/VrfIfTableSm.h"

namespace IpSnmp {
namespace {

class VrfIfTableSmTest : public ::testing::Test {
 protected:
  // Configures interface `name` with the L3 configuration `vrf` (none when null).
  Quor::Ptr<Ip::IpIntfConfig> configure(const char* name, const char* vrf) {
    auto entity = Quor::makePtr<Ip::IpIntfConfig>(Pelt::IntfId(name));
    if (vrf) {
      auto l3 = Quor::makePtr<L3::Intf::Config>(Quor::Name(name));
      l3->vrfIs(vrf);
      entity->l3ConfigIs(l3);
    }
    config->ipIntfConfigIs(entity);
    return entity;
  }
  void status(const char* name, S32 ifIndex) {
    intfStatusDir->intfStatusIs(Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId(name), Quor::Name("ethernet"), ifIndex));
  }
  Quor::Ptr<VrfIfTableSm> machine() { return Quor::makePtr<VrfIfTableSm>(VrfIfTableSm::Inputs{ipVrfMib, intfStatusDir, config}); }
  std::string vrfOfRow(U32 ifIndex) {
    VrfIfTableEntry* row = ipVrfMib->vrfIfTable(ifIndex);
    return row ? row->vrfName().str() : "<no row>";
  }

  Quor::Ptr<IpVrfMib> ipVrfMib = Quor::makePtr<IpVrfMib>(Quor::Name("ipvrfmib"));
  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir = Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("all"));
  Quor::Ptr<Ip::Config> config = Quor::makePtr<Ip::Config>(Quor::Name("config"));
};

TEST_F(VrfIfTableSmTest, InterfaceFollowsItsVrfAndLeavesTheTableForDefault) {
  status("Ethernet12", 12);
  auto entity = configure("Ethernet12", "red");
  auto sm = machine();
  EXPECT_EQ(vrfOfRow(12), "red");
  entity->l3Config()->vrfIs("blue");
  EXPECT_EQ(vrfOfRow(12), "blue");
  EXPECT_EQ(ipVrfMib->vrfIfTable().members(), 1u);
  entity->l3Config()->vrfIs("default");
  EXPECT_EQ(vrfOfRow(12), "<no row>");
  entity->l3Config()->vrfIs("red");
  EXPECT_EQ(vrfOfRow(12), "red") << "a move out of the default VRF makes the row again";
}

TEST_F(VrfIfTableSmTest, ConfigurationWithoutL3ObjectGivesAnEmptyName) {
  status("Ethernet3", 3);
  configure("Ethernet3", nullptr);
  auto sm = machine();
  EXPECT_EQ(vrfOfRow(3), "");
}

TEST_F(VrfIfTableSmTest, StatusIsSampledOnlyWhenTheReactorIsMade) {
  auto sm = machine();
  configure("Ethernet4", "red");
  status("Ethernet4", 4);
  EXPECT_EQ(vrfOfRow(4), "<no row>") << "a later status does not bring the row";
  config->ipIntfConfigDel(Pelt::IntfId("Ethernet4"));
  configure("Ethernet4", "red");
  EXPECT_EQ(vrfOfRow(4), "red") << "a reactor made anew samples the status again";
}

TEST_F(VrfIfTableSmTest, RemovingTheConfigurationDeletesTheRow) {
  status("Ethernet5", 5);
  configure("Ethernet5", "red");
  auto sm = machine();
  config->ipIntfConfigDel(Pelt::IntfId("Ethernet5"));
  EXPECT_EQ(vrfOfRow(5), "<no row>");
  EXPECT_EQ(sm->ipIntfConfigs(), 0u);
}

TEST_F(VrfIfTableSmTest, InterfaceWithoutIndexIsKeyedAllOnes) {
  intfStatusDir->intfStatusIs(
      Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId("Tunnel1"), Quor::Name("tunnel"), 7));
  configure("Tunnel1", "red");
  auto sm = machine();
  EXPECT_EQ(vrfOfRow(4294967295u), "red") << "a kind without index provider reads -1";
}

TEST_F(VrfIfTableSmTest, ANullReactorParameterIsARangeFailure) {
  auto sm = machine();
  try {
    sm->ipIntfConfigIs(nullptr);
    FAIL();
  } catch (const Quor::RangeException& e) {
    EXPECT_EQ(e.text(), "null _ipIntfConfig parameter to mutator for IpSnmp::VrfIfTableSm::ipIntfConfig not allowed");
  }
}

}  // namespace
}  // namespace IpSnmp
