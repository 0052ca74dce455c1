#pragma once
// The links of one namespace and their addresses, as the kernel holds them, kept from the messages
// of an RtnlSession (links, IPv4 and IPv6 addresses).
//
// IPv4 addresses of a link are kept in the order the kernel lists them, which is the order in which
// they were added, so that the primary address is the first global one that is not secondary.
#include <map>
#include <utility>
#include <vector>

#include "platform/pelt/Ip6Addr.h"
#include "platform/pelt/IpAddr.h"
#include "sources/linux/RtnlMessages.h"
#include "sources/linux/RtnlSession.h"

namespace Sources::Linux {

class NamespaceLinks final : public RtnlSession::Handler {
 public:
  struct Ipv4 {
    Pelt::IpAddrWithMask addr;
    U8 scope;
    U32 flags;
  };
  struct Addresses {
    std::vector<Ipv4> ipv4;
    std::map<Pelt::Ip6AddrWithMask, U32> ipv6;  // address to IFA_F_* flags
  };

  const std::map<S32, KernelLink>& links() const noexcept { return links_; }
  // The addresses of `ifIndex`; none for an unknown link.
  const Addresses& addresses(S32 ifIndex) const;
  // The first IPv4 address of global scope that is not secondary; 0.0.0.0/0 when there is none.
  Pelt::IpAddrWithMask primaryIpv4(S32 ifIndex) const;
  // Whether anything changed since the last call.
  bool takeChanged() noexcept { return std::exchange(changed_, false); }

  void resyncBegins() override;
  void message(const nlmsghdr& message) override;
  void dumpsDone() override {}

 private:
  void handleAddr(const KernelAddr& addr, bool present);

  std::map<S32, KernelLink> links_;
  std::map<S32, Addresses> addresses_;
  bool changed_ = false;
};

}  // namespace Sources::Linux
