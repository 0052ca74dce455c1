#pragma once
// An address of either IP version, as the ARP table keys its neighbours. The default value has
// version ipVersionUnknown and sorts first.
#include <iosfwd>

#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/IpAddr.h"
#include "platform/pelt/IpVersion.h"

namespace Pelt {

class IpGenAddr {
 public:
  IpGenAddr() noexcept = default;
  IpGenAddr(IpAddr addr) noexcept : version_(Ip::ipVersion4), v4_(addr) {}
  IpGenAddr(const Ip6Addr& addr) noexcept : version_(Ip::ipVersion6), v6_(addr) {}

  Ip::IpVersion version() const noexcept { return version_; }
  // The IPv4 address; 0.0.0.0 unless the version is ipVersion4.
  IpAddr v4Addr() const noexcept { return v4_; }
  // The IPv6 address; :: unless the version is ipVersion6.
  const Ip6Addr& v6Addr() const noexcept { return v6_; }
  U32 hash() const noexcept { return version_ == Ip::ipVersion6 ? v6_.hash() : v4_.hash() ^ U32(version_); }

  friend bool operator==(const IpGenAddr&, const IpGenAddr&) = default;
  // Version first, then the address within its version.
  friend bool operator<(const IpGenAddr& a, const IpGenAddr& b) noexcept {
    if (a.version_ != b.version_) return a.version_ < b.version_;
    return a.version_ == Ip::ipVersion6 ? a.v6_ < b.v6_ : a.v4_ < b.v4_;
  }

 private:
  Ip::IpVersion version_ = Ip::ipVersionUnknown;
  IpAddr v4_;
  Ip6Addr v6_;
};

std::ostream& operator<<(std::ostream& out, const IpGenAddr& addr);

}  // namespace Pelt
