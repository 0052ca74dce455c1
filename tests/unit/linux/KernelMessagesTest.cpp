// The kernel's messages as the source reads them, and how their objects are named and classed:
// messages are built here the way the kernel builds them, without a kernel.
#include <gtest/gtest.h>
#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <cstring>

#include "platform/pelt/Ip6Addr.h"
#include "sources/linux/KernelNames.h"
#include "sources/linux/NetnsDirectory.h"
#include "sources/linux/RtnlMessages.h"

namespace {

using namespace Sources::Linux;

class Message {
 public:
  template <class Header>
  Header* start(U16 type) {
    header_ = mnl_nlmsg_put_header(buffer_);
    header_->nlmsg_type = type;
    return static_cast<Header*>(mnl_nlmsg_put_extra_header(header_, sizeof(Header)));
  }
  void ipv4(U16 type, const char* text) { mnl_attr_put_u32(header_, type, Pelt::IpAddr(text).networkOrder()); }
  nlmsghdr* header() { return header_; }

 private:
  alignas(nlmsghdr) char buffer_[4096] = {};
  nlmsghdr* header_ = nullptr;
};

TEST(KernelMessages, LinkCarriesIndexNameKindAndFlags) {
  Message m;
  auto* ifi = m.start<ifinfomsg>(RTM_NEWLINK);
  ifi->ifi_index = 7;
  ifi->ifi_type = ARPHRD_ETHER;
  ifi->ifi_flags = 1;
  mnl_attr_put_strz(m.header(), IFLA_IFNAME, "veth0");
  nlattr* info = mnl_attr_nest_start(m.header(), IFLA_LINKINFO);
  mnl_attr_put_str(m.header(), IFLA_INFO_KIND, "veth");
  mnl_attr_nest_end(m.header(), info);

  auto link = decodeLink(*m.header());
  ASSERT_TRUE(link);
  EXPECT_EQ(link->ifIndex, 7);
  EXPECT_EQ(link->name, "veth0");
  EXPECT_EQ(link->kind, "veth");
  EXPECT_EQ(link->flags, 1u);
}

TEST(KernelMessages, LinkWithoutNameIsRefused) {
  Message m;
  m.start<ifinfomsg>(RTM_NEWLINK)->ifi_index = 3;
  EXPECT_FALSE(decodeLink(*m.header()));
}

TEST(KernelMessages, PointToPointAddressIsTheLocalOneWithItsWideFlags) {
  Message m;
  auto* ifa = m.start<ifaddrmsg>(RTM_NEWADDR);
  ifa->ifa_family = AF_INET;
  ifa->ifa_index = 4;
  ifa->ifa_prefixlen = 32;
  ifa->ifa_flags = IFA_F_SECONDARY;
  m.ipv4(IFA_ADDRESS, "192.0.2.2");  // the peer
  m.ipv4(IFA_LOCAL, "192.0.2.1");
  mnl_attr_put_u32(m.header(), IFA_FLAGS, IFA_F_SECONDARY | IFA_F_NOPREFIXROUTE);

  auto addr = decodeAddr(*m.header());
  ASSERT_TRUE(addr);
  EXPECT_EQ(addr->ifIndex, 4);
  U32 value;
  std::memcpy(&value, addr->bytes.data(), 4);
  EXPECT_EQ(Pelt::IpAddr::fromNetworkOrder(value), Pelt::IpAddr("192.0.2.1"));
  EXPECT_EQ(addr->flags, U32(IFA_F_SECONDARY | IFA_F_NOPREFIXROUTE));
}

TEST(KernelMessages, Ipv6AddressComesFromIfaAddress) {
  Message m;
  auto* ifa = m.start<ifaddrmsg>(RTM_DELADDR);
  ifa->ifa_family = AF_INET6;
  ifa->ifa_prefixlen = 64;
  Pelt::Ip6Addr a("2001:db8::5");
  mnl_attr_put(m.header(), IFA_ADDRESS, 16, a.bytes().data());
  auto addr = decodeAddr(*m.header());
  ASSERT_TRUE(addr);
  EXPECT_EQ(Pelt::Ip6Addr::fromBytes(addr->bytes.data()), a);
  EXPECT_EQ(addr->prefixLen, 64);
}

TEST(KernelMessages, MultipathRouteKeepsEveryIpv4NextHop) {
  Message m;
  auto* rtm = m.start<rtmsg>(RTM_NEWROUTE);
  rtm->rtm_family = AF_INET;
  rtm->rtm_dst_len = 16;
  rtm->rtm_table = RT_TABLE_MAIN;
  rtm->rtm_protocol = RTPROT_BOOT;
  rtm->rtm_type = RTN_UNICAST;
  m.ipv4(RTA_DST, "10.9.0.0");
  mnl_attr_put_u32(m.header(), RTA_PRIORITY, 20);
  nlattr* paths = mnl_attr_nest_start(m.header(), RTA_MULTIPATH);
  auto addHop = [&](int ifIndex, const char* gateway, bool viaIpv6) {
    auto* hop = static_cast<rtnexthop*>(mnl_nlmsg_get_payload_tail(m.header()));
    m.header()->nlmsg_len += MNL_ALIGN(sizeof(rtnexthop));
    hop->rtnh_ifindex = ifIndex;
    if (viaIpv6) {
      char via[18] = {AF_INET6 & 0xff, 0};
      mnl_attr_put(m.header(), RTA_VIA, sizeof via, via);
    } else {
      m.ipv4(RTA_GATEWAY, gateway);
    }
    hop->rtnh_len = static_cast<unsigned short>(static_cast<char*>(mnl_nlmsg_get_payload_tail(m.header())) -
                                                reinterpret_cast<char*>(hop));
  };
  addHop(3, "10.1.0.2", false);
  addHop(4, nullptr, true);
  addHop(5, "10.2.0.2", false);
  mnl_attr_nest_end(m.header(), paths);

  auto route = decodeRoute(*m.header());
  ASSERT_TRUE(route);
  EXPECT_EQ(route->prefix, Pelt::Prefix("10.9.0.0/16"));
  EXPECT_EQ(route->priority, 20u);
  ASSERT_EQ(route->nextHops.size(), 2u) << "the next hop by IPv6 gateway is left out";
  EXPECT_EQ(route->nextHops[0], (KernelNextHop{Pelt::IpAddr("10.1.0.2"), 3}));
  EXPECT_EQ(route->nextHops[1], (KernelNextHop{Pelt::IpAddr("10.2.0.2"), 5}));
  EXPECT_EQ(routeTypeOf(*route), Routing::Fib::routeTypeStaticConfig);
}

TEST(KernelMessages, DefaultRouteHasNoDestinationAttribute) {
  Message m;
  auto* rtm = m.start<rtmsg>(RTM_DELROUTE);
  rtm->rtm_family = AF_INET;
  rtm->rtm_table = RT_TABLE_MAIN;
  m.ipv4(RTA_GATEWAY, "10.0.0.1");
  mnl_attr_put_u32(m.header(), RTA_OIF, 2);
  auto route = decodeRoute(*m.header());
  ASSERT_TRUE(route);
  EXPECT_EQ(route->prefix, Pelt::Prefix("0.0.0.0/0"));
  EXPECT_EQ(route->nextHops, (std::vector<KernelNextHop>{{Pelt::IpAddr("10.0.0.1"), 2}}));
}

TEST(KernelMessages, Ipv6RouteIsNotRead) {
  Message m;
  m.start<rtmsg>(RTM_NEWROUTE)->rtm_family = AF_INET6;
  EXPECT_FALSE(decodeRoute(*m.header()));
}

TEST(KernelMessages, NeighbourHasItsHardwareAddressOnlyWhenSixBytes) {
  Message m;
  auto* ndm = m.start<ndmsg>(RTM_NEWNEIGH);
  ndm->ndm_family = AF_INET;
  ndm->ndm_ifindex = 6;
  ndm->ndm_state = NUD_PERMANENT;
  m.ipv4(NDA_DST, "10.1.0.9");
  const U8 mac[6] = {0x02, 0, 0, 0, 0xab, 0xcd};
  mnl_attr_put(m.header(), NDA_LLADDR, 6, mac);
  auto neighbour = decodeNeigh(*m.header());
  ASSERT_TRUE(neighbour);
  EXPECT_EQ(neighbour->addr, Pelt::IpAddr("10.1.0.9"));
  EXPECT_EQ(neighbour->lladdr, Pelt::EthAddr("02:00:00:00:ab:cd"));

  Message incomplete;
  auto* other = incomplete.start<ndmsg>(RTM_NEWNEIGH);
  other->ndm_family = AF_INET;
  incomplete.ipv4(NDA_DST, "10.1.0.10");
  mnl_attr_put(incomplete.header(), NDA_LLADDR, 4, mac);
  ASSERT_TRUE(decodeNeigh(*incomplete.header()));
  EXPECT_FALSE(decodeNeigh(*incomplete.header())->lladdr);
}

TEST(KernelNames, VrfInterfacesAreQualifiedAndFitARecord) {
  EXPECT_EQ(qualifiedIntfName(L3::VrfName("default"), "eth0"), Pelt::IntfId("eth0"));
  EXPECT_EQ(qualifiedIntfName(L3::VrfName("red"), "eth0"), Pelt::IntfId("red:eth0"));
  Pelt::IntfId longOne = qualifiedIntfName(L3::VrfName("a-rather-long-vrf-name"), "ethernet-port15");
  EXPECT_LE(longOne.stringValue().size(), 24u);
  EXPECT_TRUE(longOne.stringValue().view().starts_with("#"));
  EXPECT_TRUE(longOne.stringValue().view().ends_with(":ethernet-port15"));
  EXPECT_NE(longOne, qualifiedIntfName(L3::VrfName("another-rather-long-vrf"), "ethernet-port15"));
}

TEST(KernelNames, KindsChooseAnIndexProvider) {
  EXPECT_EQ(intfKind(KernelLink{1, "lo", "", ARPHRD_LOOPBACK, 0}), Quor::Name("loopback"));
  EXPECT_EQ(intfKind(KernelLink{2, "v", "vlan", ARPHRD_ETHER, 0}), Quor::Name("vlan"));
  EXPECT_EQ(intfKind(KernelLink{3, "b", "bond", ARPHRD_ETHER, 0}), Quor::Name("portChannel"));
  EXPECT_EQ(intfKind(KernelLink{4, "x", "veth", ARPHRD_ETHER, 0}), Quor::Name("ethernet"));
}

TEST(KernelNames, RouteOriginsMapToRouteTypesAndPreferences) {
  KernelRoute r;
  r.type = RTN_UNICAST;
  r.protocol = RTPROT_KERNEL;
  EXPECT_EQ(routeTypeOf(r), Routing::Fib::routeTypeConnected);
  r.protocol = RTPROT_STATIC;
  EXPECT_EQ(routeTypeOf(r), Routing::Fib::routeTypeStaticConfig);
  r.protocol = RTPROT_OSPF;
  EXPECT_EQ(routeTypeOf(r), Routing::Fib::routeTypeOspfIntraArea);
  EXPECT_EQ(preferenceOf(routeTypeOf(r)).value(), 110);
  r.protocol = 99;
  EXPECT_EQ(routeTypeOf(r), Routing::Fib::routeTypeKernel);
  r.type = RTN_BLACKHOLE;
  EXPECT_EQ(routeTypeOf(r), Routing::Fib::routeTypeDropped);
}

TEST(KernelNames, OnlyNsPrefixedNamesAreVrfs) {
  EXPECT_EQ(vrfOfNamespace("ns-red"), L3::VrfName("red"));
  EXPECT_TRUE(vrfOfNamespace("red").empty());
  EXPECT_TRUE(vrfOfNamespace("ns-").empty());
  EXPECT_TRUE(vrfOfNamespace("ns-default").empty()) << "the default VRF is the process's own namespace";
  EXPECT_TRUE(vrfOfNamespace("ns-" + std::string(101, 'x')).empty());
  EXPECT_EQ(namespaceOfVrf(L3::VrfName("blue")), "ns-blue");
}

}  // namespace
