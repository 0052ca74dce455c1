#include "tests/unit/agent/RouteTableFixture.h"

namespace IpSnmp {

void RouteTableFixture::SetUp() {
  fakeNow = 1000.0;
  Quor::nowSourceIs([] { return fakeNow; });
}

void RouteTableFixture::TearDown() {
  sm = nullptr;
  Quor::nowSourceIs(nullptr);
}

void RouteTableFixture::settle() {
  for (int run = 0; run < 100000 && !(idle() && sm->fecRouteListSm()->filled()); ++run) runClock();
  ASSERT_TRUE(idle()) << "the machine never finished";
}

void RouteTableFixture::intfUp(const char* name, S32 ifIndex, const char* kind) {
  intfStatusDir->intfStatusIs(Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId(name), Quor::Name(kind), ifIndex));
}

void RouteTableFixture::routeIs(const char* prefix, U64 fecId, Routing::Fib::RouteType type, U32 metric,
                                U8 preference) {
  Tarn::Fib::Route route;
  route.prefix = Pelt::Prefix(prefix);
  route.metric = Routing::RouteMetric(metric);
  route.preference = Routing::RoutePreference(preference);
  route.routeType = type;
  route.fecId = Tarn::Fib::FecId(fecId);
  routes->table().put(route.prefix, route);
}

void RouteTableFixture::fecIs(U64 fecId, const std::vector<const char*>& vias) {
  Tarn::Fib::Fec fec;
  fec.fecId = Tarn::Fib::FecId(fecId);
  for (std::string_view via : vias) {
    const auto at = via.find('@');
    const std::string_view hop = via.substr(0, at);
    fec.viaAdd({hop.empty() ? Pelt::IpAddr() : Pelt::IpAddr(hop), Pelt::IntfId(via.substr(at + 1))});
  }
  fecs->table().put(fec.fecId, fec);
}

std::vector<std::string> RouteTableFixture::rows() const {
  std::vector<std::string> out;
  for (auto it = ipForwardMib->ipCidrRouteTable().begin(); it; ++it) {
    std::ostringstream text;
    text << it->dest() << ' ' << it->mask() << ' ' << it->tos() << ' ' << it->nextHop() << " if" << it->ifIndex();
    out.push_back(text.str());
  }
  return out;
}

std::set<Pelt::Prefix> RouteTableFixture::marked() const {
  std::set<Pelt::Prefix> out;
  for (auto it = sm->backlog().begin(); it; ++it) out.insert(it.key());
  return out;
}

std::set<std::string> RouteTableFixture::waitingFor(const char* intf) const {
  const PrefixList* list = sm->intfDep(Pelt::IntfId(intf));
  if (!list) return {"absent"};
  std::set<std::string> out;
  for (auto it = list->prefixes().begin(); it; ++it) {
    std::ostringstream text;
    text << it.key();
    out.insert(text.str());
  }
  return out;
}

void RowsAdded::onIpCidrRouteTable(const IpCidrRouteTableIndex& key) {
  if (!notifier()->ipCidrRouteTable(key)) return;
  dests.push_back(key.dest);
  fakeNow += timePerRow;
}

}  // namespace IpSnmp
