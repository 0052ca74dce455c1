#include "AgentUnderTest.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/support/TestSupport.h"

namespace IntegrationTest {

namespace {

// A UDP port on the loopback address that nothing uses now; the agent binds it a moment later.
int freeLoopbackPort() {
  int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof addr;
  if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 ||
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &length) != 0)
    throw std::runtime_error("no free loopback UDP port");
  ::close(fd);
  return ntohs(addr.sin_port);
}

std::string newDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "ipsnmp-it.XXXXXX").string();
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  return pattern;
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::trunc);
  out << text;
  if (!out.flush()) throw std::runtime_error("cannot write " + path);
}

// The pid of the last "master pid PID" line of the launcher's output, 0 without one.
pid_t lastMasterPid(const std::string& output) {
  const std::string tag = "master pid ";
  const auto at = output.rfind(tag);
  return at == std::string::npos ? 0 : static_cast<pid_t>(std::atol(output.c_str() + at + tag.size()));
}

}  // namespace

AgentMode agentModeOfEnvironment() {
  const char* mode = std::getenv("IPSNMP_AGENT_MODE");
  return mode && std::string(mode) == "agentx" ? AgentMode::subagent : AgentMode::plugin;
}

const char* agentModeName(AgentMode mode) { return mode == AgentMode::subagent ? "sub-agent" : "plug-in"; }

AgentUnderTest::AgentUnderTest(const std::string& scenario, const std::string& tables, AgentMode mode,
                               const std::vector<std::string>& launcherOptions)
    : dir_(newDirectory()),
      scenarioPath_(dir_ + "/scenario.yaml"),
      address_("127.0.0.1:" + std::to_string(freeLoopbackPort())),
      tools_(address_),
      mode_(mode) {
  writeFile(scenarioPath_, scenario);
  std::vector<std::string> argv{IPSNMP_AGENT_LAUNCHER, "--scenario", scenarioPath_, "--listen", "udp:" + address_,
                                "--log", dir_ + "/snmpd.log", "--trace", "Snmp:0-2", "--flitlog", dir_ + "/flitlog"};
  if (!tables.empty()) argv.insert(argv.end(), {"--tables", tables});
  if (mode == AgentMode::subagent) argv.push_back("--agentx");
  argv.insert(argv.end(), launcherOptions.begin(), launcherOptions.end());
  process_ = std::make_unique<BackgroundProcess>(argv);
  ready_ = process_->waitForLine("ready", 60.0);
}

AgentUnderTest::~AgentUnderTest() {
  process_.reset();
  std::error_code ignored;
  std::filesystem::remove_all(dir_, ignored);
}

bool AgentUnderTest::masterKilled() {
  const pid_t master = lastMasterPid(process_->output());
  if (mode_ != AgentMode::subagent || master <= 0 || ::kill(master, SIGKILL) != 0) return false;
  return process_->waitForLine("master exited with status 137, starting it again", 10.0);
}

std::string AgentUnderTest::flitlogDump() {
  const std::string file = dir_ + "/flitlog";
  std::filesystem::remove(file);
  process_->signal(SIGUSR2);
  for (int i = 0; i < 50 && !std::filesystem::exists(file); ++i) ::usleep(100000);
  return TestSupport::fileText(file);
}

void AgentUnderTest::scenarioIs(const std::string& scenario) {
  const std::string next = scenarioPath_ + ".next";
  writeFile(next, scenario);
  std::filesystem::rename(next, scenarioPath_);
}

std::string AgentUnderTest::log() const { return TestSupport::fileText(dir_ + "/snmpd.log"); }

std::size_t AgentUnderTest::logCount(const std::string& text) const {
  const std::string all = log();
  std::size_t count = 0;
  for (auto at = all.find(text); at != std::string::npos; at = all.find(text, at + 1)) ++count;
  return count;
}

std::string AgentUnderTest::diagnostics() const {
  return std::string("agent: the ") + agentModeName(mode_) + "\nlauncher output:\n" + process_->output() + "\nsnmpd log:\n" + log();
}

}  // namespace IntegrationTest
