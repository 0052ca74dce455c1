#include "platform/snmp/Com2Sec.h"

#include <arpa/inet.h>

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "platform/snmp/NetSnmp.h"

namespace Snmp {

namespace {

// The lines that the com2sec reader below collects; the reader's parser takes no argument of its own.
std::vector<std::string>* collected = nullptr;

void collectLine(const char*, char* line) {
  if (collected) collected->push_back(line);
}

std::string nextWord(const char*& rest) {
  char word[SPRINT_MAX_LEN];
  word[0] = '\0';
  rest = copy_nword_const(rest, word, sizeof word);
  return word;
}

// Optional configuration files (snmpd -c), comma-separated, read as the agent reads them.
void readOptionalFiles(const std::string& files, config_line* handlers) {
  std::size_t start = 0;
  while (start <= files.size()) {
    const std::size_t comma = std::min(files.find(',', start), files.size());
    const std::string file = files.substr(start, comma - start);
    if (!file.empty()) read_config(file.c_str(), handlers, PREMIB_CONFIG);
    start = comma + 1;
  }
}

// Every com2sec line of the agent's configuration, in the order in which read_configs() meets them:
// the optional files first when their list starts with '-', the files of the agent's type on the
// configuration path (which the agent skips with -C), the optional files otherwise. The reading is
// done as for the early pass of a configuration (PREMIB_CONFIG), in which the library complains
// neither of unknown tokens nor of missing includes: the agent reported those when it read the files.
std::vector<std::string> com2secLinesOfConfiguration() {
  char token[] = "com2sec";
  config_line handler{};
  handler.config_token = token;
  handler.parse_line = collectLine;
  handler.config_time = PREMIB_CONFIG;

  std::vector<std::string> lines;
  collected = &lines;
  const char* optional = netsnmp_ds_get_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG);
  std::string optionalFiles = optional ? optional : "";
  if (!optionalFiles.empty() && optionalFiles[0] == '-') {
    readOptionalFiles(optionalFiles.substr(1), &handler);
    optionalFiles.clear();
  }
  const char* type = netsnmp_ds_get_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_APPTYPE);
  std::string fileType = type ? type : "snmpd";
  config_files files{fileType.data(), &handler, nullptr};
  read_config_files_of_type(PREMIB_CONFIG, &files);
  readOptionalFiles(optionalFiles, &handler);
  collected = nullptr;
  return lines;
}

}  // namespace

std::optional<Com2SecLine> parseCom2SecLine(const std::string& text) {
  const char* rest = text.c_str();
  Com2SecLine line;
  line.securityName = nextWord(rest);
  if (line.securityName == "-Cn") {
    if (!rest) return std::nullopt;
    line.context = nextWord(rest);
    if (!rest) return std::nullopt;
    line.securityName = nextWord(rest);
  }
  if (line.securityName.empty() || !rest) return std::nullopt;
  line.source = nextWord(rest);
  if (line.source.empty() || !rest) return std::nullopt;
  line.community = nextWord(rest);
  if (line.community.empty()) return std::nullopt;
  return line;
}

std::optional<CommunitySource> resolvedSource(const std::string& securityName, const std::string& source) {
  CommunitySource resolved{securityName};
  if (source == "default") return resolved;
  std::string address = source;
  if (!address.empty() && address[0] == '!') {
    resolved.negated = true;
    address.erase(0, 1);
  }
  std::string mask;
  if (const auto slash = address.find('/'); slash != std::string::npos) {
    mask = address.substr(slash + 1);
    address.resize(slash);
  }
  in_addr parsed{};
  if (::inet_pton(AF_INET, address.c_str(), &parsed) == 1) {
    resolved.network = parsed.s_addr;
  } else if (address.empty() || netsnmp_gethostbyname_v4(address.c_str(), &resolved.network) < 0) {
    return std::nullopt;
  }
  char* end = nullptr;
  const long bits = std::strtol(mask.c_str(), &end, 10);
  if (mask.empty()) {
    resolved.mask = ~in_addr_t{0};
  } else if (*end == '\0') {
    if (bits < 0 || bits > 32) return std::nullopt;
    resolved.mask = bits == 0 ? 0 : htonl(~in_addr_t{0} << (32 - bits));
  } else if (::inet_pton(AF_INET, mask.c_str(), &parsed) == 1) {
    resolved.mask = parsed.s_addr;
  } else {
    return std::nullopt;
  }
  if (resolved.network & ~resolved.mask) return std::nullopt;
  return resolved;
}

std::vector<CommunitySource> defaultContextSources(const std::string& community) {
  std::vector<CommunitySource> sources;
  for (const std::string& text : com2secLinesOfConfiguration()) {
    const std::optional<Com2SecLine> line = parseCom2SecLine(text);
    if (!line || !line->context.empty() || line->community != community) continue;
    if (auto source = resolvedSource(line->securityName, line->source)) sources.push_back(std::move(*source));
  }
  return sources;
}

bool v2cAccessIn(const std::string& securityName, const std::string& context) {
  const vacm_groupEntry* group = vacm_getGroupEntry(SNMP_SEC_MODEL_SNMPv2c, securityName.c_str());
  return group && vacm_getAccessEntry(group->groupName, context.c_str(), SNMP_SEC_MODEL_SNMPv2c, SNMP_SEC_LEVEL_NOAUTH);
}

Com2SecEntry::Com2SecEntry(const std::string& community, const std::string& context, const CommunitySource& source)
    : entry_(nullptr) {
  in_addr network{source.network};
  in_addr mask{source.mask};
  switch (netsnmp_udp_com2SecEntry_create(&entry_, community.c_str(), source.securityName.c_str(), context.c_str(),
                                          &network, &mask, source.negated ? 1 : 0)) {
    case C2SE_ERR_SUCCESS: return;
    case C2SE_ERR_COMMUNITY_TOO_LONG: throw std::runtime_error("community name too long");
    case C2SE_ERR_CONTEXT_TOO_LONG: throw std::runtime_error("context name too long");
    case C2SE_ERR_SECNAME_TOO_LONG: throw std::runtime_error("security name too long");
    case C2SE_ERR_MASK_MISMATCH: throw std::runtime_error("source and mask do not match");
    default: throw std::runtime_error("the agent could not add a com2sec entry");
  }
}

Com2SecEntry::Com2SecEntry(Com2SecEntry&& other) noexcept : entry_(std::exchange(other.entry_, nullptr)) {}

// An entry that is no longer in the list went with the whole list, freed by the agent.
Com2SecEntry::~Com2SecEntry() {
  if (entry_ && netsnmp_udp_com2SecList_remove(entry_) == 0) netsnmp_udp_com2Sec_free(entry_);
}

}  // namespace Snmp
