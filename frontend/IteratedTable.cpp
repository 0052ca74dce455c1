#include "frontend/IteratedTable.h"

#include "frontend/ElementaryConversions.h"
#include "frontend/UnitRegistration.h"

namespace {

constexpr int indexBufferSize = 1024;
constexpr int columnBufferSize = 1024;

// `value()` is called only when the trace is on.
template <class Value>
void traceIndexValueOf(const char* table, const char* field, Value value) {
  if (table)
    QTRACE(tableTracer(), 2, table << "IterationHelper - iterator has another value: " << field << "=" << value());
}

template <class V>
void traceIndexValue(const char* table, const char* field, const V& value) {
  traceIndexValueOf(table, field, [&] { return value; });
}

}  // namespace

ColumnValue integerValue(int value, unsigned char* buffer, const char* failure) {
  return {ASN_INTEGER, SnmpConvert<int, S32ToAsnIntegerF>(value, buffer, columnBufferSize), failure};
}

ColumnValue unsignedValue(unsigned int value, unsigned char* buffer, const char* failure) {
  return {ASN_UNSIGNED, SnmpConvert<unsigned int, U32ToAsnUnsignedF>(value, buffer, columnBufferSize), failure};
}

ColumnValue ipAddressValue(Pelt::IpAddr value, unsigned char* buffer, const char* failure) {
  return {ASN_IPADDRESS,
          SnmpConvert<const Pelt::IpAddr&, PeltIpAddrToAsnOctetStringF>(value, buffer, columnBufferSize), failure};
}

const Quor::Tracer& tableTracer() {
  static const Quor::Tracer tracer{"Snmp", "IteratedTable"};
  return tracer;
}

void IndexWriter::integer(const char* field, int value) {
  traceIndexValue(table_, field, value);
  unsigned char buffer[indexBufferSize];
  set(ASN_INTEGER, buffer, SnmpConvert<int, S32ToAsnIntegerF>(value, buffer, sizeof buffer));
}

void IndexWriter::unsignedInteger(const char* field, unsigned int value) {
  traceIndexValue(table_, field, value);
  unsigned char buffer[indexBufferSize];
  set(ASN_UNSIGNED, buffer, SnmpConvert<unsigned int, U32ToAsnUnsignedF>(value, buffer, sizeof buffer));
}

void IndexWriter::octets(const char* field, const Snmp::String& value, int bufferSize) {
  traceIndexValue(table_, field, value);
  unsigned char buffer[indexBufferSize];
  set(ASN_OCTET_STR, buffer, SnmpConvert<const Quor::String8&, StringToAsnOctetStringF>(value, buffer, bufferSize));
}

void IndexWriter::ipAddress(const char* field, Pelt::IpAddr value) {
  traceIndexValue(table_, field, value);
  unsigned char buffer[indexBufferSize];
  set(ASN_PRIV_IMPLIED_OCTET_STR, buffer,
      SnmpConvert<const Pelt::IpAddr&, PeltIpAddrToAsnOctetStringF>(value, buffer, sizeof buffer));
}

void IndexWriter::octets(const char* field, const U8* bytes, unsigned length) {
  traceIndexValueOf(table_, field, [&] { return Snmp::String(bytes, length); });
  set(ASN_OCTET_STR, bytes, static_cast<int>(length));
}

void IndexWriter::objectId(const char* field, std::span<const oid> value) {
  traceIndexValueOf(table_, field, [&] { return oidText(value); });
  set(ASN_OBJECT_ID, reinterpret_cast<const unsigned char*>(value.data()), static_cast<int>(value.size_bytes()));
}

void IndexWriter::set(u_char type, const unsigned char* bytes, int length) {
  if (!next_) return;
  // The index buffers are sized for every key the tables hold: a conversion cannot fail here.
  snmp_set_var_typed_value(next_, type, bytes, length < 0 ? 0 : static_cast<size_t>(length));
  next_ = next_->next_variable;
}

namespace TableHandler {

void traceEntry(const char* table, int mode) {
  QTRACE(tableTracer(), 2, table << "_handler");
  QTRACE(tableTracer(), 2, table << "_handler: request mode " << mode);
}

int refuseSet(const char* table, netsnmp_request_info* requests, const char* (*refusedByName)(int colnum)) {
  for (netsnmp_request_info* request = requests; request; request = request->next) {
    if (request->processed) {
      QTRACE(tableTracer(), 2, table << "_handler: request " << static_cast<const void*>(request) << " already processed");
      continue;
    }
    const int colnum = columnOf(request);
    if (const char* name = refusedByName(colnum))
      QTRACE(tableTracer(), 2, table << "_handler: SET is not configured for column " << name);
    else
      QTRACE(tableTracer(), 0, table << " invalid column " << colnum);
    netsnmp_request_set_error(request, SNMP_ERR_NOTWRITABLE);
    return SNMP_ERR_NOERROR;
  }
  return SNMP_ERR_NOERROR;
}

int answer(const char* table, netsnmp_request_info* requests, netsnmp_request_info* request,
           const ColumnValue& value, const unsigned char* buffer) {
  bool failed = value.length < 0;
  if (failed) {
    QTRACE(tableTracer(), 2, "handle_" << table << " - " << value.failure);
  } else if (value.limit > 0 && value.length > value.limit) {
    QTRACE(tableTracer(), 2, "handle_" << table << " - entity " << SnmpUtil::absolutePath(value.limitPath)
                                       << " length out of range: " << value.limitName << " (" << value.length
                                       << ")");
    failed = true;
  }
  if (failed) {
    // On the first request of the list, as the serialize handler makes it the same one.
    netsnmp_request_set_error(requests, SNMP_ERR_GENERR);
    return SNMP_ERR_GENERR;
  }
  snmp_set_var_typed_value(request->requestvb, value.type, buffer, static_cast<size_t>(value.length));
  return SNMP_ERR_NOERROR;
}

int columnOf(netsnmp_request_info* request) {
  const netsnmp_table_request_info* info = netsnmp_extract_table_info(request);
  return info ? static_cast<int>(info->colnum) : 0;
}

void invalidColumn(const char* table, netsnmp_request_info* request, int colnum) {
  QTRACE(tableTracer(), 0, table << " invalid column " << colnum);
  netsnmp_request_set_error(request, SNMP_NOSUCHOBJECT);
}

}  // namespace TableHandler

bool parseIndex(oid* index, std::size_t length, netsnmp_variable_list* into) {
  // parse_oid_indexes allocates a string's value without freeing the one it replaces.
  for (netsnmp_variable_list* var = into; var; var = var->next_variable) snmp_set_var_value(var, nullptr, 0);
  return parse_oid_indexes(index, length, into) == SNMPERR_SUCCESS;
}
