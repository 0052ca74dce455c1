#pragma once
// The net-snmp command-line tools against the agent under test, with numeric OIDs (-On) and no MIB
// files, and what their output says.
#include <optional>
#include <string>
#include <vector>

#include "Subprocess.h"

namespace IntegrationTest {

struct Varbind {
  std::string oid;    // ".1.3.6.1.2.1.4.1.0"
  std::string type;   // "INTEGER", or "noSuchObject", "noSuchInstance", "endOfMibView"
  std::string value;  // "1"; empty for the exceptions
};

struct ToolOutput {
  CommandResult run;
  std::vector<Varbind> varbinds;
  std::string error;  // the "Reason:" of a refused request, such as "notWritable"
  bool timedOut = false;
};

// Who asks: a v2c community, or the v3 user "ipsnmp" (noAuthNoPriv) in a context.
struct Credentials {
  static Credentials v2c(std::string community) { return {{"-v2c", "-c", std::move(community)}}; }
  static Credentials v3(std::string context) {
    return {{"-v3", "-u", "ipsnmp", "-l", "noAuthNoPriv", "-n", std::move(context)}};
  }
  std::vector<std::string> args;
};

class SnmpTools {
 public:
  // `address` is "127.0.0.1:PORT". A request is given up after `timeout` seconds and `retries`
  // retries.
  explicit SnmpTools(std::string address, double timeout = 1.0, int retries = 2)
      : address_(std::move(address)), timeout_(timeout), retries_(retries) {}
  // The same tools, giving up sooner: for probes that expect no answer.
  SnmpTools impatient() const { return SnmpTools(address_, 0.3, 0); }

  ToolOutput get(const Credentials& who, const std::vector<std::string>& oids) const;
  ToolOutput getNext(const Credentials& who, const std::vector<std::string>& oids) const;
  // The objects walked, without the endOfMibView that ends a walk at the end of the context.
  ToolOutput walk(const Credentials& who, const std::string& oid) const;
  ToolOutput bulkWalk(const Credentials& who, const std::string& oid) const;
  // `type` and `value` as snmpset takes them: "i", "1".
  ToolOutput set(const Credentials& who, const std::string& oid, const std::string& type,
                 const std::string& value) const;

  // The one varbind of a GET of `oid`, or nothing when the agent did not answer with one.
  std::optional<Varbind> getOne(const Credentials& who, const std::string& oid) const;

 private:
  ToolOutput run(const std::string& tool, const Credentials& who, const std::vector<std::string>& args) const;
  std::string address_;
  double timeout_;
  int retries_;
};

// Parses the output of the tools: "OID = TYPE: VALUE" lines, the exceptions, a refusal's reason.
ToolOutput parseToolOutput(CommandResult run);

}  // namespace IntegrationTest
