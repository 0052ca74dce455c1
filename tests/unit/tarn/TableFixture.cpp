#include "tests/unit/tarn/TableFixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

namespace TarnTest {

CheckedRecord CheckedRecord::make(U64 key, U64 version) {
  CheckedRecord r;
  r.key = key;
  r.version = version;
  r.check = Tarn::hashBytes(&r, 16);
  for (U64& s : r.spread) s = r.check ^ key;
  return r;
}

bool CheckedRecord::whole() const {
  const CheckedRecord expected = make(key, version);
  return check == expected.check && spread[0] == expected.spread[0] && spread[2] == expected.spread[2];
}

std::map<U64, U64> contentOf(const Tarn::TableReader& table) {
  std::map<U64, U64> seen;
  CheckedRecord out;
  for (U32 slot = table.nextOccupied(0, &out); slot < table.capacity(); slot = table.nextOccupied(slot + 1, &out)) {
    EXPECT_TRUE(out.whole()) << "key " << out.key << " torn";
    EXPECT_TRUE(seen.emplace(out.key, out.version).second) << "key " << out.key << " walked twice";
  }
  return seen;
}

std::string differences(const std::map<U64, U64>& a, const std::map<U64, U64>& b) {
  auto text = [](const std::map<U64, U64>& m, U64 k) {
    auto it = m.find(k);
    return it == m.end() ? std::string("-") : std::to_string(it->second);
  };
  std::string out;
  int shown = 0;
  for (const auto* side : {&a, &b})
    for (const auto& [k, v] : *side)
      if (text(a, k) != text(b, k) && (side == &a || !a.count(k)) && shown++ < 5)
        out += std::to_string(k) + ": " + text(a, k) + "/" + text(b, k) + " ";
  return out;
}

std::unique_ptr<Tarn::TableWriter> TableDir::writer(U32 maxMembers, bool fresh, double lockWait) const {
  return std::make_unique<Tarn::TableWriter>(path(), checkedType, checkedGeometry(maxMembers), lockWait, fresh);
}

std::unique_ptr<Tarn::TableReader> TableDir::reader() const {
  return Tarn::TableReader::open(path(), checkedType, sizeof(U64), sizeof(CheckedRecord));
}

void put(Tarn::TableWriter& w, U64 key, U64 version) {
  const CheckedRecord r = CheckedRecord::make(key, version);
  w.put(&r);
}

RawTable::RawTable(const std::string& path) : fd_(::open(path.c_str(), O_RDWR)) {
  struct stat st;
  if (!fd_ || ::fstat(fd_.get(), &st) != 0) Tarn::throwSystemError("open", path);
  mapping_ = Tarn::Mapping(fd_.get(), static_cast<std::size_t>(st.st_size), true);
  geometry_ = reinterpret_cast<Tarn::FileHeader*>(mapping_.base())->geometry();
  memory_ = Tarn::TableMemory(mapping_.base(), geometry_);
}

U32 RawTable::slotOf(U64 key) {
  for (U32 slot = 0; slot < geometry_.capacity; ++slot) {
    Tarn::CellHeader& cell = memory_.current(slot);
    if (cell.state == static_cast<U32>(Tarn::SlotState::occupied) &&
        std::memcmp(Tarn::TableMemory::record(cell), &key, sizeof key) == 0)
      return slot;
  }
  ADD_FAILURE() << "key " << key << " not in the table";
  return 0;
}

}  // namespace TarnTest
