#pragma once
// What differs between the configuration and the status side of the address machine, for each IP
// version: the store entities followed, the source that their occurrences carry, how the address and
// the L3 object are read, and the names of the side's reactor and member in traces and failures. The
// reactors themselves are one template per IP version (IpAddressTableSm.h), instantiated once per side.
#include <string>

#include "agent/AgentTrace.h"
#include "model/Enums.h"
#include "platform/morvane/Ip6Intf.h"
#include "platform/morvane/IpIntf.h"

namespace IpSnmp::AddressSide {

// "void IpSnmp::IpAddressTableSm::<reactor>::<handler>", the label of a side's handler in traces.
std::string handlerSignature(const char* reactor, const char* handler);
// The range failure of a null entity handed to the mutator of a side's reactors.
std::string nullEntityText(const char* member);

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

  static constexpr const char* member = "ipIntfConfig";
  static constexpr const char* reactor = "QuorIpIntfConfig";
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

  static constexpr const char* member = "ipIntfStatus";
  static constexpr const char* reactor = "QuorIpIntfStatus";
};

struct Ip6Config {
  using Input = Ip6::Config;
  using Entity = Ip6::IntfConfig;
  static constexpr AddressSource source = addressSourceConfig;

  static Quor::Ptr<const Entity> entity(const Input& input, Pelt::IntfId id) { return input.intf(id); }
  static const Input::Members& entities(const Input& input) { return input.intfs(); }

  static constexpr const char* member = "ip6IntfConfig";
  static constexpr const char* reactor = "QuorIp6IntfConfig";
};

struct Ip6Status {
  using Input = Ip6::Status;
  using Entity = Ip6::IntfStatus;
  static constexpr AddressSource source = addressSourceStatus;

  static Quor::Ptr<const Entity> entity(const Input& input, Pelt::IntfId id) { return input.intf(id); }
  static const Input::Members& entities(const Input& input) { return input.intfs(); }

  static constexpr const char* member = "ip6IntfStatus";
  static constexpr const char* reactor = "QuorIp6IntfStatus";
};

}  // namespace IpSnmp::AddressSide

// Opens the handler `handler` of side S in the in-memory trace, and names its label `signature`.
#define IPSNMP_SIDE_HANDLER(S, handler)                                                                 \
  static const std::string signature = ::IpSnmp::AddressSide::handlerSignature(S::reactor, handler); \
  IPSNMP_HANDLER(signature.c_str())
