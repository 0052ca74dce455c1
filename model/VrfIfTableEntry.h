#pragma once
// One row of vrfIfTable: an interface that sits in a non-default VRF, by interface index.
#include "platform/quor/RbTreeMap.h"
#include "platform/quor/String.h"

namespace IpSnmp {

class VrfIfTableEntry : public Quor::PtrInterface, public Quor::RbTreeLink {
 public:
  explicit VrfIfTableEntry(U32 ifIndex) : ifIndex_(ifIndex) {}
  const U32& fwkKey() const noexcept { return ifIndex_; }
  U32 ifIndex() const noexcept { return ifIndex_; }
  const Snmp::String& vrfName() const noexcept { return vrfName_; }
  // Replaces the name; the same buffer again is recognised at once and changes nothing.
  void vrfNameIs(const Snmp::String& name) {
    if (name.buffer() == vrfName_.buffer()) return;
    vrfName_ = name;
  }

 private:
  const U32 ifIndex_;
  Snmp::String vrfName_;
};

}  // namespace IpSnmp
