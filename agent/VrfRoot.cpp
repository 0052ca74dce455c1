#include "agent/VrfRoot.h"

namespace IpSnmp {

VrfRoot::~VrfRoot() {
  arpTableSmDel();
  ipRouteTableSmDel();
  ipRoute6TableSmDel();
}

Quor::Ptr<VrfRootDir> vrfRootDirFactory(const Quor::Name& name) { return Quor::makePtr<VrfRootDir>(name); }

}  // namespace IpSnmp
