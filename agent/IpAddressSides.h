#pragma once
// What differs between the configuration and the status side of the address machine, for each IP
// version: the store entities followed, the source that their occurrences carry, how the address and
// the L3 object are read, and the signatures that the reactors trace. The reactors themselves are
// one template per IP version (IpAddressTableSm.h), instantiated once per side.
#include "model/Enums.h"
#include "platform/morvane/Ip6Intf.h"
#include "platform/morvane/IpIntf.h"

namespace IpSnmp::AddressSide {

struct Ip4Config {
  using Input = Ip::Config;
  using Entity = Ip::IpIntfConfig;
  using L3Entity = L3::Intf::Config;
  static constexpr AddressSource source = addressSourceConfig;
  // A configuration replaced under the same interface may name another L3 object; a status may not.
  static constexpr bool l3FollowsEntity = true;

  static Quor::Ptr<const Entity> entity(const Input& input, Pelt::IntfId id) { return input.ipIntfConfig(id); }
  static const Input::Members& entities(const Input& input) { return input.ipIntfConfigs(); }
  static const Pelt::IpAddrWithMask& address(const Entity& entity) { return entity.addrWithMask(); }
  static Quor::Ptr<const L3Entity> l3(const Entity& entity) { return entity.l3Config(); }
  // The early exit of handleVrf: only the empty name, so a repeated name deletes and adds again.
  static bool staysFor(const L3::VrfName& vrf, const L3::VrfName&) { return vrf.empty(); }

  static constexpr const char* nullReactorText =
      "null _ipIntfConfig parameter to mutator for IpSnmp::IpAddressTableSm::ipIntfConfig not allowed\"";
  static constexpr const char* handleAddrSignature = "void IpSnmp::IpAddressTableSm::QuorIpIntfConfig::handleAddr()";
  static constexpr const char* handleDelSignature = "void IpSnmp::IpAddressTableSm::QuorIpIntfConfig::handleDel()";
  static constexpr const char* handleVrfSignature =
      "void IpSnmp::IpAddressTableSm::QuorIpIntfConfig::handleVrf(L3::VrfName)";
};

struct Ip4Status {
  using Input = Ip::Status;
  using Entity = Ip::IpIntfStatus;
  using L3Entity = L3::Intf::Status;
  static constexpr AddressSource source = addressSourceStatus;
  static constexpr bool l3FollowsEntity = false;

  static Quor::Ptr<const Entity> entity(const Input& input, Pelt::IntfId id) { return input.ipIntfStatus(id); }
  static const Input::Members& entities(const Input& input) { return input.ipIntfStatuses(); }
  static const Pelt::IpAddrWithMask& address(const Entity& entity) { return entity.activeAddrWithMask(); }
  static Quor::Ptr<const L3Entity> l3(const Entity& entity) { return entity.l3Status(); }
  // The early exit of handleVrf: the VRF that the address already stands in.
  static bool staysFor(const L3::VrfName& vrf, const L3::VrfName& currentVrf) { return vrf == currentVrf; }

  static constexpr const char* nullReactorText =
      "null _ipIntfStatus parameter to mutator for IpSnmp::IpAddressTableSm::ipIntfStatus not allowed\"";
  static constexpr const char* handleAddrSignature = "void IpSnmp::IpAddressTableSm::QuorIpIntfStatus::handleAddr()";
  static constexpr const char* handleDelSignature = "void IpSnmp::IpAddressTableSm::QuorIpIntfStatus::handleDel()";
  static constexpr const char* handleVrfSignature =
      "void IpSnmp::IpAddressTableSm::QuorIpIntfStatus::handleVrf(L3::VrfName)";
};

struct Ip6Config {
  using Input = Ip6::Config;
  using Entity = Ip6::IntfConfig;
  static constexpr AddressSource source = addressSourceConfig;

  static Quor::Ptr<const Entity> entity(const Input& input, Pelt::IntfId id) { return input.intf(id); }
  static const Input::Members& entities(const Input& input) { return input.intfs(); }

  static constexpr const char* nullReactorText =
      "null _ip6IntfConfig parameter to mutator for IpSnmp::IpAddressTableSm::ip6IntfConfig not allowed\"";
  static constexpr const char* handleAddrKeySignature =
      "void IpSnmp::IpAddressTableSm::QuorIp6IntfConfig::handleAddr(const Pelt::Ip6AddrWithMask&)";
  static constexpr const char* handleAddrSignature = "void IpSnmp::IpAddressTableSm::QuorIp6IntfConfig::handleAddr()";
  static constexpr const char* handleDelSignature = "void IpSnmp::IpAddressTableSm::QuorIp6IntfConfig::handleDel()";
};

struct Ip6Status {
  using Input = Ip6::Status;
  using Entity = Ip6::IntfStatus;
  static constexpr AddressSource source = addressSourceStatus;

  static Quor::Ptr<const Entity> entity(const Input& input, Pelt::IntfId id) { return input.intf(id); }
  static const Input::Members& entities(const Input& input) { return input.intfs(); }

  static constexpr const char* nullReactorText =
      "null _ip6IntfStatus parameter to mutator for IpSnmp::IpAddressTableSm::ip6IntfStatus not allowed\"";
  static constexpr const char* handleAddrKeySignature =
      "void IpSnmp::IpAddressTableSm::QuorIp6IntfStatus::handleAddr(const Pelt::Ip6AddrWithMask&)";
  static constexpr const char* handleAddrSignature = "void IpSnmp::IpAddressTableSm::QuorIp6IntfStatus::handleAddr()";
  static constexpr const char* handleDelSignature = "void IpSnmp::IpAddressTableSm::QuorIp6IntfStatus::handleDel()";
};

}  // namespace IpSnmp::AddressSide
