#pragma once
// The inputs of a route machine as the tests drive them: interfaces in the store, route and
// forwarding tables that the tests write (and may damage), a clock of their own with a time they
// move by hand, and the forwarding table that the machine fills.
#include <gtest/gtest.h>

#include <initializer_list>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "agent/IpRouteTableSm.h"
#include "tests/unit/agent/DamageableTable.h"

namespace IpSnmp {

// The time that Quor::now() tells during these tests.
inline double fakeNow = 0.0;

class RouteTableFixture : public ::testing::Test {
 protected:
  using RouteTable = DamageableTable<Tarn::Fib::RouteStatus>;
  using ForwardingTable = DamageableTable<Tarn::Fib::ForwardingStatus>;

  void SetUp() override;
  void TearDown() override;

  void start() { sm = Quor::makePtr<IpRouteTableSm>(IpRouteTableSm::Inputs{ipForwardMib, intfStatusDir, routes, fecs, clock}); }
  // Lets the clock run what is due, as the event loop does between requests.
  void runClock() { clock->runDue(); }
  // Runs the clock until the machine has nothing left to do.
  void settle();

  // The interface exists with this index; a new status object each time, as the store makes it.
  void intfUp(const char* name, S32 ifIndex, const char* kind = "ethernet");

  // The route of `prefix` names FEC `fecId`.
  void routeIs(const char* prefix, U64 fecId, Routing::Fib::RouteType type = Routing::Fib::routeTypeConnected,
               U32 metric = 0, U8 preference = 1);
  void routeGone(const char* prefix) { routes->table().erase(Pelt::Prefix(prefix)); }
  // A via is "<hop>@<interface>", either part may be empty: "10.0.0.1@Ethernet1", "@Ethernet1".
  void fecIs(U64 fecId, const std::vector<const char*>& vias);
  void fecGone(U64 fecId) { fecs->table().erase(Tarn::Fib::FecId(fecId)); }

  // The rows of ipCidrRouteTable in walk order, as "<dest> <mask> <tos> <nextHop> if<ifIndex>".
  std::vector<std::string> rows() const;
  // The prefixes in the backlog.
  std::set<Pelt::Prefix> marked() const;
  // The prefixes waiting for `intf`, or {"absent"} when it has no list.
  std::set<std::string> waitingFor(const char* intf) const;
  bool scheduled() const { return sm->quorClock()->timeMin() == 0.0; }
  bool idle() const { return sm->quorClock()->timeMin() == Quor::never; }

  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir =
      Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("intfStatus"));
  Quor::Ptr<IpForwardMib> ipForwardMib = Quor::makePtr<IpForwardMib>(Quor::Name("ipforwardmib"));
  Quor::Ptr<RouteTable> routes = Quor::makePtr<RouteTable>(Quor::Name("routing/vrf/status/default"));
  Quor::Ptr<ForwardingTable> fecs = Quor::makePtr<ForwardingTable>(Quor::Name("forwarding/vrf/status/default"));
  Quor::Ptr<Quor::Clock> clock = Quor::makePtr<Quor::Clock>(Quor::Name("clock"));
  Quor::Ptr<IpRouteTableSm> sm;

 private:
  CorruptionReportDir corruptionReports_;
};

// Records the destination of every row that the machine adds, and can move the time on each.
class RowsAdded : public IpForwardMib::NotifieeConst {
 public:
  void onIpCidrRouteTable(const IpCidrRouteTableIndex& key) override;
  std::vector<Pelt::IpAddr> dests;
  double timePerRow = 0.0;
};

}  // namespace IpSnmp
