#include "sources/linux/NamespaceLinks.h"

#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>

namespace Sources::Linux {

const NamespaceLinks::Addresses& NamespaceLinks::addresses(S32 ifIndex) const {
  static const Addresses none;
  auto it = addresses_.find(ifIndex);
  return it == addresses_.end() ? none : it->second;
}

Pelt::IpAddrWithMask NamespaceLinks::primaryIpv4(S32 ifIndex) const {
  for (const Ipv4& a : addresses(ifIndex).ipv4)
    if (a.scope == RT_SCOPE_UNIVERSE && !(a.flags & IFA_F_SECONDARY)) return a.addr;
  return {};
}

void NamespaceLinks::resyncBegins() {
  links_.clear();
  addresses_.clear();
  changed_ = true;
}

void NamespaceLinks::message(const nlmsghdr& message) {
  switch (message.nlmsg_type) {
    case RTM_NEWLINK:
    case RTM_DELLINK:
      if (auto link = decodeLink(message)) {
        if (message.nlmsg_type == RTM_NEWLINK) {
          links_[link->ifIndex] = *link;
        } else {
          links_.erase(link->ifIndex);
          addresses_.erase(link->ifIndex);
        }
        changed_ = true;
      }
      break;
    case RTM_NEWADDR:
    case RTM_DELADDR:
      if (auto addr = decodeAddr(message)) handleAddr(*addr, message.nlmsg_type == RTM_NEWADDR);
      break;
    default: break;
  }
}

void NamespaceLinks::handleAddr(const KernelAddr& addr, bool present) {
  Addresses& of = addresses_[addr.ifIndex];
  changed_ = true;
  if (addr.family == AF_INET6) {
    Pelt::Ip6AddrWithMask key(Pelt::Ip6Addr::fromBytes(addr.bytes.data()), addr.prefixLen);
    if (present)
      of.ipv6[key] = addr.flags;
    else
      of.ipv6.erase(key);
    return;
  }
  U32 value;
  std::memcpy(&value, addr.bytes.data(), 4);
  Pelt::IpAddrWithMask key(Pelt::IpAddr::fromNetworkOrder(value), addr.prefixLen);
  auto it = std::find_if(of.ipv4.begin(), of.ipv4.end(), [&](const Ipv4& a) { return a.addr == key; });
  if (!present) {
    if (it != of.ipv4.end()) of.ipv4.erase(it);
  } else if (it != of.ipv4.end()) {
    *it = Ipv4{key, addr.scope, addr.flags};  // a change of flags keeps its place
  } else {
    of.ipv4.push_back(Ipv4{key, addr.scope, addr.flags});
  }
}

}  // namespace Sources::Linux
