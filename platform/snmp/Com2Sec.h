#pragma once
// The agent's map from SNMPv1/v2c communities to security names and contexts (its "com2sec" list for
// IPv4 sources, which serves UDP and TCP), as far as the plug-in reads and changes it.
//
// net-snmp keeps that list private: it exports a way to append an entry, to unlink one and to free
// one, and nothing that reads the list. So what the operator's com2sec lines say is learnt from the
// configuration files themselves, read again with a parser of com2sec lines only; and the entries
// the plug-in adds are owned one by one. net-snmp frees the whole list, ours among it, each time it
// reads its configuration again (SIGHUP): an owner unlinks and frees its entry only while the entry
// is still in the list, which it tells by address alone, so an owner may outlive the list. It must
// not outlive the reading that follows, whose new entries may take the same addresses: the plug-in
// drops its owners when snmpd unloads it or forgets its configuration lines, before snmpd reads them.
#include <netinet/in.h>

#include <optional>
#include <string>
#include <vector>

// net-snmp's entry of the list, private to the library.
struct com2SecEntry_s;

namespace Snmp {

// One com2sec line's mapping, resolved: requests from `network`/`mask` (network byte order) get
// `securityName`; a negated line stops the search for its community with no security name.
struct CommunitySource {
  std::string securityName;
  in_addr_t network = 0;
  in_addr_t mask = 0;
  bool negated = false;
  bool operator==(const CommunitySource&) const = default;
};

// A com2sec line as written: "[-Cn CONTEXT] SECNAME SOURCE COMMUNITY".
struct Com2SecLine {
  std::string context;
  std::string securityName;
  std::string source;
  std::string community;
};

// The words of a com2sec line (quotes as net-snmp reads them), or nothing when one is missing.
std::optional<Com2SecLine> parseCom2SecLine(const std::string& text);

// SOURCE of a com2sec line as net-snmp resolves it: "default", or [!]ADDRESS[/BITS|/MASK] with a
// host name for ADDRESS; nothing when net-snmp would refuse it (it said so when it read the line).
std::optional<CommunitySource> resolvedSource(const std::string& securityName, const std::string& source);

// The com2sec lines of the agent's configuration files that map `community` in the default context,
// resolved, in the order the agent read them: the files the agent reads at start and on SIGHUP,
// with their includes.
std::vector<CommunitySource> defaultContextSources(const std::string& community);

// Whether `securityName` has SNMPv2c read access, without authentication, in `context`: a group of
// its and an access line of that group that matches the context.
bool v2cAccessIn(const std::string& securityName, const std::string& context);

// An entry of the plug-in's in the agent's com2sec list, at its end: `community` from `source`
// reaches `context` as source.securityName. Given back when the owner goes.
class Com2SecEntry {
 public:
  // Throws std::runtime_error with the agent's reason when it refuses the entry (a community or a
  // context name too long).
  Com2SecEntry(const std::string& community, const std::string& context, const CommunitySource& source);
  Com2SecEntry(Com2SecEntry&& other) noexcept;
  Com2SecEntry& operator=(Com2SecEntry&&) = delete;
  ~Com2SecEntry();

 private:
  ::com2SecEntry_s* entry_;
};

}  // namespace Snmp
