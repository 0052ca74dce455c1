#pragma once
// What the store holds of one namespace, in the form of a scenario, so that the scenario's apply by
// difference brings the store in line with the kernel (see ScenarioApply.h).
//
// The kernel has one truth for addresses, and the store two sides. The configuration side holds
// every address the kernel has on the link; the status side the addresses in effect: those of a
// link that is administratively up (IFF_UP), and of IPv6 only those past duplicate address
// detection (neither tentative nor failed). So the MIB shows an address of a link that is down as
// inaccessible, and preferred once the link is up. On both sides the IPv4 address is the primary
// one, the first global address that is not secondary, and the L3 VRF is the namespace's VRF.
//
// A VRF namespace is a VRF published to the routing side (routing/vrf/info) with IPv4 routing as
// its ip_forward says, an Ip::VrfConfig with the route distinguisher 0:0 (Linux has none) and an
// active Ip::VrfStatusLocal naming its namespace and the namespace's inode. The default VRF's
// forwarding goes to the routing configuration of IPv4 and IPv6.
#include <optional>

#include "sources/linux/Forwarding.h"
#include "sources/linux/NamespaceLinks.h"
#include "sources/scenario/Scenario.h"

namespace Sources::Linux {

struct NamespaceView {
  L3::VrfName vrf;  // "default" for the process's own namespace
  const NamespaceLinks& links;
  Forwarding forwarding;
  std::optional<U64> nsInode;
};

// Adds the namespace to `image`.
void addNamespace(Scenario& image, const NamespaceView& ns);

}  // namespace Sources::Linux
