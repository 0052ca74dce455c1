#pragma once
// The base of the entities whose attributes are table views (the route, forwarding, ARP and VRF-id
// tables), and what a mount does to such a view.
//
// A view is mounted from the writer's files, or from a table held in this process for tests and
// demos of the state machines (TableType::inProcess), which its holder writes through
// inProcessTable(view). A mount or unmount changes what every view holds at once, so the entity then
// tells its reactors on<Attr>quorImmediate(): any number of keys may have changed.
#include <string>

#include "platform/quor/Entity.h"
#include "platform/tarn/InProcessTable.h"
#include "platform/tarn/ShmTarnBackend.h"

namespace Tarn {

// How a mount reaches its tables; the value is the one a mount description carries.
enum class TableType : U32 { inProcess = 0, sharedMemory = 1 };

class TableEntity : public Quor::Entity {
 public:
  using Entity::Entity;
  // Puts a backend behind every view: for sharedMemory the files under `directory`, one per view,
  // named after its attribute.
  virtual void mount(const std::string& directory, TableType type) = 0;
  // Lets every view go: each reads as the stub until the next mount.
  virtual void unmount() = 0;
};

// Mounts `view` from `file`, read with Codec, or from a table in the process.
template <class Codec>
void mountView(TarnMap<typename Codec::Key, typename Codec::Value>& view, TableType type, std::string file) {
  using Key = typename Codec::Key;
  using Value = typename Codec::Value;
  if (type == TableType::sharedMemory)
    view.backendIs(std::make_unique<ShmTarnBackend<Codec>>(view, std::move(file)));
  else
    view.backendIs(std::make_unique<InProcessTable<Key, Value>>(view));
  view.initialize();
}

// The writable table behind a view mounted in-process; Quor::RangeException for any other view.
template <class K, class V>
InProcessTable<K, V>& inProcessTable(const TarnMap<K, V>& view) {
  auto* table = dynamic_cast<InProcessTable<K, V>*>(view.backend());
  if (!table) Quor::throwRangeException(view.name() + " is not mounted in-process");
  return *table;
}

}  // namespace Tarn
