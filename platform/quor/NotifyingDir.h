#pragma once
// An entity that owns child entities under their names and tells its reactors of each one that
// comes or goes, the pattern of the directories of per-VRF objects.
//
// Self names the attribute that holds the children (attributeName, also the first attribute of the
// class) and declares its reactors, Self::NotifieeConst, with the reaction to one name
// (Self::onMember). A child is made on demand with M(name), parented to the directory under that
// attribute, and unparented when it leaves or when the directory goes.
#include <array>
#include <string_view>

#include "platform/quor/Entity.h"
#include "platform/quor/HashMap.h"

namespace Quor {

template <class Self, class M>
class NotifyingDir : public Entity {
 public:
  using Members = HashMap<M, Name>;

  using Entity::Entity;
  ~NotifyingDir() override {
    for (auto it = members_.begin(); it; ++it) it->parentIs(nullptr);
  }

  const Members& members() const noexcept { return members_; }
  M* member(const Name& name) const { return members_.member(name); }
  // The child of `name`, made when absent.
  ValidPtr<M> memberIs(const Name& name) {
    if (M* existing = members_.member(name)) return existing;
    auto made = makePtr<M>(name);
    made->parentIs(this);
    made->parentAttrIdIs(firstAttributeId);
    members_.memberIs(made);
    memberNotify(name);
    return made;
  }
  Ptr<M> memberDel(const Name& name) {
    Ptr<M> removed = members_.deleteMember(name);
    if (!removed) return nullptr;
    removed->parentIs(nullptr);
    memberNotify(name);
    return removed;
  }
  void memberDelAll() {
    while (M* first = members_.firstMember()) memberDel(first->name());
  }

  String8 attributeString(AttributeId id) const override { return attributeNameOf(attributes, id); }
  AttributeId attributeId(const String8& name) const override { return attributeIdOf(attributes, name); }
  Ptr<Entity> childEntity(std::string_view attr, std::string_view key) const override {
    return attr == Self::attributeName ? members_.member(Name(key)) : nullptr;
  }

 private:
  static constexpr std::array<std::string_view, 1> attributes{Self::attributeName};
  void memberNotify(const Name& name) const {
    notify<typename Self::NotifieeConst>(firstAttributeId, [&](auto& reactor) { (reactor.*Self::onMember)(name); });
  }
  Members members_;
};

}  // namespace Quor
