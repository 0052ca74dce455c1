#pragma once
// Whether a namespace forwards IPv4 and IPv6: /proc/sys/net/ipv4/ip_forward and
// /proc/sys/net/ipv6/conf/all/forwarding, read inside the namespace (the files under /proc/sys/net
// show the namespace of the thread that opens them).
//
// The kernel announces no change of these over netlink, so the source reads them again on a clock
// (every two seconds): a change shows in the store within that time.
#include <optional>
#include <string>

namespace Sources::Linux {

struct Forwarding {
  bool ipv4 = false;
  bool ipv6 = false;
  friend bool operator==(const Forwarding&, const Forwarding&) = default;
};

// The forwarding of `netns` (a name under /var/run/netns; empty: the process's own namespace), or
// nothing when the namespace cannot be entered. A file that cannot be read counts as off (a kernel
// without IPv6 has no such file).
std::optional<Forwarding> readForwarding(const std::string& netns);

}  // namespace Sources::Linux
