// Mounts: an entity per path on the entity manager, found by every Mount on it, reading the files
// under the table root; an unmount leaves whoever still holds the entity with stubs.
#include <sstream>

#include "platform/morvane/Store.h"
#include "platform/quor/Trace.h"
#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/ForwardingStatus.h"
#include "platform/tarn/Mount.h"
#include "platform/tarn/RecordWriter.h"
#include "platform/tarn/RouteStatus.h"
#include "platform/tarn/VrfIdMapStatus.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

class Mounts : public TarnTest::TableDir {
 protected:
  void SetUp() override {
    TableDir::SetUp();
    ::setenv("TARN_ROOT", dir_.c_str(), 1);
  }
  void TearDown() override {
    Quor::coverageStream_ = nullptr;
    ::unsetenv("TARN_ROOT");
    TableDir::TearDown();
  }
  QuorTarn::Mount mount() {
    QuorTarn::Mount m(store_.entityManager, "");
    m.handleInitialized();
    return m;
  }
  void writeRoute(const std::string& mountPath) {
    Tarn::RecordWriter<Tarn::Fib::RouteCodec> writer((dir_ / mountPath / "route").string(), 100);
    Tarn::Fib::Route r;
    r.prefix = Pelt::Prefix("10.0.0.0/8");
    r.fecId = Tarn::Fib::FecId(5);
    writer.put(r);
  }

  Morvane::Store store_ = Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("root")));
};

TEST_F(Mounts, AMountedTableIsFoundByEveryMountOnTheManagerAndReadsItsFile) {
  std::string path = Quor::format(Tarn::Fib::vrfRoutePathFormat, "red").str();
  writeRoute(path);
  mount().doMount(path, "Tarn::Fib::RouteStatus", Tarn::Fib::TableInfo::routeInfo());
  auto routes = Quor::dynamicPtrCast<Tarn::Fib::RouteStatus>(mount().getEntity(path));
  ASSERT_TRUE(routes);
  EXPECT_EQ(routes->route().mountStatus(), Tarn::MountStatus::mapped);
  EXPECT_EQ(routes->route().lookup(Pelt::Prefix("10.0.0.0/8")).value().fecId, Tarn::Fib::FecId(5));
  EXPECT_EQ(routes->route().name(), "routing/vrf/status/red/route");
  // A second mount of the same type changes nothing; one of another type is a conflict.
  mount().doMount(path, "Tarn::Fib::RouteStatus", Tarn::Fib::TableInfo::routeInfo());
  EXPECT_EQ(mount().getEntity(path), Quor::Ptr<Quor::Entity>(routes));
  EXPECT_THROW(mount().doMount(path, "Tarn::Fib::ForwardingStatus", Tarn::Fib::TableInfo::forwardingInfo()),
               Quor::NameInUseException);
}

TEST_F(Mounts, AfterAnUnmountTheHeldEntityReadsAsTheStub) {
  writeRoute(Tarn::Fib::defaultRoutePath);
  QuorTarn::Mount m = mount();
  m.doMount(Tarn::Fib::defaultRoutePath, "Tarn::Fib::RouteStatus", Tarn::Fib::TableInfo::routeInfo());
  auto held = Quor::dynamicPtrCast<Tarn::Fib::RouteStatus>(m.getEntity(Tarn::Fib::defaultRoutePath));
  EXPECT_TRUE(m.doUnmount(Tarn::Fib::defaultRoutePath));
  EXPECT_FALSE(m.doUnmount(Tarn::Fib::defaultRoutePath));
  EXPECT_EQ(m.getEntity(Tarn::Fib::defaultRoutePath), nullptr);
  std::ostringstream trace;
  Quor::coverageStream_ = &trace;
  EXPECT_FALSE(held->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
  EXPECT_EQ(held->route().mountStatus(), Tarn::MountStatus::detached);
  EXPECT_NE(trace.str().find("TarnBaseDummy::lookup() routing/status/route"), std::string::npos) << trace.str();
  // Mounted again, the path has a fresh entity on the same file.
  m.doMount(Tarn::Fib::defaultRoutePath, "Tarn::Fib::RouteStatus", Tarn::Fib::TableInfo::routeInfo());
  auto again = Quor::dynamicPtrCast<Tarn::Fib::RouteStatus>(m.getEntity(Tarn::Fib::defaultRoutePath));
  EXPECT_TRUE(again->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
}

TEST_F(Mounts, EachTableFamilyMountsItsEntityAtItsFixedPath) {
  QuorTarn::Mount m = mount();
  m.doMount(Tarn::Fib::defaultForwardingPath, "Tarn::Fib::ForwardingStatus", Tarn::Fib::TableInfo::forwardingInfo());
  m.doMount(Arp::Table::statusPath, "Arp::Table::Status", Arp::Table::TableInfo::arpInfo(Tarn::TableType::inProcess));
  m.doMount(Vrf::VrfIdMap::statusPath, "Vrf::VrfIdMap::Status", Vrf::VrfIdMap::TableInfo::vrfIdMapInfo());
  auto fecs = Quor::dynamicPtrCast<Tarn::Fib::ForwardingStatus>(m.getEntity("forwarding/status"));
  auto arp = Quor::dynamicPtrCast<Arp::Table::Status>(m.getEntity("arp/status"));
  auto vrfIds = Quor::dynamicPtrCast<Vrf::VrfIdMap::Status>(m.getEntity("vrf/idmap"));
  ASSERT_TRUE(fecs && arp && vrfIds);
  EXPECT_EQ(fecs->fec().mountStatus(), Tarn::MountStatus::awaitingFile);  // no writer yet
  EXPECT_EQ(arp->arpEntry().type(), "in-process");
  EXPECT_EQ(Tarn::Fib::routePathOf(L3::VrfName("default")), "routing/status");
  EXPECT_EQ(Tarn::Fib::forwardingPathOf(L3::VrfName("blue")), "forwarding/vrf/status/blue");
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
