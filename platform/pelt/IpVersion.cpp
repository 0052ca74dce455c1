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

Quor::String8 stringValue(IpVersion version) { return Pelt::enumName(names, version, "IpVersion"); }

IpVersion IpVersionInstance(unsigned int number) { return Pelt::enumByNumber(names, number, "IpVersion"); }

IpVersion IpVersionInstance(const Quor::String8& name) { return Pelt::enumByName(names, name.view(), "IpVersion"); }

Quor::String8 valueToStrep(IpVersion version) { return Quor::valueToStrep(stringValue(version)); }

IpVersion sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, IpVersion*) {
  return IpVersionInstance(Quor::readQuotedString(position, end));
}

std::ostream& operator<<(std::ostream& out, IpVersion version) { return out << stringValue(version); }

}  // namespace Ip
