// IpBase registers the forwarding scalars and the address and neighbour tables of the IP group in a
// context, and takes them away from a VRF's context again. The scalars read the routing
// configuration of the store at every GET, through the entity that their registration carries; the
// default context's entities live for the whole process, a VRF's until after its context has been
// unregistered.
#include "frontend/IpBase.h"

#include "frontend/Conversions.h"
#include "frontend/IpBaseTables.h"
#include "frontend/ScalarHandler.h"
#include "frontend/TableRegistration.h"
#include "frontend/UnitRegistration.h"
#include "platform/morvane/RoutingConfig.h"
#include "platform/quor/Flitlog.h"
#include "platform/snmp/SnmpUtil.h"

namespace {

const Quor::Tracer tracer{"Snmp", "IpBase"};

const oid ipForwarding_oid[] = {1, 3, 6, 1, 2, 1, 4, 1};
const oid ipv6IpForwarding_oid[] = {1, 3, 6, 1, 2, 1, 4, 25};

const ScalarText ipForwardingText{"handle_ipForwarding",    "ipForwarding", "Morvane/routing/config",
                                  "Routing::Config",        "routing",      "IpRoutingToAsnInteger"};
const ScalarText ipv6IpForwardingText{"handle_ipv6IpForwarding", "ipv6IpForwarding", "Morvane/routing6/config",
                                      "Routing6::Config",        "routing",          "IpRoutingToAsnInteger"};

ContextRegistrations registrations{"IpBase", tracer};

template <class Config>
int readRouting(const void* config, unsigned char* buffer, int size) {
  return IpRoutingToAsnInteger(static_cast<const Config*>(config)->routing(), buffer, size);
}

}  // namespace

void init_IpBase(Quor::String8 context) {
  debugUnitInit("IpBase", __func__, __FILE__, __LINE__, context);
  QTRACE(tracer, 1, "init_IpBase initializing oid " << oidText(ipForwarding_oid) << " in context \"" << context
                                                    << "\"");
  QTRACE(tracer, 1, "init_IpBase initializing oid " << oidText(ipv6IpForwarding_oid) << " in context \""
                                                    << context << "\"");

  Snmp::HandlerRegistrationPtr forwarding =
      newScalarRegistration("ipForwarding_", handle_ipForwarding, ipForwarding_oid, HANDLER_CAN_RWRITE, context);
  const Quor::String8 forwardingPath =
      context.empty() ? Quor::String8(ipForwardingText.path)
                      : Quor::format("Morvane/routing/vrf/config.vrfConfig/%s", context.str().c_str());
  forwarding->my_reg_void =
      entityAs<Routing::Config>(SnmpUtil::getEntityRelative(forwardingPath.str().c_str()).ptr());
  registrations.scalarIs(context, forwarding.release());

  Snmp::HandlerRegistrationPtr forwarding6 =
      newScalarRegistration("ipv6IpForwarding_", handle_ipv6IpForwarding, ipv6IpForwarding_oid, HANDLER_CAN_RWRITE,
                            context);
  if (!context.empty()) {
    QTRACE(tracer, 2, "init_IpBase in context \"" << context
                                                  << "\": morvanePathWithContext not specified for "
                                                     "ipv6IpForwarding; skipping registration");
  } else {
    forwarding6->my_reg_void =
        entityAs<Routing6::Config>(SnmpUtil::getEntityRelative(ipv6IpForwardingText.path).ptr());
    registrations.scalarIs(context, forwarding6.release());
  }

  initialize_table_ipAddrTable(context);
  initialize_table_ipNetToMediaTable(context);
  initialize_table_ipAddressPrefixTable(context);
  initialize_table_ipAddressTable(context);
}

void unregister_IpBase(Quor::String8 context) { registrations.unregisterContext(context); }

int handle_ipForwarding(netsnmp_mib_handler*, netsnmp_handler_registration* reginfo,
                        netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  FLITLOG_BLOCK("IpBase", "int handle_ipForwarding(netsnmp_mib_handler*, netsnmp_handler_registration*, "
                          "netsnmp_agent_request_info*, netsnmp_request_info*)");
  return handleScalar(tracer, ipForwardingText, readRouting<Routing::Config>, reginfo, reqinfo, requests);
}

int handle_ipv6IpForwarding(netsnmp_mib_handler*, netsnmp_handler_registration* reginfo,
                            netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  FLITLOG_BLOCK("IpBase", "int handle_ipv6IpForwarding(netsnmp_mib_handler*, netsnmp_handler_registration*, "
                          "netsnmp_agent_request_info*, netsnmp_request_info*)");
  return handleScalar(tracer, ipv6IpForwardingText, readRouting<Routing6::Config>, reginfo, reqinfo, requests);
}

ContextRegistrations& ipBaseRegistrations() { return registrations; }
