#include "platform/morvane/IntfStatus.h"

#include <map>

namespace Interface {

IntfStatus::IntfStatus(Pelt::IntfId intfId, Quor::Name kind, S32 ifIndex)
    : StoreEntity(intfId.stringValue()), intfId_(intfId), kind_(std::move(kind)), ifIndex_(ifIndex) {}

void AllIntfStatusDir::intfStatusIs(const Quor::Ptr<IntfStatus>& member) {
  nonNull(member, "intfStatus");
  memberIs<&NotifieeConst::onIntfStatus>("intfStatus", intfStatus_, member->intfId(), member);
}

void AllIntfStatusDir::intfStatusDel(Pelt::IntfId id) {
  memberDel<&NotifieeConst::onIntfStatus>("intfStatus", intfStatus_, id);
}

}  // namespace Interface

namespace Intf {

namespace {

// The interfaces of the switch's own kinds carry their index in their status.
class StatusIndexProvider final : public IntfDetailsProvider {
 public:
  S32 ifIndex(const Quor::Ptr<const Interface::IntfStatus>& status) const override { return status->ifIndex(); }
};

std::map<Quor::Name, Quor::Ptr<const IntfDetailsProvider>>& providers() {
  // Never destroyed: static objects may ask for an index while the process ends.
  static auto* byKind = [] {
    auto* table = new std::map<Quor::Name, Quor::Ptr<const IntfDetailsProvider>>;
    Quor::Ptr<const IntfDetailsProvider> own = Quor::makePtr<StatusIndexProvider>();
    for (const char* kind : {"ethernet", "vlan", "loopback", "management", "portChannel"}) (*table)[kind] = own;
    return table;
  }();
  return *byKind;
}

}  // namespace

Quor::Ptr<const IntfDetailsProvider> intfDetailsProvider(const Quor::Ptr<const Interface::IntfStatus>& status) {
  if (!status) return nullptr;
  auto it = providers().find(status->kind());
  return it == providers().end() ? nullptr : it->second;
}

void intfDetailsProviderIs(const Quor::Name& kind, const Quor::Ptr<const IntfDetailsProvider>& provider) {
  if (provider)
    providers()[kind] = provider;
  else
    providers().erase(kind);
}

}  // namespace Intf

S32 intfIfIndex(const Quor::Ptr<const Interface::IntfStatus>& status) {
  Quor::Ptr<const Intf::IntfDetailsProvider> provider = Intf::intfDetailsProvider(status);
  return provider ? provider->ifIndex(status) : -1;
}
