#pragma once
// The list of registration units that the plug-in enrols when it is loaded.
//
// Each unit of the front end has one static HandlerRegistration and one static AutoRegistree; the
// AutoRegistree enrols the unit while the library is loaded and withdraws it at unload. The plug-in
// entry then registers every enrolled unit in the default context, and nothing else is enrolled.
#include <cstddef>

#include "platform/quor/String.h"

namespace Snmp {

class HandlerRegistration {
 public:
  virtual ~HandlerRegistration() = default;
  // Registers all objects of the unit in `context` ("" is the default context).
  virtual void registerInContext(Quor::String8 context) = 0;
};

class AutoRegistree {
 public:
  explicit AutoRegistree(HandlerRegistration* unit);
  ~AutoRegistree();
  AutoRegistree(const AutoRegistree&) = delete;
  AutoRegistree& operator=(const AutoRegistree&) = delete;

 private:
  HandlerRegistration* unit_;
};

// Calls registerInContext of every enrolled unit, in the order of enrolment.
void registerAllInContext(const Quor::String8& context);
// How many units are enrolled now.
std::size_t enrolledUnits();

}  // namespace Snmp
