#pragma once
// The one shape of every scalar handler of the front end.
//
// The scalar helpers of net-snmp hand the handler GET (a GETNEXT arrives as a GET) and the set
// phases; only the first request of the list is treated. The set phases are refused with notWritable
// while the handler itself returns no error: the scalar is registered writable on purpose, so that a
// SET reaches it and is refused here, in every phase alike. A GET reads one attribute of the entity
// that the registration carries in my_reg_void, taken once at registration: a null entity (absent
// or of another type then) is a general error for every GET until the context is registered anew.
#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"

// The words of one scalar's traces.
struct ScalarText {
  const char* handler;     // "handle_ipForwarding"
  const char* scalar;      // "ipForwarding"
  const char* path;        // "Morvane/routing/config": the default path, in every context
  const char* entityType;  // "Routing::Config"
  const char* attribute;   // "routing"
  const char* conversion;  // "IpRoutingToAsnInteger"
  u_char type = ASN_INTEGER;  // the ASN type of the value
};

// Converts the attribute of `entity`, the registration's my_reg_void, to a value of the text's type.
using ScalarRead = int (*)(const void* entity, unsigned char* buffer, int size);

int handleScalar(const Quor::Tracer& tracer, const ScalarText& text, ScalarRead read,
                 netsnmp_handler_registration* reginfo, netsnmp_agent_request_info* reqinfo,
                 netsnmp_request_info* requests);
