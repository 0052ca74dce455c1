#pragma once
// One prefix of ipAddressPrefixTable, immutable. The same object is referenced by the occurrence that
// made it and, while that occurrence is the master of its address, by the table: its identity is
// what tells whether the table still holds the occurrence's prefix.
#include "model/IpAddressPrefixKey.h"
#include "platform/quor/Ptr.h"

namespace IpSnmp {

class IpAddressPrefixEntry : public Quor::PtrInterface {
 public:
  explicit IpAddressPrefixEntry(IpAddressPrefixKey index) : index_(std::move(index)) {}
  const IpAddressPrefixKey& index() const noexcept { return index_; }
  U32 ifIndex() const noexcept { return index_.ifIndex; }
  Ip::IpVersion version() const noexcept { return index_.version; }
  const Snmp::String& bytes() const noexcept { return index_.bytes; }
  U32 length() const noexcept { return index_.length; }

 private:
  const IpAddressPrefixKey index_;
};

}  // namespace IpSnmp
