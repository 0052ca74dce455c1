#include "platform/quor/Exception.h"

#include <ostream>

namespace Quor {

std::ostream& operator<<(std::ostream& out, const Exception& e) { return out << e.name() << ": " << e.text(); }

void throwRangeException(const std::string& text) { throw RangeException(text); }

void throwNameInUseException(const std::string& text) { throw NameInUseException(text); }

}  // namespace Quor
