#include "MibTree.h"

#include "model/Mask.h"
#include "platform/pelt/Ip6Addr.h"
#include "platform/snmp/SnmpUtil.h"

namespace TableTest {

namespace {

template <class E>
Quor::Ptr<E> enter(Quor::Dir& dir, const char* name) {
  auto entity = Quor::makePtr<E>(Quor::Name(name));
  dir.entityPtrIs(entity);
  return entity;
}

void addAddress(IpSnmp::IpMib& mib, const IpSnmp::InetAddress& key, const Snmp::String& subnet, unsigned length,
                U32 ifIndex) {
  auto prefix = Quor::makePtr<IpSnmp::IpAddressPrefixEntry>(IpSnmp::IpAddressPrefixKey(ifIndex, key.version, subnet, length));
  Quor::ValidPtr<IpSnmp::IpAddressEntry> row = mib.ipAddressTableIs(key);
  row->intfIs(IpSnmp::IntfData(IpSnmp::IntfDataKey(IpSnmp::addressSourceStatus, Pelt::IntfId("Ethernet" + std::to_string(ifIndex))), prefix));
  mib.ipAddressPrefixTableIs(prefix);
  if (key.version == Ip::ipVersion4) mib.ipAddrTableIs(row);
}

}  // namespace

MibTree::MibTree() : root(Quor::makePtr<Quor::Dir>(Quor::Name("switch"))) {
  Quor::Ptr<Quor::Dir> snmp = enter<Quor::Dir>(*root, "snmp");
  Quor::Ptr<Quor::Dir> ip = enter<Quor::Dir>(*snmp, "ip");
  ipMib = enter<IpSnmp::IpMib>(*ip, "ipmib");
  ipForwardMib = enter<IpSnmp::IpForwardMib>(*ip, "ipforwardmib");
  ipVrfMib = enter<IpSnmp::IpVrfMib>(*ip, "ipvrfmib");
  vrfMibs = enter<IpSnmp::VrfMibsDir>(*ip, "vrf");
  SnmpUtil::rootIs(root);
}

MibTree::~MibTree() {
  vrfMibs->mibsDelAll();
  SnmpUtil::rootIs(nullptr);
}

IpSnmp::IpForwardMib& MibTree::vrfIpForwardMib(const char* name) {
  return *vrfMibs->mibsIs(Quor::Name(name))->ipforwardmibIs(Quor::Name(std::string(name) + ".ipforwardmib"));
}

IpSnmp::IpCidrRouteTableIndex routeKey(const char* dest, unsigned length, const char* nextHop, U32 tos) {
  return {Pelt::IpAddr(dest), IpSnmp::maskOfLength(length), tos, Pelt::IpAddr(nextHop)};
}

IpSnmp::IpCidrRouteTableEntry addRoute(IpSnmp::IpForwardMib& mib, const char* dest, unsigned length,
                                       const char* nextHop, U32 ifIndex, U32 metric, U8 preference,
                                       U32 tos) {
  return mib.ipCidrRouteTableIs(routeKey(dest, length, nextHop, tos), ifIndex, Routing::RouteMetric(metric),
                                Routing::RoutePreference(preference), Routing::Fib::routeTypeStaticConfig);
}

IpSnmp::InetCidrRoute6Entry addRoute6(IpSnmp::IpForwardMib& mib, const char* dest, unsigned length,
                                                      const char* nextHop, U32 ifIndex, U32 metric, U8 preference) {
  const auto key = IpSnmp::InetCidrRoute6Index::of(Pelt::Ip6Addr(dest), static_cast<U8>(length),
                                                    Pelt::Ip6Addr(nextHop), ifIndex);
  return mib.inetCidrRoute6TableIs(key, ifIndex, Routing::RouteMetric(metric), Routing::RoutePreference(preference),
                                   Routing::Fib::routeTypeStaticConfig);
}

void addRoutes(IpSnmp::IpForwardMib& mib, std::size_t count) {
  const Pelt::IpAddr nextHop(192, 0, 2, 1);
  const Pelt::IpAddr mask = IpSnmp::maskOfLength(24);
  for (std::size_t i = 0; i < count; ++i) {
    const Pelt::IpAddr dest = Pelt::IpAddr::fromHostOrder((10u << 24) | static_cast<U32>(i << 8));
    mib.newIpCidrRouteTable({dest, mask, 0, nextHop}, 1, Routing::RouteMetric(1), Routing::RoutePreference(1),
                            Routing::Fib::routeTypeStaticConfig);
  }
}

void addIpv4Address(IpSnmp::IpMib& mib, const char* address, unsigned length, U32 ifIndex) {
  const Pelt::IpAddr addr(address);
  U8 subnet[4];
  IpSnmp::subnetOf(addr, length).copyToBuffer(subnet);
  addAddress(mib, IpSnmp::inetAddress(addr), Snmp::String(subnet, sizeof subnet), length, ifIndex);
}

void addIpv6Address(IpSnmp::IpMib& mib, const char* address, unsigned length, U32 ifIndex) {
  const Pelt::Ip6Addr addr(address);
  U8 bytes[16];
  addr.copyToBuffer(bytes);
  for (unsigned bit = length; bit < 128; ++bit) bytes[bit / 8] &= static_cast<U8>(~(0x80u >> (bit % 8)));
  addAddress(mib, IpSnmp::inetAddress(addr), Snmp::String(bytes, sizeof bytes), length, ifIndex);
}

}  // namespace TableTest
