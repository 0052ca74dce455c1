// The kernel's messages as the source reads them, and how their objects are named and classed:
// messages are built here the way the kernel builds them, without a kernel.
#include <gtest/gtest.h>
#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/if_arp.h>
#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <cstring>
#include <sstream>

#include "platform/pelt/Ip6Addr.h"
#include "sources/linux/KernelNames.h"
#include "sources/linux/NamespaceRoutes.h"
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

// The start of a message for a unicast route of the main table to 10.9.0.0/16.
void startRouteTo10_9(Message& m, U8 protocol) {
  auto* rtm = m.start<rtmsg>(RTM_NEWROUTE);
  rtm->rtm_family = AF_INET;
  rtm->rtm_dst_len = 16;
  rtm->rtm_table = RT_TABLE_MAIN;
  rtm->rtm_protocol = protocol;
  rtm->rtm_type = RTN_UNICAST;
  m.ipv4(RTA_DST, "10.9.0.0");
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

// A nexthop object's message: `id` 0 leaves NHA_ID out; `group` is NHA_GROUP's payload as given.
Message nexthopMessage(U16 type, U32 id, S32 ifIndex, const char* gateway, std::vector<nexthop_grp> group = {},
                       std::size_t gatewayBytes = 4) {
  Message m;
  m.start<nhmsg>(type)->nh_family = group.empty() ? AF_INET : AF_UNSPEC;
  if (id != 0) mnl_attr_put_u32(m.header(), NHA_ID, id);
  if (!group.empty()) mnl_attr_put(m.header(), NHA_GROUP, group.size() * sizeof(nexthop_grp), group.data());
  if (ifIndex != 0) mnl_attr_put_u32(m.header(), NHA_OIF, static_cast<U32>(ifIndex));
  if (gateway && gatewayBytes == 4) m.ipv4(NHA_GATEWAY, gateway);
  if (gateway && gatewayBytes != 4) mnl_attr_put(m.header(), NHA_GATEWAY, gatewayBytes, Pelt::Ip6Addr(gateway).bytes().data());
  return m;
}

// Objects by IPv4 and IPv6 gateway, by device, groups and blackholes come from the kernel in
// LinuxTables; here what it should never send.
TEST(KernelMessages, NexthopOfABadFormIsRefused) {
  struct Case {
    const char* what;
    Message message;
  };
  Case refused[] = {
      {"no id", nexthopMessage(RTM_NEWNEXTHOP, 0, 3, "10.1.0.2")},
      {"a gateway of 5 bytes", nexthopMessage(RTM_NEWNEXTHOP, 12, 3, "2001:db8::1", {}, 5)},
      {"a route message", nexthopMessage(RTM_NEWROUTE, 13, 3, "10.1.0.2")},
      {"a group of no whole member", nexthopMessage(RTM_NEWNEXTHOP, 14, 0, nullptr)},
  };
  mnl_attr_put(refused[3].message.header(), NHA_GROUP, sizeof(nexthop_grp) + 3, std::vector<char>(16).data());
  for (Case& c : refused) EXPECT_FALSE(decodeNexthop(*c.message.header())) << c.what;
}

// What the kernel never sends but a model must survive: a route naming an object not known yet,
// which appears once the object comes, and groups naming what is not a nexthop.
TEST(KernelMessages, RouteWaitsForItsNexthopObject) {
  NamespaceRoutes model{L3::VrfName("default")};
  Message link;
  link.start<ifinfomsg>(RTM_NEWLINK)->ifi_index = 3;
  mnl_attr_put_strz(link.header(), IFLA_IFNAME, "eth3");
  model.message(*link.header());

  Message route;
  startRouteTo10_9(route, RTPROT_BGP);
  mnl_attr_put_u32(route.header(), RTA_NH_ID, 9);
  model.message(*route.header());
  const Pelt::Prefix prefix("10.9.0.0/16");
  EXPECT_TRUE(model.takeChanges().prefixes.count(prefix));
  EXPECT_FALSE(model.wantedRoute(prefix)) << "object 9 is not known";

  auto viasOf = [&] {
    std::ostringstream vias;
    if (auto wanted = model.wantedRoute(prefix))
      for (const Tarn::Fib::Via& via : wanted->vias) vias << via.hop << "@" << via.intfId.stringValue().view() << " ";
    return vias.str();
  };
  // Group 9 arrives naming an unknown id, another group, and 7, which comes after it.
  model.message(*nexthopMessage(RTM_NEWNEXTHOP, 8, 0, nullptr, {{7, 0, 0, 0}}).header());
  model.message(*nexthopMessage(RTM_NEWNEXTHOP, 9, 0, nullptr, {{42, 0, 0, 0}, {8, 0, 0, 0}, {7, 0, 0, 0}}).header());
  EXPECT_TRUE(model.takeChanges().prefixes.count(prefix));
  EXPECT_EQ(viasOf(), "") << "a route whose group has no usable member yet";
  model.message(*nexthopMessage(RTM_NEWNEXTHOP, 7, 3, "10.1.0.2").header());
  EXPECT_TRUE(model.takeChanges().prefixes.count(prefix)) << "a member's arrival marks the group's routes";
  EXPECT_EQ(viasOf(), "10.1.0.2@eth3 ");
  EXPECT_EQ(model.wantedRoute(prefix)->route.routeType, Routing::Fib::routeTypeEbgp);

  model.message(*nexthopMessage(RTM_DELNEXTHOP, 42, 0, nullptr).header());
  model.message(*nexthopMessage(RTM_DELNEXTHOP, 7, 0, nullptr).header());
  EXPECT_TRUE(model.takeChanges().prefixes.count(prefix));
  EXPECT_FALSE(model.wantedRoute(prefix)) << "7 took group 8 along, and group 9 with it, and its route";
  model.message(*nexthopMessage(RTM_NEWNEXTHOP, 9, 3, "10.1.0.3").header());
  EXPECT_FALSE(model.wantedRoute(prefix)) << "an id used again does not bring the route back";
}

// Links, addresses, routes of the common origins and neighbours are compared with what ip shows in
// LinuxStore and LinuxTables; here what those kernels do not make: long VRF names, whose interfaces
// must still fit a record, other kinds and origins, and names that are no VRF's namespace.
TEST(KernelNames, InterfacesKindsOriginsAndNamespacesMapAsTheRecordsAndMibsWantThem) {
  EXPECT_EQ(qualifiedIntfName(L3::VrfName("default"), "eth0"), Pelt::IntfId("eth0"));
  EXPECT_EQ(qualifiedIntfName(L3::VrfName("red"), "eth0"), Pelt::IntfId("red:eth0"));
  Pelt::IntfId longOne = qualifiedIntfName(L3::VrfName("a-rather-long-vrf-name"), "ethernet-port15");
  EXPECT_LE(longOne.stringValue().size(), 24u);
  EXPECT_TRUE(longOne.stringValue().view().starts_with("#"));
  EXPECT_TRUE(longOne.stringValue().view().ends_with(":ethernet-port15"));
  EXPECT_NE(longOne, qualifiedIntfName(L3::VrfName("another-rather-long-vrf"), "ethernet-port15"));

  EXPECT_EQ(intfKind(KernelLink{1, "lo", "", ARPHRD_LOOPBACK, 0}), Quor::Name("loopback"));
  EXPECT_EQ(intfKind(KernelLink{2, "v", "vlan", ARPHRD_ETHER, 0}), Quor::Name("vlan"));
  EXPECT_EQ(intfKind(KernelLink{3, "b", "bond", ARPHRD_ETHER, 0}), Quor::Name("portChannel"));
  EXPECT_EQ(intfKind(KernelLink{4, "x", "veth", ARPHRD_ETHER, 0}), Quor::Name("ethernet"));

  KernelRoute ospf;
  ospf.type = RTN_UNICAST;
  ospf.protocol = RTPROT_OSPF;
  EXPECT_EQ(routeTypeOf(ospf), Routing::Fib::routeTypeOspfIntraArea);
  EXPECT_EQ(preferenceOf(routeTypeOf(ospf)).value(), 110);
  ospf.protocol = 99;
  EXPECT_EQ(routeTypeOf(ospf), Routing::Fib::routeTypeKernel) << "an origin of no known protocol";

  EXPECT_EQ(vrfOfNamespace("ns-red"), L3::VrfName("red"));
  EXPECT_EQ(namespaceOfVrf(L3::VrfName("blue")), "ns-blue");
  const std::string notVrfs[] = {"red", "ns-", "ns-default", "ns-" + std::string(101, 'x')};
  for (const std::string& name : notVrfs) EXPECT_TRUE(vrfOfNamespace(name).empty()) << name;
}

}  // namespace
