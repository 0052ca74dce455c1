#pragma once
// The VRF lifecycle as the agent's start-up wires it: a store that the tests fill, the containers,
// the one ARP table and the VRF-id table held in the process, and a Root with the address machine,
// the default VRF's ARP machine, the VRF interface machine, the directory and the lifecycle machine.
// The SNMP contexts are recorded, each call with what existed of its VRF at that moment.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "agent/Root.h"
#include "platform/morvane/Store.h"
#include "platform/tarn/Mount.h"

namespace IpSnmp {

// What the lifecycle asks of the agent, in order: "open <vrf>: <parts>" and "close <vrf>: <parts>",
// where the parts are those that `partsOf` lists at the moment of the call.
class RecordingContexts final : public SnmpContexts {
 public:
  explicit RecordingContexts(std::function<std::string(const Quor::Name&)> partsOf) : partsOf_(std::move(partsOf)) {}
  void contextIs(const Quor::Name& vrf) override { calls.push_back("open " + vrf.str() + ": " + partsOf_(vrf)); }
  void contextDel(const Quor::Name& vrf) override { calls.push_back("close " + vrf.str() + ": " + partsOf_(vrf)); }
  std::vector<std::string> calls;

 private:
  std::function<std::string(const Quor::Name&)> partsOf_;
};

class VrfLifecycle : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Root and its machines over what the store holds now.
  void start();
  void initialized() { store.snmpStatus->initializedIs(true); }
  VrfRootSm& sm() { return *root->vrfRootSm(); }

  // The four sources of a VRF, each on its own: the routing side's configuration and its entry in
  // the directory of published VRFs, the IP side's configuration and its local status.
  void routingConfigIs(const std::string& vrf);
  void published(const std::string& vrf);
  void ipConfigIs(const std::string& vrf);
  Quor::Ptr<Ip::VrfStatusLocal> statusIs(const std::string& vrf, Ip::VrfState state);
  // All four.
  Quor::Ptr<Ip::VrfStatusLocal> vrf(const std::string& name, Ip::VrfState state = Ip::vrfStateActive);

  // An interface with an index (kind "ethernet"), or without one (a kind with no details provider).
  void intfUp(const char* name, S32 ifIndex, const char* kind = "ethernet");
  // An interface configured into `vrf` (which VrfIfTableSm follows), with an IPv4 address or none.
  void intfConfiguredIn(const char* name, const char* vrf, const char* addrWithMask = nullptr);
  // An interface whose status puts it in `vrf` with this IPv4 address.
  void addressIn(const char* name, const char* vrf, const char* addrWithMask);

  // ARP entries and VRF ids as the neighbour agent writes them.
  Arp::Table::ArpEntry neighbourIs(U32 vrfId, const char* intf, const char* addr);
  void neighbourGone(const Arp::Table::ArpEntry& entry);
  void vrfIdIs(U32 id, const char* name);
  void vrfIdGone(U32 id);

  // The route and forwarding tables of `vrf`, mounted in the process where the lifecycle would
  // mount them from shared memory; the lifecycle's mount finds them there.
  Quor::Ptr<Tarn::Fib::RouteStatus> routeTablesMounted(const std::string& vrf);
  Quor::Ptr<Tarn::Fib::ForwardingStatus> forwardingTableOf(const std::string& vrf) const;
  Quor::Ptr<Quor::Entity> mountedAt(const char* format, const std::string& vrf) const;

  VrfRoot* vrfRoot(const std::string& name) const { return vrfRoots->vrfRoot(Quor::Name(name)); }
  Quor::Ptr<IpMib> ipMibOf(const std::string& name) const;
  bool hasRow(const std::string& name) const { return ipVrfMib->vrfTable(Snmp::String(Quor::Name(name))); }
  // arpTable of an IpMib as "<ifIndex> <address>", in walk order.
  static std::vector<std::string> arpRows(const IpMib& mib);
  // What exists of `vrf`, as the recorded context calls list it.
  std::string partsOf(const Quor::Name& vrf) const;

  std::filesystem::path tables;
  Quor::Ptr<Quor::Dir> storeRoot = Quor::makePtr<Quor::Dir>(Quor::Name("switch"));
  Morvane::Store store = Morvane::buildStore(storeRoot);
  Quor::Ptr<IpMib> ipMib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  Quor::Ptr<IpVrfMib> ipVrfMib = Quor::makePtr<IpVrfMib>(Quor::Name("ipvrfmib"));
  Quor::Ptr<VrfMibsDir> vrfMibsDir = Quor::makePtr<VrfMibsDir>(Quor::Name("vrf"));
  Quor::Ptr<Arp::Table::Status> arpTarn = Quor::makePtr<Arp::Table::Status>(Quor::Name("arp/status"));
  Quor::Ptr<Vrf::VrfIdMap::Status> vrfIds = Quor::makePtr<Vrf::VrfIdMap::Status>(Quor::Name("vrf/idmap"));
  RecordingContexts contexts{[this](const Quor::Name& vrf) { return partsOf(vrf); }};
  Quor::Ptr<Root> root;
  // Two of Root's, kept here so that they can be looked at while Root goes.
  Quor::Ptr<IpAddressTableSm> addresses;
  Quor::Ptr<VrfRootDir> vrfRoots;
};

}  // namespace IpSnmp
