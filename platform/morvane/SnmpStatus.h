#pragma once
// The SNMP agent's own status: when it started, whether that was a cold start, and whether it has
// finished starting (initialized), which is when the VRFs other than the default come up.
#include "platform/morvane/StoreEntity.h"

namespace Snmp {

class Status final : public Morvane::StoreEntity<Status> {
 public:
  class NotifieeConst : public Quor::Notifiee<Status> {
   public:
    virtual void onSystemStartTime() {}
    virtual void onColdStart() {}
    virtual void onInitialized() {}
  };
  static constexpr const char* typeName = "Snmp::Status";
  static constexpr std::string_view attributeNames[] = {"systemStartTime", "coldStart", "initialized"};

  using StoreEntity::StoreEntity;
  // Seconds on the clock of Quor::now().
  double systemStartTime() const noexcept { return systemStartTime_; }
  void systemStartTimeIs(double t);
  bool coldStart() const noexcept { return coldStart_; }
  void coldStartIs(bool coldStart);
  bool initialized() const noexcept { return initialized_; }
  void initializedIs(bool initialized);

 private:
  double systemStartTime_ = 0.0;
  bool coldStart_ = false;
  bool initialized_ = false;
};

}  // namespace Snmp
