// The tables as the state machines see them: every record type read back as written, a stub until
// a file is mapped (and again after an unmount), a file that appears later announced key by key,
// and mounts that keep their files inside the table root.
#include <set>

#include "platform/morvane/Store.h"
#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/Mount.h"
#include "platform/tarn/RecordWriter.h"
#include "platform/tarn/RouteStatus.h"
#include "platform/tarn/VrfIdMapStatus.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using Arp::Table::ArpEntry;
using Tarn::Fib::Route;
using Vrf::VrfIdMap::VrfEntry;
using Vrf::VrfIdMap::VrfId;

Route route(const char* prefix, U32 metric) {
  Route r;
  r.prefix = Pelt::Prefix(prefix);
  r.metric = Routing::RouteMetric(metric);
  r.preference = Routing::RoutePreference(20);
  r.routeType = Routing::Fib::routeTypeEbgp;
  r.fecId = Tarn::Fib::FecId(metric * 1000ull);
  return r;
}

ArpEntry neighbour(U32 vrf, const char* intf, Pelt::IpGenAddr addr, U16 lastWord, bool isStatic = false) {
  return ArpEntry{VrfId(vrf), Pelt::IntfId(intf), addr, Pelt::EthAddr(0x001c, 0x7300, lastWord), isStatic};
}

class HeardRoutes : public Tarn::Fib::RouteStatus::NotifieeConst {
 public:
  void onRoute(const Pelt::Prefix& prefix) override { prefixes.insert(prefix); }
  std::set<Pelt::Prefix> prefixes;
};

class Views : public TarnTest::TableDir {};

TEST_F(Views, EveryRecordTypeReadsBackAsWritten) {
  const std::vector<Route> routes{route("10.0.0.0/8", 1), route("0.0.0.0/0", 4000000000u)};
  const std::vector<ArpEntry> neighbours{neighbour(0, "Ethernet1", Pelt::IpAddr(10, 0, 0, 1), 1, true),
                                         neighbour(7, "Vlan10", Pelt::Ip6Addr(0xfe800000, 0, 0, 1), 2),
                                         neighbour(9, "Port-Channel1000.4094abc", Pelt::IpAddr(10, 0, 0, 1), 3)};
  const std::vector<VrfEntry> vrfs{VrfEntry(VrfId(7), "red"), VrfEntry(VrfId(8), std::string(L3::VrfName::maxBytes, 'v'))};
  {
    Tarn::RecordWriter<Tarn::Fib::RouteCodec> routeWriter(path("route"), 100);
    for (const Route& r : routes) routeWriter.put(r);
    Tarn::RecordWriter<Arp::Table::ArpCodec> arpWriter(path("arpEntry"), 100);
    for (const ArpEntry& e : neighbours) arpWriter.put(e);
    EXPECT_THROW(arpWriter.put(neighbour(0, "Port-Channel1000.4094abcd", Pelt::IpAddr(10, 0, 0, 2), 1)),
                 Quor::RangeException)
        << "an interface name longer than a record holds";
    Tarn::RecordWriter<Vrf::VrfIdMap::VrfEntryCodec> vrfWriter(path("vrfEntry"), 100);
    for (const VrfEntry& v : vrfs) vrfWriter.put(v);
  }
  auto routeStatus = Quor::makePtr<Tarn::Fib::RouteStatus>(Quor::Name("red"));
  auto arp = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
  auto vrfIds = Quor::makePtr<Vrf::VrfIdMap::Status>(Quor::Name("vrf/idmap"));
  routeStatus->mount(dir_.path(), Tarn::TableType::sharedMemory);
  arp->mount(dir_.path(), Tarn::TableType::sharedMemory);
  vrfIds->mount(dir_.path(), Tarn::TableType::sharedMemory);
  for (const Route& r : routes) EXPECT_EQ(routeStatus->route().lookup(r.prefix).value(), r);
  for (const ArpEntry& e : neighbours) EXPECT_EQ(arp->arpEntry().lookup(e.key()).value(), e);
  EXPECT_EQ(arp->arpEntry().members(), 3u);
  for (const VrfEntry& v : vrfs) EXPECT_EQ(vrfIds->vrfEntry().lookup(v.vrfId()).value(), v);
}

TEST_F(Views, ATableWhoseFileAppearsLaterIsAnnouncedKeyByKey) {
  auto status = Quor::makePtr<Tarn::Fib::RouteStatus>(Quor::Name("red"));
  auto heard = Quor::makePtr<HeardRoutes>();
  heard->notifierIs(status);
  EXPECT_FALSE(status->route().lookup(Pelt::Prefix("10.0.0.0/8")).found()) << "the stub of an unmounted table";
  status->mount(dir_.path(), Tarn::TableType::sharedMemory);
  EXPECT_EQ(status->route().mountStatus(), Tarn::MountStatus::awaitingFile);
  Tarn::RecordWriter<Tarn::Fib::RouteCodec> writer(path("route"), 100);
  writer.put(route("10.0.0.0/8", 1));
  writer.put(route("10.1.0.0/16", 1));
  writer.commit();
  const std::set<Pelt::Prefix> written{Pelt::Prefix("10.0.0.0/8"), Pelt::Prefix("10.1.0.0/16")};
  EXPECT_TRUE(TestSupport::turnUntil([&] { return heard->prefixes == written; }));
  EXPECT_EQ(status->route().mountStatus(), Tarn::MountStatus::mapped);
}

class Mounts : public TarnTest::TableDir {
 protected:
  void SetUp() override { ::setenv("TARN_ROOT", dir_.path().c_str(), 1); }
  void TearDown() override { ::unsetenv("TARN_ROOT"); }
  QuorTarn::Mount mount() {
    QuorTarn::Mount m(store_.entityManager, "");
    m.handleInitialized();
    return m;
  }
  Morvane::Store store_ = Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("root")));
};

TEST_F(Mounts, AnUnmountedEntityReadsAsTheStubAndAMountAgainHasAFreshOne) {
  Tarn::RecordWriter<Tarn::Fib::RouteCodec>(dir_ / Tarn::Fib::defaultRoutePath + "/route", 100).put(route("10.0.0.0/8", 1));
  QuorTarn::Mount m = mount();
  m.doMount(Tarn::Fib::defaultRoutePath, "Tarn::Fib::RouteStatus", Tarn::Fib::TableInfo::routeInfo());
  auto held = Quor::dynamicPtrCast<Tarn::Fib::RouteStatus>(m.getEntity(Tarn::Fib::defaultRoutePath));
  ASSERT_TRUE(held && held->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
  EXPECT_THROW(m.doMount(Tarn::Fib::defaultRoutePath, "Tarn::Fib::ForwardingStatus", Tarn::Fib::TableInfo::forwardingInfo()),
               Quor::NameInUseException);
  EXPECT_TRUE(m.doUnmount(Tarn::Fib::defaultRoutePath));
  EXPECT_FALSE(m.doUnmount(Tarn::Fib::defaultRoutePath));
  EXPECT_EQ(m.getEntity(Tarn::Fib::defaultRoutePath), nullptr);
  EXPECT_FALSE(held->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
  EXPECT_EQ(held->route().mountStatus(), Tarn::MountStatus::detached);
  m.doMount(Tarn::Fib::defaultRoutePath, "Tarn::Fib::RouteStatus", Tarn::Fib::TableInfo::routeInfo());
  auto again = Quor::dynamicPtrCast<Tarn::Fib::RouteStatus>(m.getEntity(Tarn::Fib::defaultRoutePath));
  EXPECT_TRUE(again->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
}

TEST_F(Mounts, MisuseIsRefused) {
  QuorTarn::Mount early(store_.entityManager, "");
  EXPECT_THROW(early.getEntity("routing/status"), Quor::RangeException);
  QuorTarn::Mount m = mount();
  EXPECT_THROW(m.doMount("routing/status", "Tarn::Fib::ForwardingStatus", Tarn::Fib::TableInfo::routeInfo()),
               Quor::RangeException);
  // A VRF name is anything; it must not lead the files out of the table root.
  std::string escape = Quor::format(Tarn::Fib::vrfRoutePathFormat, "../../../etc").str();
  EXPECT_THROW(m.doMount(escape, "Tarn::Fib::RouteStatus", Tarn::Fib::TableInfo::routeInfo()), Quor::RangeException);
  EXPECT_EQ(m.getEntity(escape), nullptr);
}

}  // namespace
