#include "agent/Root.h"

namespace IpSnmp {

Root::~Root() {
  ipAddressTableSmDel();
  arpTableSmDel();
  ipRouteTableSmDel();
  ipRoute6TableSmDel();
  vrfIfTableSmDel();
  vrfRootSmDel();
  if (vrfRootDir_) vrfRootDir_->parentIs(nullptr);
  vrfRootDirDel();
}

Quor::ValidPtr<VrfRootDir> Root::vrfRootDirIs(const Quor::Name& name) {
  if (vrfRootDir_ && vrfRootDir_->name() == name) return vrfRootDir_;
  if (vrfRootDir_) vrfRootDir_->parentIs(nullptr);
  vrfRootDir_ = vrfRootDirFactory(name);
  vrfRootDir_->parentIs(this);
  return vrfRootDir_;
}

Quor::Ptr<Root> rootFactory(const Quor::Name& name) { return Quor::makePtr<Root>(name); }

}  // namespace IpSnmp
