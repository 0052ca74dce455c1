// The MIB containers: creating mutators and their failures, the swap of a prefix row in place, the
// master occurrence of an address, and walks that survive row removal.
#include <gtest/gtest.h>

#include <vector>

#include "model/IpVrfMib.h"
#include "model/Mask.h"
#include "model/VrfMibs.h"

namespace IpSnmp {
namespace {

Pelt::IpAddr ip(const char* text) { return Pelt::IpAddr(std::string_view(text)); }

// Records every key that a container tells its reactors about.
struct IpMibWatcher : IpMib::NotifieeConst {
  void onIpAddressPrefixTable(const IpAddressPrefixKey& key) override { prefixKeys.push_back(key); }
  std::vector<IpAddressPrefixKey> prefixKeys;
};

Quor::Ptr<const IpAddressPrefixEntry> prefix(U32 ifIndex, const char* subnet, U32 length) {
  return Quor::makePtr<IpAddressPrefixEntry>(
      IpAddressPrefixKey(ifIndex, Ip::ipVersion4, inetAddress(ip(subnet)).bytes, length));
}

std::string failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Quor::Exception& e) {
    return e.text();
  }
  return "no failure";
}

TEST(IpMibTables, PrefixRowIsSwappedInPlaceAndOnlyAChangeIsTold) {
  auto mib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  auto watcher = Quor::makePtr<IpMibWatcher>();
  watcher->notifierIs(mib);
  auto first = prefix(5, "10.1.2.0", 24);
  auto sameKey = prefix(5, "10.1.2.0", 24);
  mib->ipAddressPrefixTableIs(first);
  mib->ipAddressPrefixTableIs(first);
  EXPECT_EQ(watcher->prefixKeys.size(), 1u) << "the very same row again tells nobody";
  mib->ipAddressPrefixTableIs(sameKey);
  EXPECT_EQ(watcher->prefixKeys.size(), 2u);
  EXPECT_EQ(mib->ipAddressPrefixTable(first->index()), sameKey);
  EXPECT_EQ(mib->ipAddressPrefixTable().members(), 1u);
  EXPECT_EQ(mib->ipAddressPrefixTableDel(first->index()), sameKey);
  EXPECT_EQ(failureOf([&] { mib->ipAddressPrefixTableIs(nullptr); }),
            "null _ipAddressPrefixTable parameter to mutator for IpSnmp::IpMib::ipAddressPrefixTable not allowed\"");
}

TEST(IpMibTables, TheMasterOccurrenceSwitchesBetweenStatusAndConfig) {
  auto mib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  Quor::ValidPtr<IpAddressEntry> row = mib->ipAddressTableIs(inetAddress(ip("10.1.2.3")));
  EXPECT_EQ(mib->ipAddressTableIs(inetAddress(ip("10.1.2.3"))).ptr(), row.ptr()) << "no second row";
  row->intfIs(IntfData(IntfDataKey(addressSourceConfig, Pelt::IntfId("B")), prefix(2, "10.1.2.0", 24)));
  EXPECT_EQ(row->addressStatus(), addressStatusInaccessible);
  EXPECT_EQ(row->ifIndex(), 2u);
  row->intfIs(IntfData(IntfDataKey(addressSourceStatus, Pelt::IntfId("Z")), prefix(9, "10.1.2.0", 24)));
  row->intfIs(IntfData(IntfDataKey(addressSourceStatus, Pelt::IntfId("A")), prefix(1, "10.1.2.0", 24)));
  EXPECT_EQ(row->addressStatus(), addressStatusPreferred);
  EXPECT_EQ(row->ifIndex(), 1u) << "the lower of two status interfaces";
  row->intfDel(IntfDataKey(addressSourceStatus, Pelt::IntfId("A")));
  row->intfDel(IntfDataKey(addressSourceStatus, Pelt::IntfId("Z")));
  EXPECT_EQ(row->addressStatus(), addressStatusInaccessible) << "back to the config occurrence";
  EXPECT_TRUE(!row->intf(IntfDataKey(addressSourceStatus, Pelt::IntfId("A"))));
}

TEST(IpMibTables, Ipv4ViewMasksAndRefusesAnotherRowOfTheSameAddress) {
  auto mib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  Quor::ValidPtr<IpAddressEntry> row = mib->ipAddressTableIs(inetAddress(ip("10.1.2.3")));
  row->intfIs(IntfData(IntfDataKey(addressSourceStatus, Pelt::IntfId("A")), prefix(1, "10.1.0.0", 20)));
  EXPECT_EQ(mib->ipAddrTableIs(row)->ipAdEntNetMask(), ip("255.255.240.0"));
  auto other = Quor::makePtr<IpAddressEntry>(inetAddress(ip("10.1.2.3")));
  EXPECT_NE(failureOf([&] { mib->ipAddrTableIs(Quor::ValidPtr<IpAddressEntry>(other)); })
                .find("constructor parameter attribute _masterEntry has a different value of"),
            std::string::npos);
  EXPECT_EQ(maskOfLength(0), ip("0.0.0.0"));
  EXPECT_EQ(maskOfLength(32), ip("255.255.255.255"));
}

TEST(IpForwardMibTable, ChangedRouteValuesAreRefusedNotUpdated) {
  auto mib = Quor::makePtr<IpForwardMib>(Quor::Name("ipforwardmib"));
  EXPECT_EQ(mib->ipCidrRouteTables(), 0u);
  IpCidrRouteTableIndex key(ip("10.0.0.0"), ip("255.0.0.0"), 0, ip("1.1.1.1"));
  auto row = mib->ipCidrRouteTableIs(key, 7, Routing::RouteMetric(10), Routing::RoutePreference(1),
                                     Routing::Fib::RouteType(8));
  // The same values again give the row there is: no second row, no failure.
  EXPECT_EQ(mib->ipCidrRouteTableIs(key, 7, Routing::RouteMetric(10), Routing::RoutePreference(1),
                                    Routing::Fib::RouteType(8))
                .index(),
            row.index());
  EXPECT_EQ(mib->ipCidrRouteTables(), 1u);
  EXPECT_EQ(failureOf([&] {
              mib->ipCidrRouteTableIs(key, 7, Routing::RouteMetric(20), Routing::RoutePreference(1),
                                      Routing::Fib::RouteType(8));
            }),
            "Reinstantiating the pointer interface where constructor parameter attribute _metric has a different "
            "value of 20 than the current value of 10 not allowed");
  const IpCidrRouteTableEntry* kept = mib->ipCidrRouteTable(key);
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(kept->metric(), Routing::RouteMetric(10));
  EXPECT_EQ(mib->ipCidrRouteTables(), 1u);
  mib->ipCidrRouteTableDel(key);
  EXPECT_EQ(mib->ipCidrRouteTables(), 0u);
}

TEST(IpForwardMibTable, WalkSurvivesRemovalOfItsRowAndEndsPastTheLast) {
  auto mib = Quor::makePtr<IpForwardMib>(Quor::Name("ipforwardmib"));
  for (const char* dest : {"10.0.0.0", "10.0.1.0", "10.0.2.0"})
    mib->ipCidrRouteTableIs(IpCidrRouteTableIndex(ip(dest), ip("255.255.255.0"), 0, ip("0.0.0.0")), 1,
                            Routing::RouteMetric(0), Routing::RoutePreference(0), Routing::Fib::RouteType(8));
  auto it = mib->ipCidrRouteTable().startAt(IpCidrRouteTableIndex(ip("10.0.1.0"), ip("0.0.0.0"), 0, ip("0.0.0.0")));
  EXPECT_EQ(it->dest(), ip("10.0.1.0"));
  mib->ipCidrRouteTableDel(it.key());
  EXPECT_EQ(it->ifIndex(), 1u) << "the removed row stays readable";
  ++it;
  EXPECT_EQ(it->dest(), ip("10.0.2.0"));
  EXPECT_FALSE(mib->ipCidrRouteTable().startAt(IpCidrRouteTableIndex(ip("11.0.0.0"), ip("0.0.0.0"), 0, ip("0.0.0.0"))));
}

TEST(VrfContainers, ReplacingAChildStartsEmptyAndPathsResolve) {
  auto dir = Quor::makePtr<VrfMibsDir>(Quor::Name("vrf"));
  auto red = dir->mibsIs(Quor::Name("red"));
  EXPECT_EQ(dir->mibsIs(Quor::Name("red")).ptr(), red.ptr());
  auto ipmib = red->ipmibIs(Quor::Name("red"));
  ipmib->ipAddressTableIs(inetAddress(ip("10.0.0.1")));
  EXPECT_EQ(red->ipmibIs(Quor::Name("red")).ptr(), ipmib.ptr());
  auto replaced = red->ipmibIs(Quor::Name("red2"));
  EXPECT_NE(replaced.ptr(), ipmib.ptr());
  EXPECT_EQ(replaced->ipAddressTable().members(), 0u);
  EXPECT_EQ(Quor::entityAtPath(dir, "vrf.mibs/red.ipmib"), nullptr) << "the path starts below the directory's parent";
  auto root = Quor::makePtr<Quor::Dir>(Quor::Name("ip"));
  root->entityPtrIs(dir);
  EXPECT_EQ(Quor::entityAtPath(root, "vrf.mibs/red.ipmib"), Quor::Ptr<Quor::Entity>(replaced.ptr()));
  dir->mibsDel(Quor::Name("red"));
  EXPECT_EQ(Quor::entityAtPath(root, "vrf.mibs/red.ipmib"), nullptr);
}

TEST(VrfContainers, VrfRowsReadTheirSourcesAndKeepTheirChild) {
  auto mib = Quor::makePtr<IpVrfMib>(Quor::Name("ipvrfmib"));
  auto row = mib->vrfTableIs(Snmp::String("red"), nullptr, nullptr);
  EXPECT_EQ(row->vrfState(), Ip::VrfState(0));
  EXPECT_EQ(row->routeDistinguisher().stringValue(), Pelt::RouteDistinguisher().stringValue());
  auto config = Quor::makePtr<Routing::Config>(Quor::Name("red"));
  auto child = row->vrfRoutingStatusIs(Quor::Name("red"), config);
  EXPECT_EQ(row->vrfRoutingStatusIs(Quor::Name("red"), config), child);
  EXPECT_NE(row->vrfRoutingStatusIs(Quor::Name("red"), Quor::makePtr<Routing::Config>(Quor::Name("red"))), child);
  EXPECT_FALSE(row->vrfRoutingStatus()->ipv4());
  auto status = Quor::makePtr<Ip::VrfStatusLocal>(L3::VrfName("red"));
  EXPECT_NE(failureOf([&] { mib->vrfTableIs(Snmp::String("red"), nullptr, status); }).find("_vrfStatusLocal"),
            std::string::npos);
  EXPECT_EQ(mib->vrfIfTableIs(12)->vrfName(), Snmp::String(""));
}

}  // namespace
}  // namespace IpSnmp
