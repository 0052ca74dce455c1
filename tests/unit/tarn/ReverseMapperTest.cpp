// The reverse mapper: the name-to-id map stays the inverse of the VRF-id table through additions,
// renames, removals and names that move between ids, and its reactors read the new state when they
// are told.
#include <map>
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

Quor::Ptr<Vrf::VrfIdMap::Status> table() {
  auto status = Quor::makePtr<Vrf::VrfIdMap::Status>(Quor::Name("vrf/idmap"));
  status->mount("", Tarn::TableType::inProcess);
  return status;
}

// A write of the VRF-id table: `name` for `id`, or the removal of `id` when `name` is null.
struct Write {
  U32 id;
  const char* name;
};

void writeTable(const Quor::Ptr<Vrf::VrfIdMap::Status>& t, const std::vector<Write>& writes) {
  for (const Write& w : writes) {
    if (w.name) Tarn::inProcessTable(t->vrfEntry()).put(VrfId(w.id), VrfEntry(VrfId(w.id), w.name));
    else Tarn::inProcessTable(t->vrfEntry()).erase(VrfId(w.id));
  }
}

class ReverseMapping : public ::testing::Test {
 protected:
  S32 idOf(const std::string& name) const { return S32(map_->vrfNameToId(Quor::String8(name)).value()); }
  void follow() {
    mapper_ = Quor::makePtr<Vrf::VrfIdMap::ReverseMapper>(status_, map_);
    reader_->notifierIs(map_);
  }

  Quor::Ptr<Vrf::VrfIdMap::Status> status_ = table();
  Quor::Ptr<NameToIdMap> map_ = Quor::makePtr<NameToIdMap>(Quor::Name("arpTarnVrfNameToIdMap"));
  Quor::Ptr<MapReader> reader_ = Quor::makePtr<MapReader>();
  Quor::Ptr<Vrf::VrfIdMap::ReverseMapper> mapper_;
};

struct History {
  const char* what;
  std::vector<Write> before;  // the table when the mapper starts
  std::vector<Write> after;
  std::map<std::string, S32> ids;  // -1: no id
  std::vector<std::string> told;
};

const History histories[] = {
    {"the inverse at the start", {{0, "default"}, {7, "red"}}, {}, {{"default", 0}, {"red", 7}, {"blue", -1}}, {}},
    {"an id that arrives later", {}, {{9, "blue"}}, {{"blue", 9}}, {"blue=9"}},
    {"a renamed id leaves its old name first", {{7, "red"}}, {{7, "green"}}, {{"red", -1}, {"green", 7}},
     {"red=-1", "green=7"}},
    {"a removed id", {{7, "red"}}, {{7, nullptr}}, {{"red", -1}}, {"red=-1"}},
    {"a name moved to a new id keeps it when the old goes", {{7, "red"}}, {{8, "red"}, {7, nullptr}}, {{"red", 8}},
     {"red=8"}},
    {"the older id comes back when the newer of two goes", {{7, "red"}, {8, "red"}}, {{8, "blue"}},
     {{"red", 7}, {"blue", 8}}, {"red=7", "blue=8"}},
};

TEST_F(ReverseMapping, TheMapIsTheInverseOfTheTableAfterEachHistory) {
  for (const History& h : histories) {
    SCOPED_TRACE(h.what);
    status_ = table();
    map_ = Quor::makePtr<NameToIdMap>(Quor::Name("arpTarnVrfNameToIdMap"));
    reader_ = Quor::makePtr<MapReader>();
    writeTable(status_, h.before);
    follow();
    writeTable(status_, h.after);
    std::size_t named = 0;
    for (const auto& [name, id] : h.ids) {
      EXPECT_EQ(idOf(name), id) << name;
      named += id >= 0;
    }
    EXPECT_EQ(map_->vrfNameToIds().members(), named);
    EXPECT_EQ(reader_->seen, h.told);
  }
}

}  // namespace
