#include "platform/morvane/SnmpStatus.h"

namespace Snmp {

void Status::systemStartTimeIs(double t) {
  assign<&NotifieeConst::onSystemStartTime>("systemStartTime", systemStartTime_, t);
}

void Status::coldStartIs(bool coldStart) { assign<&NotifieeConst::onColdStart>("coldStart", coldStart_, coldStart); }

void Status::initializedIs(bool initialized) {
  assign<&NotifieeConst::onInitialized>("initialized", initialized_, initialized);
}

}  // namespace Snmp
