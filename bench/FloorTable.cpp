// benchfloor: a bench-only snmpd module ("dlmod benchfloor <path>/benchfloor.so") that serves the
// least work a table walk can cost in this agent: one column of $IPSNMP_BENCH_FLOOR_ROWS rows
// (default 1000) shaped like ipCidrRouteTable's (destination, mask, TOS and next hop in the index),
// whose handler computes the next row from the requested OID and answers one constant address.
// Rows are 11.0.0.0/24, 11.0.1.0/24, ... via 10.0.0.2, under the net-snmp playpen:
// 1.3.6.1.4.1.8072.9999.48213.1.1 (the column).
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr oid columnOid[] = {1, 3, 6, 1, 4, 1, 8072, 9999, 48213, 1, 1};
constexpr size_t columnLength = sizeof(columnOid) / sizeof(oid);
constexpr size_t indexLength = 13;  // destination, mask, TOS, next hop
constexpr u_long firstDest = 0x0b000000;
constexpr u_char constant[4] = {10, 0, 0, 2};

u_long rows = 1000;

// The full OID of row k.
void rowOid(u_long k, oid* out) {
  std::copy(columnOid, columnOid + columnLength, out);
  const u_long dest = firstDest + (k << 8);
  const oid index[indexLength] = {dest >> 24, (dest >> 16) & 255, (dest >> 8) & 255, dest & 255, 255, 255, 255, 0, 0,
                                  10,         0,                  0,                  2};
  std::copy(index, index + indexLength, out + columnLength);
}

// The first row at or after (inclusive) or after `name`; `rows` when there is none.
u_long rowFrom(const oid* name, size_t length, bool inclusive) {
  const int order = snmp_oid_compare(name, std::min(length, columnLength), columnOid, columnLength);
  if (order < 0) return 0;
  if (order > 0) return rows;
  u_long dest = 0;
  for (size_t i = 0; i < 4; ++i) {
    const oid part = columnLength + i < length ? name[columnLength + i] : 0;
    dest = (dest << 8) | std::min<oid>(part, 255);
  }
  u_long k = dest < firstDest ? 0 : std::min(rows, (dest - firstDest) >> 8);
  oid candidate[MAX_OID_LEN];
  rowOid(k, candidate);
  const int cmp = snmp_oid_compare(candidate, columnLength + indexLength, name, length);
  if (k < rows && (cmp < 0 || (cmp == 0 && !inclusive))) ++k;
  return k;
}

int handle(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
           netsnmp_request_info* requests) {
  for (netsnmp_request_info* request = requests; request; request = request->next) {
    netsnmp_variable_list* vb = request->requestvb;
    oid name[MAX_OID_LEN];
    if (info->mode == MODE_GET) {
      const u_long k = rowFrom(vb->name, vb->name_length, true);
      rowOid(k, name);
      if (k >= rows || snmp_oid_compare(name, columnLength + indexLength, vb->name, vb->name_length) != 0) {
        netsnmp_set_request_error(info, request, SNMP_NOSUCHINSTANCE);
        continue;
      }
    } else if (info->mode == MODE_GETNEXT) {
      const u_long k = rowFrom(vb->name, vb->name_length, request->inclusive);
      if (k >= rows) continue;  // past the column: the agent asks the next subtree
      rowOid(k, name);
      snmp_set_var_objid(vb, name, columnLength + indexLength);
    } else {
      netsnmp_set_request_error(info, request, SNMP_ERR_NOTWRITABLE);
      continue;
    }
    snmp_set_var_typed_value(vb, ASN_IPADDRESS, constant, sizeof(constant));
  }
  return SNMP_ERR_NOERROR;
}

}  // namespace

extern "C" void init_benchfloor() {
  if (const char* text = std::getenv("IPSNMP_BENCH_FLOOR_ROWS")) rows = std::strtoul(text, nullptr, 10);
  netsnmp_register_handler(
      netsnmp_create_handler_registration("benchFloor", handle, columnOid, columnLength, HANDLER_CAN_RONLY));
}

extern "C" void deinit_benchfloor() { unregister_mib(const_cast<oid*>(columnOid), columnLength); }
