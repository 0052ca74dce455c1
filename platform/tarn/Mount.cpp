#include "platform/tarn/Mount.h"

#include "platform/quor/Exception.h"
#include "platform/tarn/ArpStatus.h"
#include "platform/tarn/ForwardingStatus.h"
#include "platform/tarn/RouteStatus.h"
#include "platform/tarn/Util.h"
#include "platform/tarn/VrfIdMapStatus.h"

namespace QuorTarn {

namespace {

template <class Entity>
MountInfo infoOf(Tarn::TableType type) {
  return MountInfo{Entity::typeName, type,
                   [](const Quor::Name& name) { return Quor::Ptr<Tarn::TableEntity>(Quor::makePtr<Entity>(name)); }};
}

// A mount path names a directory below the root: no empty, "." or ".." segment may lead elsewhere.
bool staysBelowRoot(std::string_view path) {
  while (true) {
    std::size_t slash = path.find('/');
    std::string_view segment = path.substr(0, slash);
    if (segment.empty() || segment == "." || segment == "..") return false;
    if (slash == std::string_view::npos) return true;
    path.remove_prefix(slash + 1);
  }
}

}  // namespace

Mount::Mount(Quor::Ptr<const Morvane::EntityManager> entityManager, std::string prefix)
    : entityManager_(std::move(entityManager)), prefix_(std::move(prefix)) {
  if (!entityManager_) Quor::throwRangeException("null entityManager parameter to QuorTarn::Mount not allowed");
}

void Mount::handleInitialized() {
  root_ = Tarn::RootPath();
  initialized_ = true;
}

void Mount::requireInitialized() const {
  if (!initialized_) Quor::throwRangeException("QuorTarn::Mount used before handleInitialized()");
}

void Mount::doMount(const std::string& path, const std::string& type, const MountInfo& info) {
  requireInitialized();
  if (type != info.entityType)
    Quor::throwRangeException("mount of " + type + " at " + path + " described as " + info.entityType);
  const std::string fullPath = prefix_ + path;
  if (!staysBelowRoot(fullPath)) Quor::throwRangeException("mount path '" + fullPath + "' leaves the table root");
  if (Quor::Ptr<Quor::Entity> present = entityManager_->mounted(fullPath)) {
    if (type == present->fwkType()) return;
    Quor::throwNameInUseException(fullPath + " holds a " + present->fwkType() + ", not a " + type);
  }
  Quor::Ptr<Tarn::TableEntity> entity = info.make(Quor::Name(fullPath));
  entity->mount(root_ + "/" + fullPath, info.tableType);
  entityManager_->mountedIs(fullPath, entity);
}

bool Mount::doUnmount(const std::string& path) {
  requireInitialized();
  const std::string fullPath = prefix_ + path;
  auto entity = Quor::dynamicPtrCast<Tarn::TableEntity>(entityManager_->mounted(fullPath));
  if (!entity) return false;
  entityManager_->mountedDel(fullPath);
  entity->unmount();
  return true;
}

Quor::Ptr<Quor::Entity> Mount::getEntity(const std::string& path) const {
  requireInitialized();
  return entityManager_->mounted(prefix_ + path);
}

}  // namespace QuorTarn

namespace Tarn::Fib {

namespace {
std::string vrfPath(const L3::VrfName& vrf, const char* defaultPath, const char* format) {
  if (vrf.isDefault()) return defaultPath;
  return Quor::format(format, vrf.stringValue().str().c_str()).str();
}
}  // namespace

std::string routePathOf(const L3::VrfName& vrf) { return vrfPath(vrf, defaultRoutePath, vrfRoutePathFormat); }

std::string forwardingPathOf(const L3::VrfName& vrf) {
  return vrfPath(vrf, defaultForwardingPath, vrfForwardingPathFormat);
}

QuorTarn::MountInfo TableInfo::routeInfo(Tarn::TableType type) { return QuorTarn::infoOf<RouteStatus>(type); }

QuorTarn::MountInfo TableInfo::forwardingInfo(Tarn::TableType type) { return QuorTarn::infoOf<ForwardingStatus>(type); }

std::string route6PathOf(const L3::VrfName& vrf) { return vrfPath(vrf, defaultRoute6Path, vrfRoute6PathFormat); }

std::string forwarding6PathOf(const L3::VrfName& vrf) {
  return vrfPath(vrf, defaultForwarding6Path, vrfForwarding6PathFormat);
}

QuorTarn::MountInfo TableInfo::route6Info(Tarn::TableType type) { return QuorTarn::infoOf<Route6Status>(type); }

QuorTarn::MountInfo TableInfo::forwarding6Info(Tarn::TableType type) {
  return QuorTarn::infoOf<Forwarding6Status>(type);
}

}  // namespace Tarn::Fib

namespace Arp::Table {
QuorTarn::MountInfo TableInfo::arpInfo(Tarn::TableType type) { return QuorTarn::infoOf<Status>(type); }
}  // namespace Arp::Table

namespace Vrf::VrfIdMap {
QuorTarn::MountInfo TableInfo::vrfIdMapInfo(Tarn::TableType type) { return QuorTarn::infoOf<Status>(type); }
}  // namespace Vrf::VrfIdMap
