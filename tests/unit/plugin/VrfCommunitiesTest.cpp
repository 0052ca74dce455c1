// SNMPv2c communities that follow the VRFs, in the test process's agent library: a line names a
// community, and each open context gets COMMUNITY@<context>, mapped by copies of the community's
// com2sec lines of the default context (sources, negations and security names); the entries go with
// their context; a refused line says why and changes nothing; when the configuration is read again,
// the open contexts' entries come back.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/snmp/NetSnmp.h"
#include "plugin/VrfCommunities.h"

namespace {

using Mapping = std::pair<std::string, std::string>;  // security name, context

// What the agent makes of `community` from `source` in a request over UDP, as its access control
// asks: the security name and the context, or nothing.
std::optional<Mapping> mapped(const std::string& community, const char* source) {
  netsnmp_indexed_addr_pair from{};
  from.remote_addr.sin.sin_family = AF_INET;
  ::inet_pton(AF_INET, source, &from.remote_addr.sin.sin_addr);
  const char* securityName = nullptr;
  const char* context = nullptr;
  netsnmp_udp_getSecName(&from, sizeof from, community.c_str(), community.size(), &securityName, &context);
  if (!securityName) return std::nullopt;
  return Mapping{securityName, context};
}

// The agent's error messages while it lives.
class LoggedErrors {
 public:
  LoggedErrors() {
    snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, onLog, &text_);
    snmp_enable_calllog();
  }
  ~LoggedErrors() {
    snmp_disable_calllog();
    snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, onLog, &text_, 1);
    if (toStderr_) snmp_enable_stderrlog();
  }
  const std::string& text() const { return text_; }

 private:
  static int onLog(int, int, void* message, void* text) {
    const auto* logged = static_cast<const snmp_log_message*>(message);
    if (logged->priority <= LOG_ERR) *static_cast<std::string*>(text) += logged->msg;
    return 0;
  }
  // The library stops logging to stderr when another log handler comes.
  const bool toStderr_ = snmp_stderrlog_status() != 0;
  std::string text_;
};

class VrfCommunitiesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = std::filesystem::temp_directory_path() / ("ipsnmp-communities-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    // The agent's configuration is this one file: no other file of the configuration path counts.
    ::setenv("SNMPCONFPATH", dir.c_str(), 1);
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG, (dir / "agent.conf").c_str());
  }
  void TearDown() override {
    free_config();  // the com2sec list among the rest
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG, nullptr);
    ::unsetenv("SNMPCONFPATH");
    std::filesystem::remove_all(dir);
  }
  // The agent reads its configuration, these lines, as snmpd does its own.
  void configurationIs(const std::vector<std::string>& lines) {
    std::ofstream out(dir / "agent.conf", std::ios::trunc);
    for (const std::string& line : lines) out << line << '\n';
    out.close();
    read_config_with_type((dir / "agent.conf").c_str(), "ipsnmp-tests");
  }

  std::filesystem::path dir;
  const std::vector<std::string> com2secLines = {
      "com2sec -Cn blue elsewhere 10.9.0.0/16 public",  // another context's mapping: not copied
      "com2sec outsider !10.1.2.3 public",              // refused from this one source
      "com2sec near 10.1.0.0/255.255.0.0 public",
      "com2sec anyone default private",
  };
};

TEST_F(VrfCommunitiesTest, EachOpenContextGetsTheCommunityMappedAsInTheDefaultContext) {
  std::vector<std::string> lines = com2secLines;
  lines.push_back("ipsnmpVrfCommunity public");
  {
    VrfCommunities communities;
    communities.contextIs("red");
    configurationIs(lines);
    communities.contextIs("green");
    ASSERT_EQ(mapped("public", "10.1.9.9"), (Mapping{"near", ""})) << "the default context's own line";

    EXPECT_EQ(mapped("public@red", "10.1.9.9"), (Mapping{"near", "red"}));
    EXPECT_EQ(mapped("public@green", "10.1.9.9"), (Mapping{"near", "green"}));
    EXPECT_EQ(mapped("public@red", "10.1.2.3"), std::nullopt) << "the negated source is refused here too";
    EXPECT_EQ(mapped("public@red", "10.2.0.1"), std::nullopt) << "only the community's sources";
    EXPECT_EQ(mapped("public@red", "10.9.0.1"), std::nullopt) << "only the default context's lines";
    EXPECT_EQ(mapped("private@red", "10.1.9.9"), std::nullopt) << "only the community named";
    EXPECT_EQ(mapped("public@blue", "10.1.9.9"), std::nullopt) << "no context, no community";

    communities.contextDel("red");
    EXPECT_EQ(mapped("public@red", "10.1.9.9"), std::nullopt);
    EXPECT_EQ(mapped("public@green", "10.1.9.9"), (Mapping{"near", "green"}));
  }
  EXPECT_EQ(mapped("public@green", "10.1.9.9"), std::nullopt) << "the entries go with the communities";
  EXPECT_EQ(mapped("public", "10.1.9.9"), (Mapping{"near", ""})) << "the operator's entries stay";
}

TEST_F(VrfCommunitiesTest, RefusedLinesSayWhyAndChangeNothing) {
  VrfCommunities communities;
  communities.contextIs("red");
  std::vector<std::string> lines = com2secLines;
  lines.push_back("ipsnmpVrfCommunity public");
  configurationIs(lines);
  const std::pair<const char*, const char*> refusals[] = {
      {"ipsnmpVrfCommunity \"\"", "needs a community"},
      {"ipsnmpVrfCommunity private extra", "takes one community"},
      {"ipsnmpVrfCommunity secret", "no com2sec line maps the community \"secret\" in the default context"},
      {"ipsnmpVrfCommunity public", "community \"public\" is named already"},
  };
  for (const auto& [line, why] : refusals) {
    LoggedErrors errors;
    configurationIs({line});
    EXPECT_NE(errors.text().find(why), std::string::npos) << line << "\n" << errors.text();
    EXPECT_NE(errors.text().find("line 1"), std::string::npos) << "the line is named\n" << errors.text();
  }
  EXPECT_EQ(mapped("public@red", "10.1.9.9"), (Mapping{"near", "red"}));
  EXPECT_EQ(mapped("private@red", "10.1.9.9"), std::nullopt);
}

// snmpd on SIGHUP: every line's release (com2sec's frees the whole list, ours among it), then the
// files again.
TEST_F(VrfCommunitiesTest, ReadingTheConfigurationAgainBringsTheOpenContextsEntriesBack) {
  VrfCommunities communities;
  communities.contextIs("red");
  std::vector<std::string> lines = com2secLines;
  lines.push_back("ipsnmpVrfCommunity public");
  configurationIs(lines);
  ASSERT_EQ(mapped("public@red", "10.1.9.9"), (Mapping{"near", "red"}));

  free_config();
  EXPECT_EQ(mapped("public@red", "10.1.9.9"), std::nullopt);
  configurationIs(lines);
  EXPECT_EQ(mapped("public@red", "10.1.9.9"), (Mapping{"near", "red"}));

  free_config();
  configurationIs(com2secLines);
  EXPECT_EQ(mapped("public@red", "10.1.9.9"), std::nullopt) << "the line taken out";
  communities.contextDel("red");
}

}  // namespace
