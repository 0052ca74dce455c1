#include "sources/linux/KernelNames.h"

#include <linux/if_arp.h>
#include <linux/rtnetlink.h>

#include <cstdio>

#include "platform/tarn/RecordFields.h"

namespace Sources::Linux {

namespace {

// FNV-1a, fixed here because the name it makes is visible and must not change between versions.
U32 nameHash(std::string_view text) {
  U32 hash = 2166136261u;
  for (char c : text) hash = (hash ^ static_cast<U8>(c)) * 16777619u;
  return hash;
}

// The protocol of the routes of FRR's staticd, which the kernel's headers do not name.
constexpr U8 frrStaticProtocol = 196;

}  // namespace

Pelt::IntfId qualifiedIntfName(const L3::VrfName& vrf, std::string_view name) {
  if (vrf.isDefault()) return Pelt::IntfId(name);
  std::string qualified = vrf.stringValue().str() + ":" + std::string(name);
  if (qualified.size() > Tarn::intfNameBytes) {
    char tag[8];
    std::snprintf(tag, sizeof tag, "#%06x", nameHash(vrf.stringValue().view()) & 0xffffffu);
    qualified = std::string(tag) + ":" + std::string(name);
  }
  return Pelt::IntfId(qualified);
}

Quor::Name intfKind(const KernelLink& link) {
  if (link.type == ARPHRD_LOOPBACK) return Quor::Name("loopback");
  if (link.kind == "vlan") return Quor::Name("vlan");
  if (link.kind == "bond" || link.kind == "team") return Quor::Name("portChannel");
  return Quor::Name("ethernet");
}

Routing::Fib::RouteType routeTypeOf(U8 type, U8 protocol) {
  using namespace Routing::Fib;
  switch (type) {
    case RTN_UNICAST: break;
    case RTN_LOCAL: return routeTypeReceive;
    case RTN_BROADCAST: return routeTypeReceiveBcast;
    case RTN_BLACKHOLE:
    case RTN_UNREACHABLE:
    case RTN_PROHIBIT: return routeTypeDropped;
    default: return routeTypeKernel;
  }
  switch (protocol) {
    case RTPROT_KERNEL: return routeTypeConnected;
    case RTPROT_BOOT:
    case RTPROT_STATIC:
    case frrStaticProtocol: return routeTypeStaticConfig;
    case RTPROT_BGP: return routeTypeEbgp;
    case RTPROT_OSPF: return routeTypeOspfIntraArea;
    case RTPROT_ISIS: return routeTypeIsisLevel1;
    case RTPROT_RIP: return routeTypeRip;
    default: return routeTypeKernel;
  }
}

Routing::RoutePreference preferenceOf(Routing::Fib::RouteType type) {
  using namespace Routing::Fib;
  switch (type) {
    case routeTypeConnected:
    case routeTypeReceive:
    case routeTypeReceiveBcast: return Routing::RoutePreference(0);
    case routeTypeStaticConfig:
    case routeTypeDropped: return Routing::RoutePreference(1);
    case routeTypeEbgp: return Routing::RoutePreference(20);
    case routeTypeOspfIntraArea: return Routing::RoutePreference(110);
    case routeTypeIsisLevel1: return Routing::RoutePreference(115);
    case routeTypeRip: return Routing::RoutePreference(120);
    default: return Routing::RoutePreference(254);
  }
}

}  // namespace Sources::Linux
