#include "VrfScenario.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace IntegrationTest {

std::string redScenario(const std::string& redState, bool initialized) {
  std::string text = "routing:\n  ipv4: true\n";
  if (!redState.empty())
    text +=
        "vrfs:\n  red:\n    routing: { ipv4: true }\n    published: true\n"
        "    config: { routeDistinguisher: \"65000:7\" }\n    status: { state: " +
        redState + " }\n";
  text +=
      "interfaces:\n"
      "  Ethernet1:\n    ifIndex: 1\n"
      "    config: { vrf: red, ipv4: 10.0.1.1/24 }\n    status: { vrf: red, ipv4: 10.0.1.1/24 }\n"
      "  Ethernet2:\n    ifIndex: 2\n"
      "    config: { ipv4: 10.0.2.1/24 }\n    status: { ipv4: 10.0.2.1/24 }\n";
  text += std::string("snmp:\n  initialized: ") + (initialized ? "true" : "false") + "\n";
  return text;
}

TableRoot::TableRoot() {
  std::string pattern = "/dev/shm/ipsnmp-vrf-it.XXXXXX";
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TableRoot::~TableRoot() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TableRoot::write(const std::vector<std::string>& commands, const std::string& vrf) const {
  const std::string file = path_ + "/commands";
  {
    std::ofstream out(file, std::ios::trunc);
    for (const std::string& command : commands) out << command << '\n';
  }
  std::vector<std::string> argv{IPSNMP_TARN_WRITER, "--root", path_};
  if (!vrf.empty()) argv.insert(argv.end(), {"--vrf", vrf});
  argv.insert(argv.end(), {"-f", file});
  CommandResult run = runCommand(argv);
  std::filesystem::remove(file);
  return run.exitStatus == 0 ? "" : run.output;
}

std::string TableRoot::writeRed(bool withId) const {
  std::string failed = write({"route put 10.9.0.0/16 1", "fec put 1 10.0.1.2@Ethernet1"}, "red");
  std::vector<std::string> neighbours{"arp put 7 Ethernet1 10.0.1.2 00:1c:73:00:00:02",
                                      "arp put 0 Ethernet2 10.0.2.2 00:1c:73:00:00:03"};
  if (withId) neighbours.push_back("vrf put 7 red");
  return failed + write(neighbours);
}

std::vector<std::string> rowIndexes(const ToolOutput& walk, const std::string& table) {
  const std::string entry = table + ".1.";
  std::vector<std::string> out;
  for (const Varbind& vb : walk.varbinds) {
    if (vb.oid.rfind(entry, 0) != 0) continue;
    const std::size_t dot = vb.oid.find('.', entry.size());
    if (dot == std::string::npos) continue;
    std::string index = vb.oid.substr(dot + 1);
    if (!contains(out, index)) out.push_back(std::move(index));
  }
  return out;
}

bool contains(const std::vector<std::string>& items, const std::string& item) {
  return std::find(items.begin(), items.end(), item) != items.end();
}

std::vector<std::string> strayVarbinds(const ToolOutput& walk, const std::string& table,
                                       const std::vector<std::string>& allowed) {
  std::vector<std::string> out;
  for (const Varbind& vb : walk.varbinds) {
    if (vb.type == "noSuchObject" || vb.type == "noSuchInstance" || vb.type == "endOfMibView") continue;
    ToolOutput one;
    one.varbinds.push_back(vb);
    const std::vector<std::string> index = rowIndexes(one, table);
    if (index.size() == 1 && contains(allowed, index[0])) continue;
    out.push_back(vb.oid + " = " + vb.type + ": " + vb.value);
  }
  return out;
}

}  // namespace IntegrationTest
