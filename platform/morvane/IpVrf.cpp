#include "platform/morvane/IpVrf.h"

namespace Ip {

void VrfConfig::routeDistinguisherIs(const Pelt::RouteDistinguisher& rd) {
  assign<&NotifieeConst::onRouteDistinguisher>("routeDistinguisher", routeDistinguisher_, rd);
}

void VrfStatusLocal::stateIs(VrfState state) { assign<&NotifieeConst::onState>("state", state_, state); }

void VrfStatusLocal::networkNamespaceIs(const Quor::String8& ns) {
  assign<&NotifieeConst::onNetworkNamespace>("networkNamespace", networkNamespace_, ns);
}

void VrfStatusLocal::nsInodeIs(U64 inode) { assign<&NotifieeConst::onNsInode>("nsInode", nsInode_, inode); }

void VrfStatusLocal::nsInodeValidIs(bool valid) {
  assign<&NotifieeConst::onNsInodeValid>("nsInodeValid", nsInodeValid_, valid);
}

}  // namespace Ip
