#include "frontend/ElementaryConversions.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>
#include <string>

#include "platform/quor/Clock.h"
#include "platform/quor/Exception.h"
#include "platform/snmp/NetSnmp.h"

namespace {

template <class T>
int writeValue(const T& value, unsigned char* buffer, int size) {
  if (!buffer || size < static_cast<int>(sizeof value)) return -1;
  std::memcpy(buffer, &value, sizeof value);
  return sizeof value;
}

int writeBytes(const void* bytes, std::size_t length, unsigned char* buffer, int size) {
  if (!buffer || size < 0 || length > static_cast<std::size_t>(size)) return -1;
  if (length) std::memcpy(buffer, bytes, length);
  return static_cast<int>(length);
}

// Hundredths of a second, clamped to what TimeTicks holds.
unsigned int ticksOf(double seconds) {
  const double ticks = std::floor(seconds * 100.0);
  if (!(ticks > 0.0)) return 0;
  return ticks >= 4294967295.0 ? 4294967295u : static_cast<unsigned int>(ticks);
}

}  // namespace

int S32ToAsnIntegerF::operator()(int value, unsigned char* buffer, int size) const {
  return writeValue(value, buffer, size);
}

int U32ToAsnUnsignedF::operator()(unsigned int value, unsigned char* buffer, int size) const {
  return writeValue(value, buffer, size);
}

int U64ToCounter32F::operator()(unsigned long long value, unsigned char* buffer, int size) const {
  return writeValue(static_cast<unsigned int>(value & 0xffffffffu), buffer, size);
}

int U64ToCounter64F::operator()(unsigned long long value, unsigned char* buffer, int size) const {
  struct counter64 counter {};
  counter.high = static_cast<u_long>(value >> 32);
  counter.low = static_cast<u_long>(value & 0xffffffffu);
  return writeValue(counter, buffer, size);
}

int SecondsToTimeTicksF::operator()(double seconds, unsigned char* buffer, int size) const {
  return writeValue(ticksOf(seconds), buffer, size);
}

int NowSecondsToUptimeTimeTicksF::operator()(double seconds, unsigned char* buffer, int size) const {
  // The agent counts its uptime itself; the point's distance from now moves it back.
  const double uptimeThen = static_cast<double>(netsnmp_get_agent_uptime()) / 100.0 - (Quor::now() - seconds);
  return writeValue(ticksOf(uptimeThen), buffer, size);
}

int StringToAsnOctetStringF::operator()(const Quor::String8& value, unsigned char* buffer, int size) const {
  return writeBytes(value.bytes(), value.size(), buffer, size);
}

int StringToAsnOidF::operator()(const Quor::String8& value, unsigned char* buffer, int size) const {
  if (!buffer || size < 0) return -1;
  const std::string_view text = value.view();
  const std::size_t room = static_cast<std::size_t>(size) / sizeof(oid);
  std::size_t count = 0;
  const char* position = text.data();
  const char* const end = text.data() + text.size();
  while (true) {
    unsigned long subid = 0;
    auto [next, error] = std::from_chars(position, end, subid);
    if (error != std::errc() || subid > MAX_SUBID || count == room) return -1;
    const oid part = subid;
    std::memcpy(buffer + count * sizeof(oid), &part, sizeof part);
    ++count;
    if (next == end) break;
    if (*next != '.') return -1;
    position = next + 1;
  }
  return static_cast<int>(count * sizeof(oid));
}

int PeltIpAddrToAsnOctetStringF::operator()(const Pelt::IpAddr& value, unsigned char* buffer, int size) const {
  if (!buffer || size < 4) return -1;
  value.copyToBuffer(buffer);
  return 4;
}

int PeltEthAddrToAsnOctetStringF::operator()(const Pelt::EthAddr& value, unsigned char* buffer, int size) const {
  if (!buffer || size < 6) return -1;
  value.copyToBuffer(buffer);
  return 6;
}

int AsnIntegerToS32(void* value) {
  const long number = *static_cast<const long*>(value);
  if (number < INT_MIN || number > INT_MAX)
    Quor::throwRangeException("INTEGER " + std::to_string(number) + " outside the 32-bit range");
  return static_cast<int>(number);
}

unsigned int AsnUnsignedToU32(void* value) {
  const unsigned long number = *static_cast<const unsigned long*>(value);
  if (number > UINT_MAX) Quor::throwRangeException("Unsigned32 " + std::to_string(number) + " out of range");
  return static_cast<unsigned int>(number);
}

Pelt::IpAddr AsnIpAddressToPeltIpAddr(void* value) {
  U32 networkOrder;
  std::memcpy(&networkOrder, value, sizeof networkOrder);
  return Pelt::IpAddr::fromNetworkOrder(networkOrder);
}

Snmp::String AsnOctetStringToSnmpString(void* value, unsigned int length) {
  return Snmp::String(value, length);
}
