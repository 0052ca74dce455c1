#include "platform/morvane/Ip6Intf.h"

#include <ostream>

namespace Ip6 {

std::ostream& operator<<(std::ostream& out, const AddressInfo& info) { return out << info.key(); }

}  // namespace Ip6
