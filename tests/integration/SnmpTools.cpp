#include "SnmpTools.h"

#include <sstream>

namespace IntegrationTest {

namespace {

const std::pair<const char*, const char*> exceptions[] = {
    {"No Such Object available on this agent at this OID", "noSuchObject"},
    {"No Such Instance currently exists at this OID", "noSuchInstance"},
    {"No more variables left in this MIB View", "endOfMibView"},
};

std::optional<Varbind> parseVarbind(const std::string& line) {
  const auto equals = line.find(" = ");
  if (line.empty() || line[0] != '.' || equals == std::string::npos) return std::nullopt;
  Varbind vb{line.substr(0, equals), {}, {}};
  const std::string rest = line.substr(equals + 3);
  for (const auto& [text, type] : exceptions)
    if (rest.rfind(text, 0) == 0) {
      vb.type = type;
      return vb;
    }
  const auto colon = rest.find(": ");
  vb.type = rest.substr(0, colon);
  vb.value = colon == std::string::npos ? std::string() : rest.substr(colon + 2);
  // A Hex-STRING ends in a blank.
  vb.value.erase(vb.value.find_last_not_of(' ') + 1);
  return vb;
}

// A walk that reaches the end of what the context holds ends with an endOfMibView line for the last
// OID; the objects walked are the others.
ToolOutput walked(ToolOutput out) {
  if (!out.varbinds.empty() && out.varbinds.back().type == "endOfMibView") out.varbinds.pop_back();
  return out;
}

}  // namespace

ToolOutput parseToolOutput(CommandResult run) {
  ToolOutput out{std::move(run), {}, {}, false};
  std::istringstream lines(out.run.output);
  for (std::string line; std::getline(lines, line);) {
    if (auto vb = parseVarbind(line)) out.varbinds.push_back(*vb);
    else if (line.rfind("Reason: ", 0) == 0) out.error = line.substr(8, line.find(' ', 8) - 8);
    else if (line.rfind("Timeout: No Response", 0) == 0) out.timedOut = true;
  }
  return out;
}

ToolOutput SnmpTools::run(const std::string& tool, const Credentials& who,
                          const std::vector<std::string>& args) const {
  std::vector<std::string> argv{tool, "-m", "", "-On", "-t", std::to_string(timeout_), "-r", std::to_string(retries_)};
  argv.insert(argv.end(), who.args.begin(), who.args.end());
  argv.push_back(address_);
  argv.insert(argv.end(), args.begin(), args.end());
  return parseToolOutput(runCommand(argv));
}

ToolOutput SnmpTools::get(const Credentials& who, const std::vector<std::string>& oids) const {
  return run("snmpget", who, oids);
}

ToolOutput SnmpTools::getNext(const Credentials& who, const std::vector<std::string>& oids) const {
  return run("snmpgetnext", who, oids);
}

ToolOutput SnmpTools::walk(const Credentials& who, const std::string& oid) const {
  return walked(run("snmpwalk", who, {oid}));
}

ToolOutput SnmpTools::bulkWalk(const Credentials& who, const std::string& oid) const {
  return walked(run("snmpbulkwalk", who, {oid}));
}

ToolOutput SnmpTools::set(const Credentials& who, const std::string& oid, const std::string& type,
                          const std::string& value) const {
  return run("snmpset", who, {oid, type, value});
}

std::optional<Varbind> SnmpTools::getOne(const Credentials& who, const std::string& oid) const {
  ToolOutput out = get(who, {oid});
  if (out.varbinds.size() != 1) return std::nullopt;
  return out.varbinds.front();
}

}  // namespace IntegrationTest
