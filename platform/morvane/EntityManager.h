#pragma once
// The handle on the store through which the shared-memory tables are mounted: it knows the root of
// the tree, and keeps the entities mounted through it (QuorTarn::Mount) by mount path.
//
// Mounts are this process's attachments to tables, not content of the store, so they are kept and
// changed even through a const manager, which is how the state machines hold it.
#include <map>
#include <string>

#include "platform/quor/Entity.h"

namespace Morvane {

class EntityManager final : public Quor::Entity {
 public:
  EntityManager(Quor::Name name, Quor::Ptr<Quor::Dir> root) : Entity(std::move(name)), root_(std::move(root)) {}
  const char* fwkType() const override { return "Morvane::EntityManager"; }
  const Quor::Ptr<Quor::Dir>& root() const noexcept { return root_; }

  // The entity mounted at `path`, null when none.
  Quor::Ptr<Quor::Entity> mounted(const std::string& path) const {
    auto it = mounts_.find(path);
    return it == mounts_.end() ? nullptr : it->second;
  }
  void mountedIs(const std::string& path, const Quor::Ptr<Quor::Entity>& entity) const { mounts_[path] = entity; }
  void mountedDel(const std::string& path) const { mounts_.erase(path); }

 private:
  Quor::Ptr<Quor::Dir> root_;
  mutable std::map<std::string, Quor::Ptr<Quor::Entity>> mounts_;
};

}  // namespace Morvane
