#include "AgentRequests.h"

#include <cstring>
#include <sstream>

// Exported by the agent library, declared in none of its headers: the processing of a received PDU.
extern "C" int handle_pdu(netsnmp_agent_session* asp);

namespace TableTest {

namespace {

Varbind varbindOf(const netsnmp_variable_list& var) {
  Varbind out;
  out.name.assign(var.name, var.name + var.name_length);
  out.type = var.type;
  switch (var.type) {
    case ASN_INTEGER:
    case ASN_GAUGE:
    case ASN_COUNTER:
    case ASN_TIMETICKS:
      out.integer = *var.val.integer;
      break;
    case ASN_COUNTER64:
      out.counter64 = (static_cast<unsigned long long>(var.val.counter64->high) << 32) | var.val.counter64->low;
      break;
    case ASN_OCTET_STR:
    case ASN_IPADDRESS:
      out.octets.assign(reinterpret_cast<const char*>(var.val.string), var.val_len);
      break;
    case ASN_OBJECT_ID:
      out.objectId.assign(var.val.objid, var.val.objid + var.val_len / sizeof(oid));
      break;
    default:
      break;
  }
  return out;
}

// Releases the agent session and the request PDU of one request.
struct Exchange {
  netsnmp_pdu* pdu = nullptr;
  netsnmp_agent_session* asp = nullptr;
  ~Exchange() {
    if (asp) free_agent_snmp_session(asp);
    if (pdu) snmp_free_pdu(pdu);
  }
};

}  // namespace

Oid oidOf(const std::string& text) {
  Oid name;
  std::stringstream in(text);
  std::string part;
  while (std::getline(in, part, '.'))
    if (!part.empty()) name.push_back(std::stoul(part));
  return name;
}

std::string textOf(const Oid& name) {
  std::string text;
  for (oid part : name) text += (text.empty() ? "" : ".") + std::to_string(part);
  return text;
}

bool isBelow(const Oid& name, const Oid& root) {
  return name.size() > root.size() && std::equal(root.begin(), root.end(), name.begin());
}

Response AgentRequests::request(int command, const std::vector<Oid>& names, int maxRepetitions) const {
  netsnmp_session session{};
  session.version = SNMP_VERSION_2c;
  Exchange exchange;
  exchange.pdu = snmp_pdu_create(command);
  exchange.pdu->version = SNMP_VERSION_2c;
  exchange.pdu->flags |= UCD_MSG_FLAG_ALWAYS_IN_VIEW;
  if (command == SNMP_MSG_GETBULK) {
    exchange.pdu->non_repeaters = 0;
    exchange.pdu->max_repetitions = maxRepetitions;
  }
  if (!context_.empty()) {
    exchange.pdu->contextName = strdup(context_.c_str());
    exchange.pdu->contextNameLen = context_.size();
  }
  for (const Oid& name : names) snmp_add_null_var(exchange.pdu, name.data(), name.size());
  exchange.asp = init_agent_snmp_session(&session, exchange.pdu);
  const int status = handle_pdu(exchange.asp);
  Response response;
  response.errorStatus = status != SNMP_ERR_NOERROR ? status : exchange.asp->status;
  response.errorIndex = exchange.asp->index;
  for (const netsnmp_variable_list* var = exchange.asp->pdu->variables; var; var = var->next_variable) {
    if (command == SNMP_MSG_GETBULK && var->type == SNMP_ENDOFMIBVIEW) break;
    response.varbinds.push_back(varbindOf(*var));
  }
  return response;
}

Response AgentRequests::get(const std::vector<Oid>& names) const { return request(SNMP_MSG_GET, names); }

Response AgentRequests::getNext(const std::vector<Oid>& names) const { return request(SNMP_MSG_GETNEXT, names); }

Response AgentRequests::getBulk(const Oid& name, int maxRepetitions) const {
  return request(SNMP_MSG_GETBULK, {name}, maxRepetitions);
}

std::vector<Varbind> AgentRequests::walk(const Oid& root) const {
  std::vector<Varbind> seen;
  Oid position = root;
  while (true) {
    Response response = getNext({position});
    if (response.errorStatus || response.varbinds.empty()) break;
    Varbind& next = response.varbinds.front();
    if (!isBelow(next.name, root) || next.type == SNMP_ENDOFMIBVIEW) break;
    position = next.name;
    seen.push_back(std::move(next));
  }
  return seen;
}

std::vector<Varbind> AgentRequests::bulkWalk(const Oid& root, int maxRepetitions) const {
  std::vector<Varbind> seen;
  Oid position = root;
  while (true) {
    Response response = getBulk(position, maxRepetitions);
    if (response.errorStatus || response.varbinds.empty()) return seen;
    for (Varbind& next : response.varbinds) {
      if (!isBelow(next.name, root)) return seen;
      position = next.name;
      seen.push_back(std::move(next));
    }
  }
}

}  // namespace TableTest
