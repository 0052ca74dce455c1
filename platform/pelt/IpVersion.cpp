#include "platform/pelt/IpVersion.h"

#include <ostream>

#include "platform/pelt/EnumText.h"

namespace Ip {

namespace {

constexpr Pelt::Enumerator<IpVersion> names[] = {
    {ipVersionUnknown, "ipVersionUnknown"},
    {ipVersion4, "ipVersion4"},
    {ipVersion6, "ipVersion6"},
};

}  // namespace

PELT_DEFINE_ENUM_TEXT(IpVersion, names)

std::ostream& operator<<(std::ostream& out, IpVersion version) { return out << stringValue(version); }

}  // namespace Ip
