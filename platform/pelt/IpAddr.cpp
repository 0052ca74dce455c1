#include "platform/pelt/IpAddr.h"

#include <arpa/inet.h>

#include <cstring>
#include <ostream>
#include <sstream>

#include "platform/pelt/ParseText.h"
#include "platform/quor/Exception.h"

namespace Pelt {

IpAddr::IpAddr(std::string_view text) {
  auto parsed = parse(text);
  if (!parsed) cannotParse(text, "an IPv4 address");
  *this = *parsed;
}

std::optional<IpAddr> IpAddr::parse(std::string_view text) noexcept {
  char buffer[INET_ADDRSTRLEN];
  if (text.size() >= sizeof buffer) return std::nullopt;
  text.copy(buffer, text.size());
  buffer[text.size()] = '\0';
  in_addr addr;
  if (::inet_pton(AF_INET, buffer, &addr) != 1) return std::nullopt;
  return fromNetworkOrder(addr.s_addr);
}

void IpAddr::copyToBuffer(U8* out) const noexcept { std::memcpy(out, &value_, sizeof value_); }

U32 IpAddr::hash() const noexcept {
  U8 octets[4];
  copyToBuffer(octets);
  return Quor::StringN<unsigned char>::hash(octets, sizeof octets);
}

std::ostream& operator<<(std::ostream& out, IpAddr addr) {
  U32 v = addr.hostOrder();
  return out << (v >> 24) << '.' << (v >> 16 & 0xff) << '.' << (v >> 8 & 0xff) << '.' << (v & 0xff);
}

Quor::String8 valueToStrep(IpAddr addr) {
  std::ostringstream text;
  text << addr;
  return Quor::valueToStrep(Quor::String8(text.str()));
}

IpAddr sequenceToValue(Quor::StrepIterator& position, const Quor::StrepIterator& end, IpAddr*) {
  Quor::StrepIterator start = position;
  auto addr = IpAddr::parse(Quor::readQuotedString(position, end).view());
  if (!addr) Quor::cannotConvert(start, end, "Pelt::IpAddr");
  return *addr;
}

IpAddrWithMask::IpAddrWithMask(IpAddr addr, unsigned len) : addr_(addr), len_(static_cast<U8>(len)) {
  if (len > 32) Quor::throwRangeException("IPv4 prefix length " + std::to_string(len) + " > 32");
}

IpAddrWithMask::IpAddrWithMask(std::string_view text) {
  auto parsed = parse(text);
  if (!parsed) cannotParse(text, "an IPv4 address with prefix length");
  *this = *parsed;
}

std::optional<IpAddrWithMask> IpAddrWithMask::parse(std::string_view text) noexcept {
  auto parts = splitPrefixText(text, 32);
  if (!parts) return std::nullopt;
  auto addr = IpAddr::parse(parts->addr);
  if (!addr) return std::nullopt;
  return IpAddrWithMask(*addr, parts->len);
}

U32 IpAddrWithMask::hash() const noexcept { return addr_.hash() ^ len_; }

std::ostream& operator<<(std::ostream& out, const IpAddrWithMask& addr) {
  return out << addr.addr() << '/' << unsigned(addr.len());
}

}  // namespace Pelt
