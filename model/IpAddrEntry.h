#pragma once
// One row of ipAddrTable: a view on an IPv4 row of ipAddressTable, which it keeps alive.
#include "model/IpAddressEntry.h"
#include "model/Mask.h"

namespace IpSnmp {

class IpAddrEntry : public Quor::PtrInterface, public Quor::RbTreeLink {
 public:
  explicit IpAddrEntry(const Quor::ValidPtr<IpAddressEntry>& masterEntry)
      : masterEntry_(masterEntry), key_(masterEntry->ipAdEntAddr()) {}

  const Quor::ValidPtr<IpAddressEntry>& masterEntry() const noexcept { return masterEntry_; }
  const Pelt::IpAddr& fwkKey() const noexcept { return key_; }
  Pelt::IpAddr ipAdEntAddr() const noexcept { return key_; }
  U32 ipAdEntIfIndex() const { return masterEntry_->ifIndex(); }
  // The mask of the master occurrence's prefix length.
  Pelt::IpAddr ipAdEntNetMask() const {
    auto prefix = masterEntry_->prefixEntry();
    return maskOfLength(prefix ? prefix->length() : 0);
  }

 private:
  const Quor::ValidPtr<IpAddressEntry> masterEntry_;
  const Pelt::IpAddr key_;
};

}  // namespace IpSnmp
