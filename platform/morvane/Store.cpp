#include "platform/morvane/Store.h"

#include <string>

namespace Morvane {

namespace {

// The entity at `path` (names separated by '/') below `dir`, made as T with the path's last name;
// the directories on the way are made as needed.
template <class T>
Quor::Ptr<T> place(const Quor::Ptr<Quor::Dir>& dir, std::string_view path) {
  Quor::Ptr<Quor::Dir> at = dir;
  for (auto slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/')) {
    Quor::Name name(path.substr(0, slash));
    auto next = Quor::dynamicPtrCast<Quor::Dir>(at->entityPtr(name));
    if (!next) {
      next = Quor::makePtr<Quor::Dir>(name);
      at->entityPtrIs(next);
    }
    at = next;
    path.remove_prefix(slash + 1);
  }
  auto made = Quor::makePtr<T>(Quor::Name(path));
  at->entityPtrIs(made);
  return made;
}

}  // namespace

Store buildStore(const Quor::Ptr<Quor::Dir>& root) {
  if (root->entityPtr(Quor::Name("Morvane")))
    Quor::throwNameInUseException("the store is built already under " + root->fullName().str());
  Store store;
  store.root = root;
  store.entityManager = Quor::makePtr<EntityManager>(Quor::Name("entityManager"), root);
  store.routingConfig = place<Routing::Config>(root, "Morvane/routing/config");
  store.routingVrfConfigDir = place<Routing::VrfConfigDir>(root, "Morvane/routing/vrf/config");
  store.routingVrfInfoDir = place<Quor::Dir>(root, "Morvane/routing/vrf/info");
  store.routing6Config = place<Routing6::Config>(root, "Morvane/routing6/config");
  store.ipConfig = place<Ip::Config>(root, "Morvane/ip/config");
  store.ipStatus = place<Ip::Status>(root, "Morvane/ip/status");
  store.allVrfConfig = place<Ip::AllVrfConfig>(root, "Morvane/ip/vrf/config");
  store.allVrfStatusLocal = place<Ip::AllVrfStatusLocal>(root, "Morvane/ip/vrf/status/local");
  store.ip6Config = place<Ip6::Config>(root, "Morvane/ip6/config");
  store.ip6Status = place<Ip6::Status>(root, "Morvane/ip6/status");
  store.intfStatusDir = place<Interface::AllIntfStatusDir>(root, "Morvane/interface/status/all");
  store.snmpStatus = place<Snmp::Status>(root, "Morvane/snmp/status");
  return store;
}

}  // namespace Morvane
