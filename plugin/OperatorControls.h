#pragma once
// What an operator turns while the agent runs, through lines of the agent's configuration file
// (snmpd.conf for the plug-in, after its dlmod line; the sub-agent's own file otherwise):
//
//   ipsnmpTrace SPEC          switches trace facilities on by name and level, e.g. "IpSnmp:0-9,Snmp:2";
//                             several lines add up
//   ipsnmpFlitlogFile PATH    where the Flitlog ring goes (default /var/tmp/ipsnmp-flitlog.<pid>)
//   ipsnmpMode agent|master   in snmpd: serve the IP group (agent, the default), or, in the master
//                             agent of ipsnmp-subagent, serve nothing and only give the contexts
//                             that sub-agents register their communities (master; VrfCommunities)
//
// The sub-agent refuses ipsnmpMode and ipsnmpVrfCommunity with a word on where they belong: it never
// sees a community.
// and the Flitlog ring itself: the handlers' entry records, kept in memory and written whole to that
// file when the process gets SIGUSR2, on the event loop. When the configuration is read again, or the
// controls go, the facilities that the lines switched on go off first; what is on in any case (the
// scenario's messages, and IPSNMP_TRACE of the environment) stays on.
#include <memory>
#include <string>

#include "platform/quor/Flitlog.h"
#include "plugin/SignalWatch.h"

class OperatorControls {
 public:
  // Records kept by the ring: the most recent handler entries.
  static constexpr std::size_t ringRecords = 65536;

  // Registers the tokens with the application that is reading its configuration, installs the ring
  // as the process's trace file and watches SIGUSR2. One at a time.
  OperatorControls();
  ~OperatorControls();
  OperatorControls(const OperatorControls&) = delete;
  OperatorControls& operator=(const OperatorControls&) = delete;

  // Writes the ring, oldest record first, to flitlogFile() (through a file beside it renamed over it);
  // the error, or nothing.
  std::string flitlogDumped() const;
  const std::string& flitlogFile() const noexcept { return flitlogFile_; }
  enum class Mode { agent, master };
  Mode mode() const noexcept { return mode_; }
  // Whether the process is an AgentX sub-agent (net-snmp's role), rather than snmpd.
  bool inSubagent() const noexcept { return inSubagent_; }
  // Forgets what the configuration said, as before a reading of it: traces off but the ones that are
  // always on, the ring's file and the mode back to their defaults.
  void configurationReset();

 private:
  static void parseTrace(const char* token, char* spec);
  static void parseFlitlogFile(const char* token, char* path);
  static void releaseTrace();
  static void releaseFlitlogFile();
  static void parseMode(const char* token, char* mode);
  static void releaseMode();
  static void refuseMasterLine(const char* token, char* line);
  // Switches off what the configuration switched on, and back on what is on in any case.
  static void tracesOff();

  Flitlog::RingBuf ring_{ringRecords};
  std::string flitlogFile_;
  Mode mode_ = Mode::agent;
  bool inSubagent_;
  std::unique_ptr<SignalWatch> dumpRequest_;
};
