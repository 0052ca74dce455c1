#include "platform/tarn/RecordFields.h"

#include <cstring>

#include "platform/quor/Exception.h"

namespace Tarn {

IntfNameField encodeIntfName(Pelt::IntfId id) {
  IntfNameField field{};
  std::string_view name = id.stringValue().view();
  if (name.size() > intfNameBytes)
    Quor::throwRangeException("interface name '" + std::string(name) + "' is longer than " +
                              std::to_string(intfNameBytes) + " bytes");
  std::memcpy(field.bytes, name.data(), name.size());
  return field;
}

Pelt::IntfId decodeIntfName(const IntfNameField& field) {
  return Pelt::IntfId(std::string_view(field.bytes, strnlen(field.bytes, intfNameBytes)));
}

IpGenAddrField encodeIpGenAddr(const Pelt::IpGenAddr& addr) {
  IpGenAddrField field{};
  field.version = static_cast<U8>(addr.version());
  if (addr.version() == Ip::ipVersion4) addr.v4Addr().copyToBuffer(field.octets);
  if (addr.version() == Ip::ipVersion6) addr.v6Addr().copyToBuffer(field.octets);
  return field;
}

Pelt::IpGenAddr decodeIpGenAddr(const IpGenAddrField& field) {
  switch (field.version) {
    case Ip::ipVersion4: {
      U32 networkOrder;
      std::memcpy(&networkOrder, field.octets, sizeof networkOrder);
      return Pelt::IpAddr::fromNetworkOrder(networkOrder);
    }
    case Ip::ipVersion6:
      return Pelt::Ip6Addr::fromBytes(field.octets);
    default:
      return Pelt::IpGenAddr();
  }
}

}  // namespace Tarn
