// The route table as the state machines see it: a stub until mapped, lookups and walks of the file,
// onRoute(prefix) through the event loop, refused writes, and corruption that detaches to the stub.
#include <chrono>
#include <filesystem>
#include <set>
#include <sstream>

#include "platform/quor/Clock.h"
#include "platform/tarn/RouteStatus.h"
#include "platform/tarn/TableWriter.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using Tarn::Fib::Route;
using Tarn::Fib::RouteCodec;

Route route(const char* prefix, U32 metric) {
  Route r;
  r.prefix = Pelt::Prefix(prefix);
  r.metric = Routing::RouteMetric(metric);
  r.preference = Routing::RoutePreference(20);
  r.routeType = Routing::Fib::routeTypeConnected;
  r.fecId = Tarn::Fib::FecId(metric * 1000ull);
  return r;
}

// Writes routes into a table file as the routing agent does.
class RouteWriter {
 public:
  explicit RouteWriter(const std::string& path)
      : table_(path, RouteCodec::type, Tarn::TableGeometry::forRecords(RouteCodec::keySize, sizeof(Tarn::Fib::RouteRecord), 1000)) {}
  void put(const Route& r) {
    Tarn::Fib::RouteRecord record = RouteCodec::encode(r);
    table_.put(&record);
  }
  void erase(const char* prefix) {
    Tarn::Fib::RouteRecord key{};
    RouteCodec::encodeKey(Pelt::Prefix(prefix), &key);
    table_.erase(&key);
  }
  void commit() { table_.commit(); }

 private:
  Tarn::TableWriter table_;
};

class Heard : public Tarn::Fib::RouteStatus::NotifieeConst {
 public:
  void onRoute(const Pelt::Prefix& prefix) override { prefixes.insert(prefix); }
  std::set<Pelt::Prefix> prefixes;
};

class RouteView : public TarnTest::TableDir {
 protected:
  void SetUp() override {
    TableDir::SetUp();
    ::setenv("TARN_CORRUPTION_DIR", (dir_ / "corruption").c_str(), 1);
    status_ = Quor::makePtr<Tarn::Fib::RouteStatus>(Quor::Name("red"));
    heard_ = Quor::makePtr<Heard>();
    heard_->notifierIs(status_);
  }
  void TearDown() override {
    Quor::coverageStream_ = nullptr;
    heard_ = nullptr;
    status_ = nullptr;
    ::unsetenv("TARN_CORRUPTION_DIR");
    TableDir::TearDown();
  }
  void mount() { status_->mount(dir_.string(), Tarn::TableType::sharedMemory); }
  void turnUntil(const std::function<bool()>& done) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!done() && std::chrono::steady_clock::now() < deadline) Quor::activityManager()->runOnce(0.05);
  }
  Quor::Ptr<Tarn::Fib::RouteStatus> status_;
  Quor::Ptr<Heard> heard_;
};

TEST_F(RouteView, AnUnmappedTableReadsAsEmptyAndTracesItsStub) {
  std::ostringstream trace;
  Quor::coverageStream_ = &trace;
  auto found = status_->route().lookup(Pelt::Prefix("10.0.0.0/8"));
  EXPECT_FALSE(found.found());
  EXPECT_EQ(found.value(), Route());
  EXPECT_EQ(found.value().preference, Routing::RoutePreference(1));
  Tarn::TarnMapIterator it;
  EXPECT_FALSE(status_->route().first(it).found());
  EXPECT_EQ(status_->route().members(), 0u);
  EXPECT_EQ(status_->route().mountStatus(), Tarn::MountStatus::unmounted);
  EXPECT_NE(trace.str().find("Tarn/5 TarnBaseDummy::lookup() red/route"), std::string::npos) << trace.str();
  EXPECT_NE(trace.str().find("Tarn/5 TarnBaseDummy::first() red/route"), std::string::npos);
  EXPECT_NE(trace.str().find("Tarn/5 TarnBaseDummy::members() red/route"), std::string::npos);
}

TEST_F(RouteView, AMappedTableAnswersLookupsAndWalks) {
  RouteWriter writer(path("route"));
  writer.put(route("10.0.0.0/8", 1));
  writer.put(route("10.1.0.0/16", 2));
  writer.commit();
  mount();
  EXPECT_EQ(status_->route().mountStatus(), Tarn::MountStatus::mapped);
  auto found = status_->route().lookup(Pelt::Prefix("10.1.0.0/16"));
  ASSERT_TRUE(found.found());
  EXPECT_EQ(found.value(), route("10.1.0.0/16", 2));
  std::set<Pelt::Prefix> walked;
  Tarn::TarnMapIterator it;
  for (auto entry = status_->route().first(it); entry; entry = status_->route().next(entry.key(), it)) {
    EXPECT_EQ(entry.key(), entry.value().prefix);
    walked.insert(entry.key());
  }
  EXPECT_EQ(walked, (std::set<Pelt::Prefix>{Pelt::Prefix("10.0.0.0/8"), Pelt::Prefix("10.1.0.0/16")}));
}

TEST_F(RouteView, ChangedPrefixesReachTheReactorsThroughTheEventLoop) {
  RouteWriter writer(path("route"));
  writer.put(route("10.0.0.0/8", 1));
  writer.commit();
  mount();
  ASSERT_TRUE(status_->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());  // the reactors' first pass
  writer.put(route("10.0.0.0/8", 5));
  writer.put(route("192.168.0.0/24", 1));
  writer.commit();
  writer.erase("10.0.0.0/8");
  writer.commit();
  std::set<Pelt::Prefix> expected{Pelt::Prefix("10.0.0.0/8"), Pelt::Prefix("192.168.0.0/24")};
  turnUntil([&] { return heard_->prefixes == expected; });
  EXPECT_EQ(heard_->prefixes, expected);
  EXPECT_FALSE(status_->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
}

TEST_F(RouteView, ATableWhoseFileAppearsLaterIsAnnouncedPrefixByPrefix) {
  mount();
  EXPECT_EQ(status_->route().mountStatus(), Tarn::MountStatus::awaitingFile);
  RouteWriter writer(path("route"));
  writer.put(route("10.0.0.0/8", 1));
  writer.commit();
  turnUntil([&] { return !heard_->prefixes.empty(); });
  EXPECT_EQ(heard_->prefixes, std::set<Pelt::Prefix>{Pelt::Prefix("10.0.0.0/8")});
  EXPECT_TRUE(status_->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
}

TEST_F(RouteView, CorruptionDetachesToTheStubRecordsTheCaseAndKeepsServing) {
  {
    RouteWriter writer(path("route"));
    writer.put(route("10.0.0.0/8", 1));
  }
  mount();
  {
    TarnTest::RawTable raw(path("route"));
    for (U32 slot = 0; slot < raw.header().capacity; ++slot)
      if (raw.memory().current(slot).state == U32(Tarn::SlotState::occupied))
        Tarn::TableMemory::record(raw.memory().current(slot))[12] ^= std::byte{1};
  }
  std::ostringstream trace;
  Quor::coverageStream_ = &trace;
  const auto& view = status_->route();
  Tarn::Fib::Route read;
  try {
    read = view.lookup(Pelt::Prefix("10.0.0.0/8")).value();
    FAIL() << "no corruption detected";
  } catch (const Tarn::CorruptionDetectedException& e) {
    EXPECT_STREQ(e.name(), "Tarn::CorruptionDetectedException");
    view.corruptionDetected(e.text());
  }
  EXPECT_NE(trace.str().find("Tarn/1 TarnMap::corruptionDetected() red/route"), std::string::npos) << trace.str();
  EXPECT_NE(trace.str().find("Tarn/2 TarnMap::detach() red/route"), std::string::npos);
  EXPECT_FALSE(view.lookup(Pelt::Prefix("10.0.0.0/8")).found());  // the stub answers
  EXPECT_EQ(view.mountStatus(), Tarn::MountStatus::awaitingFile);
  ASSERT_TRUE(std::filesystem::exists(dir_ / "corruption"));
  EXPECT_FALSE(std::filesystem::is_empty(dir_ / "corruption"));
  // The writer comes back, finds its file damaged and builds a new one: the view follows it.
  RouteWriter writer(path("route"));
  writer.put(route("10.2.0.0/16", 3));
  writer.commit();
  turnUntil([&] { return view.lookup(Pelt::Prefix("10.2.0.0/16")).found(); });
  EXPECT_TRUE(view.lookup(Pelt::Prefix("10.2.0.0/16")).found());
  EXPECT_EQ(view.mountStatus(), Tarn::MountStatus::mapped);
}

TEST_F(RouteView, AViewThatDoesNotTolerateCorruptionRaisesAgain) {
  status_->route().toleratesCorruptionIs(false);
  EXPECT_THROW(status_->route().corruptionDetected("bad"), Tarn::CorruptionDetectedException);
}

TEST_F(RouteView, AnInProcessTableNotifiesInsideTheWrite) {
  status_->mount("", Tarn::TableType::inProcess);
  auto* writable = &Tarn::inProcessTable(status_->route());
  writable->put(Pelt::Prefix("10.0.0.0/8"), route("10.0.0.0/8", 1));
  EXPECT_EQ(heard_->prefixes, std::set<Pelt::Prefix>{Pelt::Prefix("10.0.0.0/8")});
  EXPECT_EQ(status_->route().lookup(Pelt::Prefix("10.0.0.0/8")).value().metric, Routing::RouteMetric(1));
  writable->erase(Pelt::Prefix("10.0.0.0/8"));
  EXPECT_FALSE(status_->route().lookup(Pelt::Prefix("10.0.0.0/8")).found());
}

}  // namespace
