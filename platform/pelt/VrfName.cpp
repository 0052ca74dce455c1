#include "platform/pelt/VrfName.h"

#include <ostream>

#include "platform/quor/Exception.h"

namespace L3 {

VrfName::VrfName(const Quor::ByteString& name) : name_(name) {
  if (name_.size() > maxBytes) Quor::throwRangeException("VrfName::bytes > 100 not allowed");
}

std::ostream& operator<<(std::ostream& out, const VrfName& name) { return out << name.stringValue(); }

}  // namespace L3
