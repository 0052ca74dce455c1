#pragma once
// The handle on the store through which the per-VRF shared-memory tables are mounted. For now it
// knows the root of the tree, where those mounts will hang.
#include "platform/quor/Entity.h"

namespace Morvane {

class EntityManager final : public Quor::Entity {
 public:
  EntityManager(Quor::Name name, Quor::Ptr<Quor::Dir> root) : Entity(std::move(name)), root_(std::move(root)) {}
  const char* fwkType() const override { return "Morvane::EntityManager"; }
  const Quor::Ptr<Quor::Dir>& root() const noexcept { return root_; }

 private:
  Quor::Ptr<Quor::Dir> root_;
};

}  // namespace Morvane
