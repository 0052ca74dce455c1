#include "frontend/ScalarHandler.h"

#include "platform/snmp/SnmpUtil.h"

namespace {

constexpr int bufferSize = 1024;

int generalError(netsnmp_request_info* requests) {
  netsnmp_request_set_error(requests, SNMP_ERR_GENERR);
  return SNMP_ERR_GENERR;
}

}  // namespace

int handleScalar(const Quor::Tracer& tracer, const ScalarText& text, ScalarRead read,
                 netsnmp_handler_registration* reginfo, netsnmp_agent_request_info* reqinfo,
                 netsnmp_request_info* requests) {
  const int mode = reqinfo->mode;
  if (mode >= MODE_SET_RESERVE1 && mode <= MODE_SET_UNDO) {
    QTRACE(tracer, 2, text.handler << " - SET is not configured for " << text.scalar);
    netsnmp_request_set_error(requests, SNMP_ERR_NOTWRITABLE);
    return SNMP_ERR_NOERROR;
  }
  if (mode != MODE_GET) {
    QTRACE(tracer, 2, text.handler << " - unknown mode from request: " << mode);
    return generalError(requests);
  }
  const void* entity = reginfo->my_reg_void;
  if (!entity) {
    QTRACE(tracer, 2, text.handler << " - entity " << SnmpUtil::absolutePath(text.path) << " is not of type "
                                   << text.entityType);
    return generalError(requests);
  }
  QTRACE(tracer, 2, text.handler << " - reading " << text.path << "->" << text.attribute << "()");
  unsigned char buffer[bufferSize];
  const int length = read(entity, buffer, bufferSize);
  QTRACE(tracer, 2, text.handler << " - " << text.conversion << " returned " << length << "bytes for "
                                 << text.path << "->" << text.attribute << "()");
  if (length < 0) {
    QTRACE(tracer, 2, text.handler << " - " << text.conversion << " failed for: " << text.attribute);
    return generalError(requests);
  }
  snmp_set_var_typed_value(requests->requestvb, text.type, buffer, length);
  return SNMP_ERR_NOERROR;
}
