// The reverse mapper: the name-to-id map stays the inverse of the VRF-id table through additions,
// renames, removals, late arrivals and a change of table, and its reactors read the new state.
#include <vector>

#include "platform/tarn/ReverseMapper.h"
#include "tests/unit/tarn/TableFixture.h"

namespace {

using Vrf::VrfIdMap::NameToIdMap;
using Vrf::VrfIdMap::VrfEntry;
using Vrf::VrfIdMap::VrfId;

// Records, at each onVrfNameToId(name), what the map says of that name at that moment.
class MapReader : public NameToIdMap::NotifieeConst {
 public:
  void onVrfNameToId(const Quor::String8& name) override {
    seen.push_back(name.str() + "=" + std::to_string(S32(notifier()->vrfNameToId(name).value())));
  }
  std::vector<std::string> seen;
};

class ReverseMapping : public ::testing::Test {
 protected:
  static Quor::Ptr<Vrf::VrfIdMap::Status> table() {
    auto status = Quor::makePtr<Vrf::VrfIdMap::Status>(Quor::Name("vrf/idmap"));
    status->mount("", Tarn::TableType::inProcess);
    return status;
  }
  static void put(const Quor::Ptr<Vrf::VrfIdMap::Status>& t, U32 id, const char* name) {
    Tarn::inProcessTable(t->vrfEntry()).put(VrfId(id), VrfEntry(VrfId(id), name));
  }
  static void erase(const Quor::Ptr<Vrf::VrfIdMap::Status>& t, U32 id) { Tarn::inProcessTable(t->vrfEntry()).erase(VrfId(id)); }
  S32 idOf(const char* name) const { return S32(map_->vrfNameToId(Quor::String8(name)).value()); }
  void follow() {
    mapper_ = Quor::makePtr<Vrf::VrfIdMap::ReverseMapper>(status_, map_);
    reader_->notifierIs(map_);
  }

  Quor::Ptr<Vrf::VrfIdMap::Status> status_ = table();
  Quor::Ptr<NameToIdMap> map_ = Quor::makePtr<NameToIdMap>(Quor::Name("arpTarnVrfNameToIdMap"));
  Quor::Ptr<MapReader> reader_ = Quor::makePtr<MapReader>();
  Quor::Ptr<Vrf::VrfIdMap::ReverseMapper> mapper_;
};

TEST_F(ReverseMapping, TheMapStartsAsTheInverseOfTheTable) {
  put(status_, 0, "default");
  put(status_, 7, "red");
  follow();
  EXPECT_EQ(idOf("default"), 0);
  EXPECT_EQ(idOf("red"), 7);
  EXPECT_EQ(idOf("blue"), -1);
  EXPECT_EQ(map_->vrfNameToIds().members(), 2u);
}

TEST_F(ReverseMapping, AnIdThatArrivesAfterTheMapperIsAddedAndTheReactorReadsIt) {
  follow();
  put(status_, 9, "blue");
  EXPECT_EQ(reader_->seen, std::vector<std::string>{"blue=9"});
}

TEST_F(ReverseMapping, ARenamedIdLeavesItsOldNameBeforeItTakesTheNew) {
  put(status_, 7, "red");
  follow();
  put(status_, 7, "green");
  EXPECT_EQ(reader_->seen, (std::vector<std::string>{"red=-1", "green=7"}));
  EXPECT_EQ(idOf("red"), -1);
  EXPECT_EQ(map_->vrfNameToIds().members(), 1u);
}

TEST_F(ReverseMapping, ARemovedIdTakesItsNameOutOfTheMap) {
  put(status_, 7, "red");
  follow();
  erase(status_, 7);
  EXPECT_EQ(reader_->seen, std::vector<std::string>{"red=-1"});
  EXPECT_TRUE(map_->vrfNameToIds().empty());
}

TEST_F(ReverseMapping, ANameMovedToANewIdKeepsTheNewOneWhenTheOldGoes) {
  put(status_, 7, "red");
  follow();
  put(status_, 8, "red");  // the writer adds the new number first
  EXPECT_EQ(idOf("red"), 8);
  erase(status_, 7);
  EXPECT_EQ(idOf("red"), 8);
  EXPECT_EQ(reader_->seen, std::vector<std::string>{"red=8"});  // the old number's removal changed nothing
  erase(status_, 8);
  EXPECT_EQ(idOf("red"), -1);
}

TEST_F(ReverseMapping, TheOlderIdComesBackWhenTheNewerOfTwoGoes) {
  put(status_, 7, "red");
  put(status_, 8, "red");
  follow();
  put(status_, 8, "blue");
  EXPECT_EQ(idOf("red"), 7);
  EXPECT_EQ(idOf("blue"), 8);
}

TEST_F(ReverseMapping, AnotherTableReplacesTheMapWithItsInverse) {
  put(status_, 7, "red");
  put(status_, 8, "blue");
  follow();
  auto other = table();
  put(other, 8, "blue");
  put(other, 9, "red");
  mapper_->newStatus(other);
  EXPECT_EQ(idOf("red"), 9);
  EXPECT_EQ(idOf("blue"), 8);
  put(status_, 10, "green");  // the old table is no longer followed
  EXPECT_EQ(idOf("green"), -1);
}

TEST_F(ReverseMapping, AnUnmountedTableEmptiesTheMap) {
  put(status_, 7, "red");
  follow();
  status_->unmount();
  EXPECT_TRUE(map_->vrfNameToIds().empty());
  EXPECT_EQ(reader_->seen, std::vector<std::string>{"red=-1"});
}

TEST_F(ReverseMapping, ADroppedMapperStopsFollowing) {
  follow();
  mapper_ = nullptr;
  put(status_, 7, "red");
  EXPECT_EQ(idOf("red"), -1);
}

}  // namespace
