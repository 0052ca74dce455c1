#pragma once
// An entity that holds one table view, the pattern of the route, forwarding, ARP and VRF-id tables.
//
// Self names its type (typeName) and its view (attributeName, also the name of the view's file in
// the mount's directory), and declares its reactors, Self::NotifieeConst, with the reaction to one
// key (Self::onKey) and to a change of the whole table on a mount or unmount (Self::onAll).
// Notifications of a table file arrive from the event loop (see TableFollower); those of an
// in-process table inside the write.
#include <array>
#include <string_view>

#include "platform/tarn/TableEntity.h"

namespace Tarn {

template <class Self, class Codec>
class TableStatus : public TableEntity {
 public:
  using Key = typename Codec::Key;
  using Value = typename Codec::Value;
  using Map = TarnMap<Key, Value>;

  explicit TableStatus(const Quor::Name& name) : TableEntity(name), view_(name.str() + "/" + Self::attributeName) {
    view_.changedHookIs([this](const Key& key) {
      notify<typename Self::NotifieeConst>(firstAttributeId, [&](auto& reactor) { (reactor.*Self::onKey)(key); });
    });
  }

  void mount(const std::string& directory, TableType type) override {
    mountView<Codec>(view_, type, fileIn(directory));
    tellAll();
  }
  void unmount() override {
    view_.detach();
    tellAll();
  }

  const char* fwkType() const override { return Self::typeName; }
  Quor::String8 attributeString(Quor::AttributeId id) const override { return attributeNameOf(attributes, id); }
  Quor::AttributeId attributeId(const Quor::String8& name) const override { return attributeIdOf(attributes, name); }

 protected:
  const Map& view() const noexcept { return view_; }
  Map& view() noexcept { return view_; }
  static std::string fileIn(const std::string& directory) { return directory + "/" + Self::attributeName; }
  void tellAll() const {
    notify<typename Self::NotifieeConst>(firstAttributeId, [](auto& reactor) { (reactor.*Self::onAll)(); });
  }

 private:
  static constexpr std::array<std::string_view, 1> attributes{Self::attributeName};
  Map view_;
};

}  // namespace Tarn
