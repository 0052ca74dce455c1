#include "sources/linux/StoreImage.h"

#include <linux/if_addr.h>
#include <net/if.h>

#include "sources/linux/KernelNames.h"
#include "sources/linux/NetnsDirectory.h"

namespace Sources::Linux {

void addNamespace(Scenario& image, const NamespaceView& ns) {
  if (ns.vrf.isDefault()) {
    image.routing = RoutingScenario{ns.forwarding.ipv4, ns.forwarding.ipv6};
  } else {
    VrfScenario& vrf = image.vrfs[ns.vrf];
    vrf.routingIpv4 = ns.forwarding.ipv4;
    vrf.published = true;
    vrf.config = Pelt::RouteDistinguisher();
    vrf.status = VrfStatusScenario{Ip::vrfStateActive, namespaceOfVrf(ns.vrf), ns.nsInode};
  }
  for (const auto& [ifIndex, link] : ns.links.links()) {
    const NamespaceLinks::Addresses& addrs = ns.links.addresses(ifIndex);
    const bool up = link.flags & IFF_UP;
    IntfScenario intf;
    intf.presence = IntfPresence{intfKind(link), ifIndex};
    IntfSideScenario config{ns.vrf, ns.links.primaryIpv4(ifIndex), {}};
    IntfSideScenario status{ns.vrf, up ? config.ipv4 : Pelt::IpAddrWithMask(), {}};
    for (const auto& [addr, flags] : addrs.ipv6) {
      config.ipv6.insert(addr);
      if (up && !(flags & (IFA_F_TENTATIVE | IFA_F_DADFAILED))) status.ipv6.insert(addr);
    }
    intf.config = std::move(config);
    intf.status = std::move(status);
    image.interfaces[qualifiedIntfName(ns.vrf, link.name)] = std::move(intf);
  }
}

}  // namespace Sources::Linux
