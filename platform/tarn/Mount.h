#pragma once
// QuorTarn::Mount: how a process reaches its tables. A mount description (QuorTarn::MountInfo, from
// the TableInfo of each table family) says which entity to make and how its views reach their
// tables; doMount(path, type, info) makes that entity and records it on the entity manager under the
// path, where getEntity(path) finds it for every Mount on the same manager. The files of a mount at
// path P are <Tarn::RootPath()>/<prefix>P/<attribute>, one per view.
//
// A Mount object is a handle and may be dropped at once; what it mounted stays until doUnmount(path),
// which turns the entity's views into stubs (state machines that still hold the entity read an empty
// table) and forgets the path.
//
// The fixed paths: the default VRF's route and forwarding tables, the one ARP table of all VRFs
// and the one VRF-id table; a non-default VRF's tables are under the formats below.
#include <functional>
#include <string>

#include "platform/morvane/EntityManager.h"
#include "platform/pelt/VrfName.h"
#include "platform/tarn/TableEntity.h"

namespace QuorTarn {

struct MountInfo {
  std::string entityType;  // fwkType() of the entity it makes
  Tarn::TableType tableType = Tarn::TableType::sharedMemory;
  std::function<Quor::Ptr<Tarn::TableEntity>(const Quor::Name&)> make;
};

class Mount {
 public:
  Mount(Quor::Ptr<const Morvane::EntityManager> entityManager, std::string prefix);

  // Takes the directory of the table files (Tarn::RootPath()); the other operations need it first.
  void handleInitialized();
  // Mounts `info` at `path`. Nothing happens if an entity of the same type is mounted there already;
  // Quor::NameInUseException if one of another type is, Quor::RangeException if `type` is not the
  // type that `info` makes.
  void doMount(const std::string& path, const std::string& type, const MountInfo& info);
  // Unmounts the entity at `path`; false when nothing is mounted there.
  bool doUnmount(const std::string& path);
  // The entity mounted at `path`, null when none.
  Quor::Ptr<Quor::Entity> getEntity(const std::string& path) const;

 private:
  void requireInitialized() const;
  Quor::Ptr<const Morvane::EntityManager> entityManager_;
  std::string prefix_;
  std::string root_;
  bool initialized_ = false;
};

// Mounts `info` at `path` as `Table` and gives the entity mounted there as one (null if it is not).
template <class Table>
Quor::Ptr<const Table> mountedAs(Mount& mount, const std::string& path, const MountInfo& info) {
  mount.doMount(path, Table::typeName, info);
  return Quor::dynamicPtrCast<const Table>(mount.getEntity(path));
}

}  // namespace QuorTarn

namespace Tarn::Fib {

inline constexpr const char* defaultRoutePath = "routing/status";
inline constexpr const char* defaultForwardingPath = "forwarding/status";
inline constexpr const char* vrfRoutePathFormat = "routing/vrf/status/%s";
inline constexpr const char* vrfForwardingPathFormat = "forwarding/vrf/status/%s";
// The IPv6 tables, beside the IPv4 ones.
inline constexpr const char* defaultRoute6Path = "routing6/status";
inline constexpr const char* defaultForwarding6Path = "forwarding6/status";
inline constexpr const char* vrfRoute6PathFormat = "routing6/vrf/status/%s";
inline constexpr const char* vrfForwarding6PathFormat = "forwarding6/vrf/status/%s";
// The mount path of a VRF's route or forwarding table, the default VRF's for "default".
std::string routePathOf(const L3::VrfName& vrf);
std::string forwardingPathOf(const L3::VrfName& vrf);
std::string route6PathOf(const L3::VrfName& vrf);
std::string forwarding6PathOf(const L3::VrfName& vrf);

struct TableInfo {
  static QuorTarn::MountInfo routeInfo(Tarn::TableType type = Tarn::TableType::sharedMemory);
  static QuorTarn::MountInfo forwardingInfo(Tarn::TableType type = Tarn::TableType::sharedMemory);
  static QuorTarn::MountInfo route6Info(Tarn::TableType type = Tarn::TableType::sharedMemory);
  static QuorTarn::MountInfo forwarding6Info(Tarn::TableType type = Tarn::TableType::sharedMemory);
};

}  // namespace Tarn::Fib

namespace Arp::Table {

inline constexpr const char* statusPath = "arp/status";

struct TableInfo {
  static QuorTarn::MountInfo arpInfo(Tarn::TableType type = Tarn::TableType::sharedMemory);
};

}  // namespace Arp::Table

namespace Vrf::VrfIdMap {

inline constexpr const char* statusPath = "vrf/idmap";

struct TableInfo {
  static QuorTarn::MountInfo vrfIdMapInfo(Tarn::TableType type = Tarn::TableType::sharedMemory);
};

}  // namespace Vrf::VrfIdMap
