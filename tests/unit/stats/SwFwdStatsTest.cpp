// The statistics entity and its container: accessors over a fresh record, reflection, and the
// find-or-make rules of the collection that FwdStatsBogon and the IpMib share.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platform/quor/Clock.h"
#include "stats/FwdStatsBogon.h"

namespace {

using Ip::ipVersion4;
using Ip::ipVersion6;

double fixedNow() { return 5000.0; }

// Holds the clock still and makes the record fresh, so the accessors read nothing.
class FreshStats : public testing::Test {
 protected:
  FreshStats() { Quor::nowSourceIs(fixedNow); }
  ~FreshStats() override { Quor::nowSourceIs(nullptr); }

  Quor::Ptr<Ip::SwFwdStats> holding(const Ip::SwFwdStatsData& data) {
    Quor::Ptr<Ip::SwFwdStats> stats = Ip::swFwdStatsFactory(ipVersion4, Quor::Name("default"));
    stats->dataIs(data);
    stats->lastUpdateIs(Quor::now());
    return stats;
  }
};

TEST_F(FreshStats, PlainAccessorsGiveTheirAttribute) {
  Ip::SwFwdStatsData data;
  U64 n = 1000;
#define NUMBER(attr, Attr) data.attr##Is(++n);
  IP_SW_FWD_STATS_ATTRIBUTES(NUMBER)
#undef NUMBER
  Quor::Ptr<Ip::SwFwdStats> stats = holding(data);
#define SAME(attr, Attr) EXPECT_EQ(stats->attr(), data.attr()) << #attr;
  IP_SW_FWD_STATS_ATTRIBUTES(SAME)
#undef SAME
  EXPECT_EQ(stats->lastUpdate(), 5000.0) << "a fresh record is not read again";
}

TEST_F(FreshStats, ComputedCountersCombineTheRecord) {
  Ip::SwFwdStatsData data;
  data.fragOKsIs(3);
  data.fragFailsIs(4);
  data.inNoRoutesIs(1);
  data.forwDatagramsIs(2);
  data.outRequestsIs(50);
  data.fragCreatesIs(10);
  data.outNoRoutesIs(5);
  data.outDiscardsIs(6);
  Quor::Ptr<Ip::SwFwdStats> stats = holding(data);
  EXPECT_EQ(stats->fragReqds(), 7u);
  EXPECT_EQ(stats->inForwDatagrams(), 3u);
  EXPECT_EQ(stats->outTransmits(), 2u + 50 + 10 - 5 - 4 - 3 - 6);
}

TEST_F(FreshStats, ComputedCountersWrapInsteadOfClamping) {
  Ip::SwFwdStatsData data;
  data.outDiscardsIs(1);
  EXPECT_EQ(holding(data)->outTransmits(), 18446744073709551615ull);
  data = Ip::SwFwdStatsData();
  data.fragOKsIs(18446744073709551615ull);
  data.fragFailsIs(2);
  data.inNoRoutesIs(18446744073709551615ull);
  data.forwDatagramsIs(1);
  EXPECT_EQ(holding(data)->fragReqds(), 1u);
  EXPECT_EQ(holding(data)->inForwDatagrams(), 0u);
}

TEST(SwFwdStatsEntity, FactoryMakesAnUnnamedEntityAtZero) {
  Quor::Ptr<Ip::SwFwdStats> stats = Ip::swFwdStatsFactory(ipVersion6, Quor::Name("red"));
  ASSERT_TRUE(stats);
  EXPECT_TRUE(stats->name().empty());
  EXPECT_EQ(stats->ipVersion(), ipVersion6);
  EXPECT_EQ(stats->vrfName(), "red");
  EXPECT_TRUE(!stats->data());
  EXPECT_EQ(stats->lastUpdate(), 0.0);
  EXPECT_STREQ(stats->fwkType(), "Ip::SwFwdStats");
}

TEST(SwFwdStatsEntity, AttributesAreNumberedFrom258InTheirOrder) {
  Quor::Ptr<Ip::SwFwdStats> stats = Ip::swFwdStatsFactory(ipVersion4, Quor::Name("default"));
  EXPECT_EQ(stats->attributeString(258), "ipVersion");
  EXPECT_EQ(stats->attributeString(260), "data");
  EXPECT_EQ(stats->attributeString(265), "inForwDatagrams");
  EXPECT_EQ(stats->attributeString(273), "outTransmits");
  EXPECT_EQ(stats->attributeString(279), "fragReqds");
  EXPECT_EQ(stats->attributeString(290), "outBcastPkts");
  EXPECT_EQ(stats->attributeString(291), "lastUpdate");
  EXPECT_EQ(stats->attributeString(294), "setNs");
  EXPECT_EQ(stats->attributeString(295), "unknown");
  EXPECT_EQ(stats->attributeString(257), "unknown");
  EXPECT_EQ(stats->attributeId(Quor::String8("doFreshen")), 293);
  EXPECT_EQ(stats->attributeId(Quor::String8("inReceives")), 261);
}

struct BogonWatcher : Ip::FwdStatsBogon::NotifieeConst {
  using NotifieeConst::onBogon;
  void onBogon(Ip::IpVersion key) override { keys.push_back(key); }
  void onIsNondestructing() override { ++nondestructing; }
  std::vector<Ip::IpVersion> keys;
  int nondestructing = 0;
};

class Bogon : public testing::Test {
 protected:
  Bogon() { watcher->notifierIs(bogon); }
  Quor::Ptr<Ip::FwdStatsBogon> bogon = Ip::fwdStatsBogonFactory(Quor::Name("bogon"));
  Quor::Ptr<BogonWatcher> watcher = new BogonWatcher;
};

TEST_F(Bogon, IsMakesOnceAndFindsAfterwards) {
  Quor::ValidPtr<Ip::SwFwdStats> made = bogon->bogonIs(ipVersion4, Quor::Name("red"));
  Quor::ValidPtr<Ip::SwFwdStats> again = bogon->bogonIs(ipVersion4, Quor::Name("red"));
  EXPECT_EQ(made.ptr(), again.ptr());
  EXPECT_EQ(bogon->bogon(ipVersion4).ptr(), made.ptr());
  EXPECT_EQ(bogon->bogon(ipVersion6), nullptr);
  EXPECT_EQ(bogon->bogons(), 1u);
  EXPECT_EQ(watcher->keys, std::vector<Ip::IpVersion>{ipVersion4}) << "only the creation notifies";
  EXPECT_EQ(made->parent(), bogon.ptr());
  EXPECT_EQ(made->parentAttr(), "bogon");
  EXPECT_EQ(made->vrfName(), "red");
}

TEST_F(Bogon, IsWithAnotherVrfRefusesAndKeepsTheEntry) {
  Quor::ValidPtr<Ip::SwFwdStats> made = bogon->bogonIs(ipVersion4, Quor::Name("red"));
  try {
    bogon->bogonIs(ipVersion4, Quor::Name("blue"));
    FAIL() << "no exception";
  } catch (const Quor::NameInUseException& e) {
    EXPECT_EQ(e.text(),
              "Reinstantiating the entity with name 'ipVersion4' where constructor parameter attribute _vrfName "
              "has a different value of 'blue' than the current value of 'red' not allowed");
  }
  EXPECT_EQ(bogon->bogon(ipVersion4).ptr(), made.ptr());
  EXPECT_EQ(made->vrfName(), "red");
  EXPECT_EQ(watcher->keys.size(), 1u);
  EXPECT_EQ(bogon->bogonIs(ipVersion6, Quor::Name("blue"))->vrfName(), "blue") << "the other key is free";
}

TEST_F(Bogon, DelRemovesNotifiesAndOrphans) {
  Quor::Ptr<Ip::SwFwdStats> made = bogon->bogonIs(ipVersion6, Quor::Name("default"));
  watcher->keys.clear();
  EXPECT_EQ(bogon->bogonDel(ipVersion6).ptr(), made.ptr());
  EXPECT_EQ(bogon->bogonDel(ipVersion6), nullptr);
  EXPECT_EQ(watcher->keys, std::vector<Ip::IpVersion>{ipVersion6}) << "an absent key notifies nobody";
  EXPECT_EQ(made->parent(), nullptr);
  EXPECT_EQ(bogon->bogons(), 0u);
}

TEST_F(Bogon, DelAllNotifiesEveryMember) {
  bogon->bogonIs(ipVersion4, Quor::Name("default"));
  bogon->bogonIs(ipVersion6, Quor::Name("default"));
  bogon->bogonIs(Ip::ipVersionUnknown, Quor::Name("default"));
  watcher->keys.clear();
  bogon->bogonDelAll();
  EXPECT_EQ(bogon->bogons(), 0u);
  std::sort(watcher->keys.begin(), watcher->keys.end());
  EXPECT_EQ(watcher->keys, (std::vector<Ip::IpVersion>{Ip::ipVersionUnknown, ipVersion4, ipVersion6}));
}

TEST_F(Bogon, DelByIteratorDuringAWalkVisitsEveryMember) {
  bogon->bogonIs(ipVersion4, Quor::Name("default"));
  bogon->bogonIs(ipVersion6, Quor::Name("default"));
  int visited = 0;
  for (auto it = bogon->bogonIter(); it; ++it, ++visited) bogon->bogonDel(it);
  EXPECT_EQ(visited, 2);
  EXPECT_EQ(bogon->bogons(), 0u);
}

TEST_F(Bogon, MembersOutlivingTheContainerLoseTheirParent) {
  Quor::Ptr<Ip::SwFwdStats> kept = bogon->bogonIs(ipVersion4, Quor::Name("default"));
  watcher->notifierIs(nullptr);
  bogon = nullptr;
  EXPECT_EQ(kept->parent(), nullptr);
}

TEST_F(Bogon, NondestructingChangeIsTold) {
  bogon->isNondestructingIs(true);
  EXPECT_TRUE(bogon->isNondestructing());
  EXPECT_EQ(watcher->nondestructing, 1);
  bogon->isNondestructingIs(false);
  EXPECT_EQ(watcher->nondestructing, 2);
  EXPECT_STREQ(bogon->fwkType(), "Ip::FwdStatsBogon");
  EXPECT_EQ(bogon->attributeString(258), "bogon");
  EXPECT_EQ(bogon->name(), "bogon");
}

}  // namespace
