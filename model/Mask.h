#pragma once
// Network masks and subnets of IPv4 prefix lengths.
#include "platform/pelt/IpAddr.h"

namespace IpSnmp {

// The top `length` bits set: 0.0.0.0 for 0, 255.255.255.255 for 32 and above.
constexpr Pelt::IpAddr maskOfLength(unsigned length) noexcept {
  return Pelt::IpAddr::fromHostOrder(length == 0 ? 0u : length >= 32 ? ~0u : ~0u << (32 - length));
}

// The address with its host bits zero.
constexpr Pelt::IpAddr subnetOf(Pelt::IpAddr addr, unsigned length) noexcept {
  return Pelt::IpAddr::fromNetworkOrder(addr.networkOrder() & maskOfLength(length).networkOrder());
}

}  // namespace IpSnmp
