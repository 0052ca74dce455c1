#include "plugin/OperatorControls.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <regex>
#include <set>
#include <stdexcept>
#include <vector>

#include "platform/quor/Exception.h"
#include "platform/quor/Trace.h"
#include "platform/snmp/NetSnmp.h"

namespace {

const char* const traceToken = "ipsnmpTrace";
const char* const flitlogFileToken = "ipsnmpFlitlogFile";
const char* const modeToken = "ipsnmpMode";
// A line of the master's snmpd.conf (VrfCommunities).
const char* const vrfCommunityToken = "ipsnmpVrfCommunity";
// Refused scenarios and applied ones, and VRFs that cannot come up, belong in the agent's log in
// any case.
const char* const alwaysOn = "Scenario:0-1,IpSnmp:0";

// What is on whatever the configuration says: the above, and IPSNMP_TRACE of the environment.
void baselineTraces() {
  Quor::traceConfigure(alwaysOn);
  const char* spec = std::getenv("IPSNMP_TRACE");
  try {
    Quor::traceConfigure(spec ? spec : "");
  } catch (const Quor::RangeException& e) {
    snmp_log(LOG_ERR, "ipsnmp: IPSNMP_TRACE ignored: %s\n", e.what());
  }
}

// The one set of controls; the configuration callbacks take no argument of their own.
OperatorControls* current = nullptr;

// The facilities that configuration lines have named since the last reset.
std::set<std::string, std::less<>>& configuredFacilities() {
  static std::set<std::string, std::less<>> names;
  return names;
}

std::string defaultFlitlogFile() { return "/var/tmp/ipsnmp-flitlog." + std::to_string(::getpid()); }

std::string trimmed(const char* text) {
  std::string s = text ? text : "";
  const auto first = s.find_first_not_of(" \t");
  if (first == std::string::npos) return "";
  return s.substr(first, s.find_last_not_of(" \t") - first + 1);
}

}  // namespace

OperatorControls::OperatorControls()
    : flitlogFile_(defaultFlitlogFile()),
      inSubagent_(netsnmp_ds_get_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE) != 0) {
  if (current) throw std::logic_error("the operator controls exist already");
  current = this;
  baselineTraces();
  register_app_config_handler(traceToken, &OperatorControls::parseTrace, &OperatorControls::releaseTrace,
                              "FACILITY[:LEVEL[-LEVEL]][,...]  switch ipsnmp trace facilities on");
  register_app_config_handler(flitlogFileToken, &OperatorControls::parseFlitlogFile,
                              &OperatorControls::releaseFlitlogFile, "PATH  where SIGUSR2 writes the Flitlog ring");
  if (inSubagent_) {
    for (const char* token : {modeToken, vrfCommunityToken})
      register_app_config_handler(token, &OperatorControls::refuseMasterLine, nullptr, "(in the master's snmpd.conf)");
  } else {
    register_app_config_handler(modeToken, &OperatorControls::parseMode, &OperatorControls::releaseMode,
                                "agent|master  serve the IP group, or only the communities of a sub-agent's VRFs");
  }
  Flitlog::theTraceFile = &ring_;
  dumpRequest_ = std::make_unique<SignalWatch>(SIGUSR2, [this] {
    if (std::string error = flitlogDumped(); !error.empty())
      snmp_log(LOG_ERR, "ipsnmp: the Flitlog ring was not written: %s\n", error.c_str());
    else
      snmp_log(LOG_INFO, "ipsnmp: Flitlog ring of %zu records written to %s\n", ring_.records(), flitlogFile_.c_str());
  });
}

OperatorControls::~OperatorControls() {
  dumpRequest_.reset();
  Flitlog::theTraceFile = nullptr;
  if (inSubagent_) unregister_app_config_handler(vrfCommunityToken);
  unregister_app_config_handler(modeToken);
  unregister_app_config_handler(flitlogFileToken);
  unregister_app_config_handler(traceToken);
  configurationReset();
  current = nullptr;
}

std::string OperatorControls::flitlogDumped() const {
  const std::string next = flitlogFile_ + ".next";
  {
    std::ofstream out(next, std::ios::trunc);
    if (!out) return "cannot write " + next + ": " + std::strerror(errno);
    out << "# Flitlog ring of ipsnmp, pid " << ::getpid() << ", " << ring_.records()
        << " records, oldest first: start (ns, monotonic clock), duration, handler\n";
    ring_.dump(out);
    if (!out.flush()) return "cannot write " + next + ": " + std::strerror(errno);
  }
  if (std::rename(next.c_str(), flitlogFile_.c_str()) != 0) {
    std::string error = "cannot rename " + next + ": " + std::strerror(errno);
    std::remove(next.c_str());
    return error;
  }
  return "";
}

void OperatorControls::configurationReset() {
  tracesOff();
  flitlogFile_ = defaultFlitlogFile();
  mode_ = Mode::agent;
}

void OperatorControls::tracesOff() {
  for (const std::string& name : configuredFacilities()) {
    Quor::TraceHandle& facility = Quor::TraceHandle::named(name);
    facility.masterIs(false);
    for (int level = 0; level <= 9; ++level) facility.levelIs(level, false);
  }
  configuredFacilities().clear();
  baselineTraces();
}

// A line is checked whole before any of it applies, so that a bad item switches nothing on.
void OperatorControls::parseTrace(const char*, char* spec) {
  static const std::regex item("[^:]+(:[0-9](-[0-9])?)?");
  const std::string text = trimmed(spec);
  std::vector<std::string> facilities;
  std::string_view rest = text;
  while (!rest.empty()) {
    const auto comma = rest.find(',');
    const std::string one(rest.substr(0, comma));
    rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    if (one.empty()) continue;
    if (!std::regex_match(one, item)) {
      config_perror(("bad trace facility or levels '" + one + "', not FACILITY[:LEVEL[-LEVEL]]").c_str());
      return;
    }
    facilities.push_back(one.substr(0, one.find(':')));
  }
  try {
    Quor::traceConfigure(text);
  } catch (const Quor::RangeException& e) {
    config_perror(e.what());
  }
  configuredFacilities().insert(facilities.begin(), facilities.end());
}

void OperatorControls::parseFlitlogFile(const char*, char* path) {
  std::string file = trimmed(path);
  if (file.empty()) {
    config_perror("ipsnmpFlitlogFile needs a path");
    return;
  }
  if (current) current->flitlogFile_ = std::move(file);
}

void OperatorControls::releaseTrace() { tracesOff(); }

void OperatorControls::releaseFlitlogFile() {
  if (current) current->flitlogFile_ = defaultFlitlogFile();
}

void OperatorControls::parseMode(const char*, char* mode) {
  const std::string text = trimmed(mode);
  if (text != "agent" && text != "master") {
    config_perror(("ipsnmpMode takes agent or master, not '" + text + "'").c_str());
    return;
  }
  if (current) current->mode_ = text == "master" ? Mode::master : Mode::agent;
}

void OperatorControls::releaseMode() {
  if (current) current->mode_ = Mode::agent;
}

void OperatorControls::refuseMasterLine(const char* token, char*) {
  config_perror((std::string(token) +
                 " belongs in snmpd.conf of the master agent, which loads the plug-in with \"ipsnmpMode master\": "
                 "the sub-agent never sees a community")
                    .c_str());
}
