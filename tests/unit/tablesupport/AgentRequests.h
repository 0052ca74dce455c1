#pragma once
// Requests through the agent library of the test process, the way snmpd processes a received PDU,
// without sockets or access control: the registry finds the subtree in the PDU's context and the
// whole chain of helpers (serialize, table, hint, table iterator) runs down to the handler. What
// tests and benchmarks see is what a manager would get, varbind for varbind.
#include <string>
#include <vector>

#include "platform/snmp/NetSnmp.h"

namespace TableTest {

using Oid = std::vector<oid>;

// "1.3.6.1.2.1.4.24.4.1.1.0.0.0.0": numbers separated by dots.
Oid oidOf(const std::string& text);
std::string textOf(const Oid& name);

struct Varbind {
  Oid name;
  u_char type = 0;
  long integer = 0;                  // INTEGER, Gauge32, Counter32, TimeTicks, Unsigned32
  unsigned long long counter64 = 0;  // Counter64
  std::string octets;                // OCTET STRING, IpAddress
  Oid objectId;                      // OBJECT IDENTIFIER
};

struct Response {
  int errorStatus = 0;
  int errorIndex = 0;
  std::vector<Varbind> varbinds;
};

class AgentRequests {
 public:
  // Requests in `context` ("" is the default context).
  explicit AgentRequests(std::string context = "") : context_(std::move(context)) {}

  Response get(const std::vector<Oid>& names) const;
  Response getNext(const std::vector<Oid>& names) const;
  // One repeater, as snmpbulkwalk sends it; the response ends before the first endOfMibView.
  Response getBulk(const Oid& name, int maxRepetitions) const;

  // Every varbind that successive GETNEXTs (or GETBULKs of `maxRepetitions`) return below `root`,
  // each request starting after the last answer: a walk as snmpwalk (snmpbulkwalk) does it.
  std::vector<Varbind> walk(const Oid& root) const;
  std::vector<Varbind> bulkWalk(const Oid& root, int maxRepetitions) const;

 private:
  Response request(int command, const std::vector<Oid>& names, int maxRepetitions = 0) const;
  std::string context_;
};

// Whether `name` lies below `root`.
bool isBelow(const Oid& name, const Oid& root);

}  // namespace TableTest
