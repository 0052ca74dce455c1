#include "frontend/Conversions.h"

#include "frontend/ElementaryConversions.h"

namespace {

constexpr int forwarding = 1;
constexpr int notForwarding = 2;

}  // namespace

int IpRoutingToAsnInteger(bool routing, unsigned char* buffer, int size) {
  return SnmpConvert<int, S32ToAsnIntegerF>(routing ? forwarding : notForwarding, buffer, size);
}
