#include "tests/unit/tarn/TableFixture.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <unistd.h>

#include <chrono>
#include <cstring>

#include "platform/quor/Clock.h"

namespace TarnTest {

RawTable::RawTable(const std::string& path) : path_(path), fd_(::open(path.c_str(), O_RDWR)) {
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

namespace TarnTest {

void RawTable::announce(U32 slot) {
  Tarn::FileHeader& h = header();
  U64 head = h.logHead.load();
  memory_.logEntry(head, geometry_.logCapacity).store(Tarn::TableMemory::logEntryValue(head, slot));
  h.logHead.store(head + 1);
  U64 ring = h.doorbell + 1;
  if (::pwrite(fd_.get(), &ring, sizeof ring, offsetof(Tarn::FileHeader, doorbell)) != sizeof ring)
    Tarn::throwSystemError("pwrite", path_);
}

}  // namespace TarnTest

namespace TarnTest {

bool turnUntil(const std::function<bool()>& done) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (!done() && std::chrono::steady_clock::now() < deadline) Quor::activityManager()->runOnce(0.05);
  return done();
}

}  // namespace TarnTest
