// The route machine over a VRF's IPv6 tables: one row of inetCidrRouteTable per via, a link-local next
// hop with its interface's index as zone and :: as no next hop, kept in step as FECs and routes change.
// The machine is the IPv4 machine's template, whose passes IpRouteTableSmTest covers.
#include <gtest/gtest.h>

#include <sstream>

#include "agent/IpRouteTableSm.h"
#include "tests/unit/agent/DamageableTable.h"

namespace IpSnmp {
namespace {

class IpRoute6TableSmTest : public ::testing::Test {
 protected:
  void SetUp() override {
    intfStatusDir->intfStatusIs(
        Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId("Ethernet1"), Quor::Name("ethernet"), 3));
  }

  void routeIs(const char* prefix, U64 fecId) {
    Tarn::Fib::Route6 route;
    route.prefix = Pelt::Ip6AddrWithMask(prefix);
    route.routeType = Routing::Fib::routeTypeEbgp;
    route.fecId = Tarn::Fib::FecId(fecId);
    routes->table().put(route.prefix, route);
  }
  void fecIs(U64 fecId, std::initializer_list<const char*> hops) {
    Tarn::Fib::Fec6 fec;
    fec.fecId = Tarn::Fib::FecId(fecId);
    for (const char* hop : hops) fec.viaAdd({Pelt::Ip6Addr(hop), Pelt::IntfId("Ethernet1")});
    fecs->table().put(fec.fecId, fec);
  }
  void settle() {
    for (int run = 0; run < 1000 && !(sm->quorClock()->timeMin() == Quor::never && sm->fecRouteListSm()->filled());
         ++run)
      clock->runDue();
  }
  std::vector<std::string> rows() const {
    std::vector<std::string> out;
    for (auto it = ipForwardMib->inetCidrRoute6Table().begin(); it; ++it) {
      std::ostringstream text;
      text << it.key() << " if" << it->ifIndex();
      out.push_back(text.str());
    }
    return out;
  }

  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir =
      Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("intfStatus"));
  Quor::Ptr<IpForwardMib> ipForwardMib = Quor::makePtr<IpForwardMib>(Quor::Name("ipforwardmib"));
  Quor::Ptr<DamageableTable<Tarn::Fib::Route6Status>> routes =
      Quor::makePtr<DamageableTable<Tarn::Fib::Route6Status>>(Quor::Name("routing6/status"));
  Quor::Ptr<DamageableTable<Tarn::Fib::Forwarding6Status>> fecs =
      Quor::makePtr<DamageableTable<Tarn::Fib::Forwarding6Status>>(Quor::Name("forwarding6/status"));
  Quor::Ptr<Quor::Clock> clock = Quor::makePtr<Quor::Clock>(Quor::Name("clock"));
  Quor::Ptr<IpRoute6TableSm> sm;
};

TEST_F(IpRoute6TableSmTest, RowsFollowRoutesAndFecsWithTheZoneOfLinkLocalHops) {
  fecIs(1, {"2001:db8::1", "fe80::1"});
  fecIs(2, {"::"});
  routeIs("2001:db8:1::/48", 1);
  routeIs("2001:db8:2::/64", 2);
  sm = Quor::makePtr<IpRoute6TableSm>(IpRoute6TableSm::Inputs{ipForwardMib, intfStatusDir, routes, fecs, clock});
  settle();
  EXPECT_EQ(rows(), (std::vector<std::string>{"2001:db8:1::/48 via ipv6 2001:db8::1 if3",
                                               "2001:db8:1::/48 via ipv6z fe80::1%3 if3",
                                               "2001:db8:2::/64 via unknown :: if3"}));

  fecIs(1, {"fe80::2"});
  routes->table().erase(Pelt::Ip6AddrWithMask("2001:db8:2::/64"));
  settle();
  EXPECT_EQ(rows(), (std::vector<std::string>{"2001:db8:1::/48 via ipv6z fe80::2%3 if3"}));
  EXPECT_EQ(ipForwardMib->ipCidrRouteTables(), 0u);
}

}  // namespace
}  // namespace IpSnmp
