// Root and VrfRoot own their machines through instantiating mutators: the same parameters return the
// machine there is, any other builds a new one in its place; each VrfRoot's machines are its own.
#include <gtest/gtest.h>

#include "agent/Root.h"

namespace IpSnmp {
namespace {

using Vrf::VrfIdMap::VrfId;

class RootMachines : public ::testing::Test {
 protected:
  void SetUp() override {
    arpTarn->mount("", Tarn::TableType::inProcess);
    routes->mount("", Tarn::TableType::inProcess);
    fecs->mount("", Tarn::TableType::inProcess);
    intfStatusDir->intfStatusIs(
        Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId("Ethernet1"), Quor::Name("ethernet"), 1));
  }
  Arp::Table::ArpEntry neighbourIs(U32 vrfId, const char* addr) {
    Arp::Table::ArpEntry entry;
    entry.vrfId = VrfId(vrfId);
    entry.intfId = Pelt::IntfId("Ethernet1");
    entry.addr = Pelt::IpAddr(std::string_view(addr));
    Tarn::inProcessTable(arpTarn->arpEntry()).put(entry.key(), entry);
    return entry;
  }
  Quor::Ptr<IpRouteTableSm> routeMachine(const Quor::Ptr<const Quor::Clock>& withClock) {
    return root->ipRouteTableSmIs({ipForwardMib, intfStatusDir, routes, fecs, withClock});
  }

  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir =
      Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("intfStatus"));
  Quor::Ptr<IpMib> ipMib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  Quor::Ptr<IpForwardMib> ipForwardMib = Quor::makePtr<IpForwardMib>(Quor::Name("ipforwardmib"));
  Quor::Ptr<Arp::Table::Status> arpTarn = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
  Quor::Ptr<Tarn::Fib::RouteStatus> routes = Quor::makePtr<Tarn::Fib::RouteStatus>(Quor::Name("routing/status"));
  Quor::Ptr<Tarn::Fib::ForwardingStatus> fecs =
      Quor::makePtr<Tarn::Fib::ForwardingStatus>(Quor::Name("forwarding/status"));
  Quor::Ptr<Quor::Clock> clock = Quor::makePtr<Quor::Clock>(Quor::Name("clock"));
  Quor::Ptr<Root> root = rootFactory(Quor::Name("ipsnmp"));
};

TEST_F(RootMachines, TheSameParametersReturnTheSameMachineWithoutANewFirstPass) {
  Tarn::Fib::Route route;
  route.prefix = Pelt::Prefix("10.1.0.0/16");
  route.fecId = Tarn::Fib::FecId(3);
  Tarn::inProcessTable(routes->route()).put(route.prefix, route);

  auto first = routeMachine(clock);
  EXPECT_TRUE(first->scanning()) << "the first pass starts";
  for (int run = 0; run < 10 && first->scanning(); ++run) clock->runDue();
  ASSERT_FALSE(first->scanning());
  EXPECT_EQ(routeMachine(clock), first);
  EXPECT_FALSE(first->scanning()) << "no second first pass";

  auto otherClock = Quor::makePtr<Quor::Clock>(Quor::Name("other"));
  auto replaced = routeMachine(otherClock);
  EXPECT_NE(replaced, first);
  EXPECT_EQ(root->ipRouteTableSm(), replaced);
  EXPECT_TRUE(replaced->scanning()) << "the new machine makes its own first pass";
  EXPECT_EQ(first->references(), 1u) << "Root let the old machine go";
}

TEST_F(RootMachines, AnotherVrfIdReplacesTheArpMachine) {
  Quor::Ptr<ArpTableSm> first = root->arpTableSmIs({intfStatusDir, ipMib, arpTarn, VrfId(0)});
  EXPECT_EQ(root->arpTableSmIs({intfStatusDir, ipMib, arpTarn, VrfId(0)}).ptr(), first.ptr());
  Quor::Ptr<ArpTableSm> replaced = root->arpTableSmIs({intfStatusDir, ipMib, arpTarn, VrfId(7)});
  EXPECT_NE(replaced, first);
  EXPECT_EQ(replaced->arpTarnVrfId(), VrfId(7));
  EXPECT_EQ(root->arpTableSm(), replaced);
  EXPECT_EQ(root->arpTableSmDel(), replaced);
  EXPECT_EQ(root->arpTableSm(), nullptr);
  EXPECT_NE(root->arpTableSmIs({intfStatusDir, ipMib, arpTarn, VrfId(7)}).ptr(), replaced.ptr()) << "after Del, a new one";
}

TEST_F(RootMachines, TwoVrfRootsOwnDistinctMachinesAndDeletingOneLeavesTheOthersTables) {
  Quor::Ptr<VrfRootDir> dir = root->vrfRootDirIs(Quor::Name("vrfroots"));
  EXPECT_EQ(dir->parent(), root.ptr());
  auto redMib = Quor::makePtr<IpMib>(Quor::Name("red"));
  auto blueMib = Quor::makePtr<IpMib>(Quor::Name("blue"));
  Quor::Ptr<VrfRoot> red = dir->vrfRootIs(Quor::Name("red"));
  Quor::Ptr<VrfRoot> blue = dir->vrfRootIs(Quor::Name("blue"));
  Quor::Ptr<ArpTableSm> redArp = red->arpTableSmIs({intfStatusDir, redMib, arpTarn, VrfId(7)});
  Quor::Ptr<ArpTableSm> blueArp = blue->arpTableSmIs({intfStatusDir, blueMib, arpTarn, VrfId(9)});
  Quor::Ptr<IpRouteTableSm> redRoutes = red->ipRouteTableSmIs({Quor::makePtr<IpForwardMib>(Quor::Name("red")), intfStatusDir, routes, fecs, clock});
  Quor::Ptr<IpRouteTableSm> blueRoutes = blue->ipRouteTableSmIs({ipForwardMib, intfStatusDir, routes, fecs, clock});
  EXPECT_NE(redArp, blueArp);
  EXPECT_NE(redRoutes, blueRoutes);
  redArp->addArpEntry(neighbourIs(7, "10.0.0.7"));
  blueArp->addArpEntry(neighbourIs(9, "10.0.0.9"));

  dir->vrfRootDel(Quor::Name("red"));
  red = nullptr;
  EXPECT_EQ(redArp->references(), 1u) << "the machines went with their VrfRoot";
  EXPECT_EQ(redRoutes->references(), 1u);
  EXPECT_EQ(redMib->arpTable().members(), 1u) << "the rows stay with their container";
  EXPECT_EQ(dir->vrfRoot(Quor::Name("blue")), blue.ptr());
  EXPECT_EQ(blue->arpTableSm(), blueArp);
  EXPECT_EQ(blueMib->arpTable().members(), 1u);
  blueArp->addArpEntry(neighbourIs(9, "10.0.0.10"));
  EXPECT_EQ(blueMib->arpTable().members(), 2u) << "the other VRF's machine still works";

  EXPECT_EQ(dir->vrfRootIs(Quor::Name("red"))->arpTableSm(), nullptr) << "a VrfRoot made anew has no machine";
}

}  // namespace
}  // namespace IpSnmp
