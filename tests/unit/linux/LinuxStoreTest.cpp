// The store side of the Linux source against a kernel: links, addresses, VRF namespaces and
// forwarding as the test makes them, compared with what ip(8) shows.
#include <gtest/gtest.h>

#include <sstream>

#include "platform/morvane/Store.h"
#include "sources/linux/LinuxSource.h"
#include "tests/unit/linux/KernelFixture.h"

namespace {

using LinuxTest::lines;
using LinuxTest::must;
using LinuxTest::runUntil;

class LinuxStore : public LinuxTest::KernelTest {
 protected:
  void start() {
    store = Morvane::buildStore(Quor::makePtr<Quor::Dir>(Quor::Name("test")));
    source = std::make_unique<Sources::LinuxSource>(store, Sources::LinuxSource::Options{"", 0.2});
    ASSERT_EQ(source->start(), "");
    ASSERT_TRUE(runUntil([&] { return source->initialized(); }));
  }
  void TearDown() override {
    source.reset();
    KernelTest::TearDown();
  }

  // Whether the store holds the links and addresses of namespace `ns` ("" for this one), as the VRF
  // `vrf`, exactly as ip shows them; the first difference otherwise.
  testing::AssertionResult storeMatchesIp(const std::string& ns, const std::string& vrf) {
    const std::string ip = ns.empty() ? "ip" : "ip -n " + ns;
    const std::string prefix = vrf == "default" ? "" : vrf + ":";
    for (const std::string& line :
         lines(ip + " -j link show | jq -r '.[] | \"\\(.ifindex) \\(.ifname) \\(.flags | index(\"UP\") != null)\"'")) {
      std::istringstream fields(line);
      S32 ifIndex;
      std::string name, up;
      fields >> ifIndex >> name >> up;
      const Pelt::IntfId id(prefix + name);
      auto intf = store.intfStatusDir->intfStatus(id);
      if (!intf || intf->ifIndex() != ifIndex) return testing::AssertionFailure() << id << " has no status of index " << ifIndex;
      auto config = store.ipConfig->ipIntfConfig(id);
      auto status = store.ipStatus->ipIntfStatus(id);
      auto config6 = store.ip6Config->intf(id);
      auto status6 = store.ip6Status->intf(id);
      if (!config || !status || !config6 || !status6) return testing::AssertionFailure() << id << " lacks an IP side";
      if (!config->l3Config() || config->l3Config()->vrf() != L3::VrfName(vrf) || !status->l3Status() ||
          status->l3Status()->vrf() != L3::VrfName(vrf))
        return testing::AssertionFailure() << id << " is not in VRF " << vrf;

      Pelt::IpAddrWithMask primary;
      std::set<Pelt::Ip6AddrWithMask> all6, usable6;
      for (const std::string& addr :
           lines(ip + " -j addr show dev " + name +
                 " | jq -r '.[].addr_info[] | \"\\(.family) \\(.local)/\\(.prefixlen) \\(.scope) \\(.secondary // false) "
                 "\\(.tentative // false)\"'")) {
        std::istringstream a(addr);
        std::string family, local, scope, secondary, tentative;
        a >> family >> local >> scope >> secondary >> tentative;
        if (family == "inet" && primary == Pelt::IpAddrWithMask() && scope == "global" && secondary == "false")
          primary = Pelt::IpAddrWithMask(local);
        if (family != "inet6") continue;
        all6.insert(Pelt::Ip6AddrWithMask(local));
        if (up == "true" && tentative == "false") usable6.insert(Pelt::Ip6AddrWithMask(local));
      }
      if (config->addrWithMask() != primary)
        return testing::AssertionFailure() << id << " configured " << config->addrWithMask() << ", ip: " << primary;
      const Pelt::IpAddrWithMask active = up == "true" ? primary : Pelt::IpAddrWithMask();
      if (status->activeAddrWithMask() != active)
        return testing::AssertionFailure() << id << " active " << status->activeAddrWithMask() << ", wanted " << active;
      auto keysOf = [](const auto& side) {
        std::set<Pelt::Ip6AddrWithMask> keys;
        for (const auto& [key, info] : side.addrs()) keys.insert(key);
        return keys;
      };
      if (keysOf(*config6) != all6) return testing::AssertionFailure() << id << ": configured IPv6 addresses differ";
      if (keysOf(*status6) != usable6) return testing::AssertionFailure() << id << ": IPv6 addresses in effect differ";
    }
    return testing::AssertionSuccess();
  }

  // The store's interfaces of VRF `vrf`.
  std::size_t interfacesOf(const std::string& vrf) const {
    std::size_t count = 0;
    for (const auto& [id, status] : store.intfStatusDir->intfStatuses())
      count += id.stringValue().view().starts_with(vrf + ":");
    return count;
  }

  Morvane::Store store;
  std::unique_ptr<Sources::LinuxSource> source;
};

TEST_F(LinuxStore, LinksAndAddressesEqualWhatIpShows) {
  makeVrf("a");
  const std::string ns = netns("a");
  must("ip link add lt0 type veth peer name lt1");
  must("ip link set lt1 netns " + ns);
  must("ip addr add 10.50.0.1/24 dev lt0");
  must("ip addr add 10.50.0.9/24 dev lt0");  // secondary
  must("ip addr add 10.51.0.1/24 dev lt0");  // a second primary: not the first
  must("ip addr add 2001:db8:50::1/64 dev lt0 nodad");
  must("ip link set lt0 up");
  must("ip -n " + ns + " addr add 10.50.0.2/24 dev lt1");
  must("ip -n " + ns + " addr add 2001:db8:50::2/64 dev lt1 nodad");  // lt1 stays down
  start();
  EXPECT_TRUE(runUntil([&] { return bool(storeMatchesIp("", "default")); })) << storeMatchesIp("", "default");
  EXPECT_TRUE(runUntil([&] { return bool(storeMatchesIp(ns, vrf("a"))); })) << storeMatchesIp(ns, vrf("a"));
  EXPECT_EQ(store.ipConfig->ipIntfConfig(Pelt::IntfId("lt0"))->addrWithMask(), Pelt::IpAddrWithMask("10.50.0.1/24"));
  EXPECT_EQ(store.ipStatus->ipIntfStatus(Pelt::IntfId(vrf("a") + ":lt1"))->activeAddrWithMask(), Pelt::IpAddrWithMask())
      << "an address of a link that is down is not in effect";
  EXPECT_EQ(store.intfStatusDir->intfStatus(Pelt::IntfId("lo"))->kind(), Quor::Name("loopback"));

  // Then the events: the primary goes (the secondary takes over), the link comes up, a link goes.
  must("ip addr del 10.50.0.1/24 dev lt0");
  must("ip -n " + ns + " link set lt1 up");
  must("ip link add lt2 type veth peer name lt3");
  must("ip addr add 10.52.0.1/24 dev lt2");
  EXPECT_TRUE(runUntil([&] { return bool(storeMatchesIp("", "default")); })) << storeMatchesIp("", "default");
  EXPECT_TRUE(runUntil([&] { return bool(storeMatchesIp(ns, vrf("a"))); })) << storeMatchesIp(ns, vrf("a"));
  must("ip link del lt2");
  EXPECT_TRUE(runUntil([&] { return !store.intfStatusDir->intfStatus(Pelt::IntfId("lt2")); }));
  EXPECT_FALSE(store.ipConfig->ipIntfConfig(Pelt::IntfId("lt2")));
  EXPECT_FALSE(store.intfStatusDir->intfStatus(Pelt::IntfId("lt3"))) << "its peer went with it";
}

TEST_F(LinuxStore, VrfNamespaceAppearsAndGoesLive) {
  start();
  makeVrf("b");
  const L3::VrfName b(vrf("b"));
  ASSERT_TRUE(runUntil([&] { return store.routingVrfInfoDir->entityPtr(b.nameValue()) && interfacesOf(vrf("b")) == 1; }));
  auto status = store.allVrfStatusLocal->vrf(b);
  ASSERT_TRUE(status);
  EXPECT_EQ(status->state(), Ip::vrfStateActive);
  EXPECT_EQ(status->networkNamespace(), Quor::String8(netns("b")));
  EXPECT_TRUE(status->nsInodeValid());
  EXPECT_TRUE(store.allVrfConfig->vrf(b));
  EXPECT_TRUE(store.routingVrfConfigDir->vrfConfig(b.nameValue()));
  EXPECT_TRUE(store.snmpStatus->initialized());

  deleteVrf("b");
  ASSERT_TRUE(runUntil([&] { return !store.routingVrfInfoDir->entityPtr(b.nameValue()); }));
  EXPECT_FALSE(store.allVrfStatusLocal->vrf(b));
  EXPECT_FALSE(store.allVrfConfig->vrf(b));
  EXPECT_EQ(interfacesOf(vrf("b")), 0u);
}

TEST_F(LinuxStore, ForwardingIsReadInsideEachNamespace) {
  makeVrf("c");
  const L3::VrfName c(vrf("c"));
  must("sysctl -qw net.ipv4.ip_forward=1 net.ipv6.conf.all.forwarding=0");
  must("ip netns exec " + netns("c") + " sysctl -qw net.ipv4.ip_forward=0");
  start();
  ASSERT_TRUE(runUntil([&] { return store.routingVrfConfigDir->vrfConfig(c.nameValue()) != nullptr; }));
  EXPECT_TRUE(store.routingConfig->routing());
  EXPECT_FALSE(store.routing6Config->routing());
  EXPECT_FALSE(store.routingVrfConfigDir->vrfConfig(c.nameValue())->routing());

  // No event tells of these: the next read does.
  must("ip netns exec " + netns("c") + " sysctl -qw net.ipv4.ip_forward=1");
  must("sysctl -qw net.ipv6.conf.all.forwarding=1");
  EXPECT_TRUE(runUntil([&] { return store.routingVrfConfigDir->vrfConfig(c.nameValue())->routing(); }, 3));
  EXPECT_TRUE(runUntil([&] { return store.routing6Config->routing(); }, 3));
}

}  // namespace
