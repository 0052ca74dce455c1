#include "platform/tarn/RouteStatus.h"

#include "platform/tarn/ShmTarnBackend.h"

namespace Tarn::Fib {

namespace {
constexpr std::string_view attributeNames[] = {"route"};
}

RouteStatus::RouteStatus(Quor::Name name) : Entity(name), route_(name.str() + "/route") {
  route_.changedHookIs([this](const Pelt::Prefix& prefix) {
    notify<NotifieeConst>(firstAttributeId, [&](NotifieeConst& n) { n.onRoute(prefix); });
  });
}

void RouteStatus::routeFileIs(const std::string& path) {
  route_.backendIs(std::make_unique<ShmTarnBackend<RouteCodec>>(route_, path));
  route_.initialize();
}

Quor::String8 RouteStatus::attributeString(Quor::AttributeId id) const { return attributeNameOf(attributeNames, id); }

Quor::AttributeId RouteStatus::attributeId(const Quor::String8& name) const {
  return attributeIdOf(attributeNames, name);
}

}  // namespace Tarn::Fib
