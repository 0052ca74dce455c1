// The sub-agent's command line: every option with its value, defaults for what is not given, and a
// refusal naming the option for anything it cannot use.
#include <gtest/gtest.h>

#include "plugin/SubagentOptions.h"

namespace {

std::string refusal(const std::vector<std::string>& args) {
  auto parsed = parseSubagentOptions(args);
  const std::string* error = std::get_if<std::string>(&parsed);
  return error ? *error : "";
}

TEST(SubagentOptions, EveryOptionTakesItsValueAndTheRestTheirDefaults) {
  auto parsed = parseSubagentOptions({"--agentx-socket", "/run/x.sock", "--config", "/etc/a.conf", "--ping-interval",
                                      "3", "--log", "/var/log/s.log", "--debug", "agentx,trace"});
  ASSERT_TRUE(std::holds_alternative<SubagentOptions>(parsed)) << std::get<std::string>(parsed);
  const auto& options = std::get<SubagentOptions>(parsed);
  EXPECT_EQ(options.agentxSocket, "/run/x.sock");
  EXPECT_EQ(options.config, "/etc/a.conf");
  EXPECT_EQ(options.pingInterval, 3);
  EXPECT_EQ(options.log, "/var/log/s.log");
  EXPECT_EQ(options.debugTokens, "agentx,trace");
  EXPECT_EQ(std::get<SubagentOptions>(parseSubagentOptions({})).pingInterval, 5);
  EXPECT_TRUE(std::get<SubagentOptions>(parseSubagentOptions({"-h"})).help);
}

TEST(SubagentOptions, UnusableArgumentsAreRefusedByName) {
  EXPECT_NE(refusal({"--agentx"}).find("'--agentx'"), std::string::npos);
  EXPECT_NE(refusal({"--config"}).find("--config needs a value"), std::string::npos);
  EXPECT_NE(refusal({"--log", ""}).find("--log needs a value"), std::string::npos);
  for (const char* bad : {"0", "-1", "2s", "", "x"})
    EXPECT_NE(refusal({"--ping-interval", bad}).find("--ping-interval"), std::string::npos) << bad;
}

}  // namespace
