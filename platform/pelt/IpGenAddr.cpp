#include "platform/pelt/IpGenAddr.h"

#include <ostream>

namespace Pelt {

std::ostream& operator<<(std::ostream& out, const IpGenAddr& addr) {
  switch (addr.version()) {
    case Ip::ipVersion4:
      return out << addr.v4Addr();
    case Ip::ipVersion6:
      return out << addr.v6Addr();
    default:
      return out << "unknown";
  }
}

}  // namespace Pelt
