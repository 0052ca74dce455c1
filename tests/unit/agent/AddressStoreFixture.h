#pragma once
// A store of interfaces with their IPv4 and IPv6 addresses, the IpMib of the default VRF, and the
// address machine over them; the tests change the store and read the tables.
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "agent/IpAddressTableSm.h"
#include "platform/quor/Trace.h"

namespace IpSnmp {

class AddressStoreFixture : public ::testing::Test {
 protected:
  void start() {
    sm = Quor::makePtr<IpAddressTableSm>(IpAddressTableSm::Inputs{intfStatusDir, ipMib, config, status, config6, status6});
  }

  // The interface exists with this index; a new status object each time, as the store makes it.
  void intfUp(const char* name, S32 ifIndex, const char* kind = "ethernet") {
    intfStatusDir->intfStatusIs(Quor::makePtr<Interface::IntfStatus>(Pelt::IntfId(name), Quor::Name(kind), ifIndex));
  }
  void intfGone(const char* name) { intfStatusDir->intfStatusDel(Pelt::IntfId(name)); }

  // The primary IPv4 address as configured, with the interface's L3 configuration in `vrf`.
  Quor::Ptr<Ip::IpIntfConfig> configured(const char* name, const char* addr, const char* vrf = "default") {
    auto l3 = Quor::makePtr<L3::Intf::Config>(Quor::Name(name));
    l3->vrfIs(vrf);
    auto entity = Quor::makePtr<Ip::IpIntfConfig>(Pelt::IntfId(name));
    entity->addrWithMaskIs(Pelt::IpAddrWithMask(std::string_view(addr)));
    entity->l3ConfigIs(l3);
    config->ipIntfConfigIs(entity);
    return entity;
  }
  // The primary IPv4 address in effect, with the interface's L3 status in `vrf`.
  Quor::Ptr<Ip::IpIntfStatus> active(const char* name, const char* addr, const char* vrf = "default") {
    auto l3 = Quor::makePtr<L3::Intf::Status>(Quor::Name(name));
    l3->vrfIs(vrf);
    auto entity = Quor::makePtr<Ip::IpIntfStatus>(Pelt::IntfId(name), l3);
    entity->activeAddrWithMaskIs(Pelt::IpAddrWithMask(std::string_view(addr)));
    status->ipIntfStatusIs(entity);
    return entity;
  }
  Quor::Ptr<Ip6::IntfConfig> configured6(const char* name, std::initializer_list<const char*> addrs) {
    auto entity = Quor::makePtr<Ip6::IntfConfig>(Pelt::IntfId(name));
    for (const char* addr : addrs) entity->addrIs(info6(addr));
    config6->intfIs(entity);
    return entity;
  }
  Quor::Ptr<Ip6::IntfStatus> active6(const char* name, std::initializer_list<const char*> addrs) {
    auto entity = Quor::makePtr<Ip6::IntfStatus>(Pelt::IntfId(name));
    for (const char* addr : addrs) entity->addrIs(info6(addr));
    status6->intfIs(entity);
    return entity;
  }
  static Ip6::AddressInfo info6(const char* addr) {
    return Ip6::AddressInfo(Pelt::Ip6AddrWithMask(std::string_view(addr)));
  }

  // The IpMib of a VRF that has come up.
  Quor::Ptr<IpMib> vrfUp(const char* vrf) {
    auto mib = Quor::makePtr<IpMib>(Quor::Name(vrf));
    sm->vrfIpMibIs(mib);
    return mib;
  }

  static InetAddress address(const char* text) {
    if (auto v4 = Pelt::IpAddr::parse(text)) return inetAddress(*v4);
    return inetAddress(Pelt::Ip6Addr(std::string_view(text)));
  }
  // How a row reads: "preferred 12", "inaccessible 3" (status and ifIndex), or "none".
  static std::string rowOf(const IpMib& mib, const char* addr) {
    const IpAddressEntry* row = mib.ipAddressTable(address(addr));
    if (!row) return "none";
    return std::string(row->addressStatus() == addressStatusPreferred ? "preferred " : "inaccessible ") +
           std::to_string(row->ifIndex());
  }
  // The rows of ipAddressPrefixTable as "<ifIndex> <subnet>/<length>", in walk order.
  static std::vector<std::string> prefixesOf(const IpMib& mib) {
    std::vector<std::string> rows;
    for (auto it = mib.ipAddressPrefixTable().begin(); it; ++it) {
      const IpAddressPrefixKey& key = it.key();
      std::ostringstream text;
      text << key.ifIndex << ' ';
      if (key.version == Ip::ipVersion4) {
        U32 networkOrder = 0;
        std::memcpy(&networkOrder, key.bytes.bytes(), 4);
        text << Pelt::IpAddr::fromNetworkOrder(networkOrder);
      } else {
        text << Pelt::Ip6Addr::fromBytes(key.bytes.bytes());
      }
      text << '/' << key.length;
      rows.push_back(text.str());
    }
    return rows;
  }
  // The rows of ipAddrTable as "<address> <ifIndex> <mask>".
  static std::vector<std::string> ipAddrRowsOf(const IpMib& mib) {
    std::vector<std::string> rows;
    for (auto it = mib.ipAddrTable().begin(); it; ++it) {
      std::ostringstream text;
      text << it->ipAdEntAddr() << ' ' << it->ipAdEntIfIndex() << ' ' << it->ipAdEntNetMask();
      rows.push_back(text.str());
    }
    return rows;
  }
  static std::size_t occurrencesOf(const IpMib& mib, const char* addr) {
    const IpAddressEntry* row = mib.ipAddressTable(address(addr));
    return row ? row->intfs().size() : 0;
  }
  static bool empty(const IpMib& mib) {
    return mib.ipAddressTable().members() == 0 && mib.ipAddressPrefixTable().members() == 0 &&
           mib.ipAddrTable().members() == 0;
  }

  Quor::Ptr<Interface::AllIntfStatusDir> intfStatusDir =
      Quor::makePtr<Interface::AllIntfStatusDir>(Quor::Name("intfStatus"));
  Quor::Ptr<IpMib> ipMib = Quor::makePtr<IpMib>(Quor::Name("ipmib"));
  Quor::Ptr<Ip::Config> config = Quor::makePtr<Ip::Config>(Quor::Name("config"));
  Quor::Ptr<Ip::Status> status = Quor::makePtr<Ip::Status>(Quor::Name("status"));
  Quor::Ptr<Ip6::Config> config6 = Quor::makePtr<Ip6::Config>(Quor::Name("config6"));
  Quor::Ptr<Ip6::Status> status6 = Quor::makePtr<Ip6::Status>(Quor::Name("status6"));
  Quor::Ptr<IpAddressTableSm> sm;
};

// Collects every trace line, whatever the switches say, for as long as it lives.
class TraceCapture {
 public:
  TraceCapture() { Quor::coverageStream_ = &lines_; }
  ~TraceCapture() { Quor::coverageStream_ = nullptr; }
  TraceCapture(const TraceCapture&) = delete;
  TraceCapture& operator=(const TraceCapture&) = delete;
  // Whether a line of facility "IpSnmp" at `level` reads `text` exactly.
  bool has(int level, const std::string& text) const {
    const std::string line = "IpSnmp/" + std::to_string(level) + ' ' + text + '\n';
    return lines_.str().find(line) != std::string::npos;
  }

 private:
  std::ostringstream lines_;
};

}  // namespace IpSnmp
