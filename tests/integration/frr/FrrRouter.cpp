#include "FrrRouter.h"

#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/support/TestSupport.h"

namespace IntegrationTest {

namespace {

namespace fs = std::filesystem;

const fs::path daemonDir = "/usr/lib/frr";
const std::string dirPrefix = "ipsnmp-frr.";

bool alive(pid_t pid) { return ::kill(pid, 0) == 0 || errno == EPERM; }

// Whether process `pid` is `daemon` and has not ended.
bool runs(pid_t pid, const std::string& daemon) {
  const std::string stat = TestSupport::fileText("/proc/" + std::to_string(pid) + "/stat");
  const auto open = stat.find('('), close = stat.rfind(')');
  if (open == std::string::npos || close == std::string::npos || close + 2 >= stat.size()) return false;
  return stat.substr(open + 1, close - open - 1) == daemon && stat[close + 2] != 'Z';
}

// Stops the daemon whose pid file is `pidFile`, if that pid is still the daemon's. It is killed
// outright: what it would tidy on SIGTERM (its routes, its sessions) goes with the test's
// namespaces, and FRR's daemons take seconds each to end on SIGTERM.
void stopDaemon(const fs::path& pidFile) {
  const pid_t pid = static_cast<pid_t>(std::atol(TestSupport::fileText(pidFile).c_str()));
  const std::string daemon = pidFile.stem().string();
  if (pid <= 0 || !runs(pid, daemon)) return;
  ::kill(pid, SIGKILL);
  for (int i = 0; i < 150 && runs(pid, daemon); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

void stopAll(const fs::path& dir) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(dir, ignored))
    if (entry.path().extension() == ".pid") stopDaemon(entry.path());
  fs::remove_all(dir, ignored);
}

}  // namespace

bool FrrRouter::installed() {
  for (const char* program : {"zebra", "bgpd", "staticd"})
    if (::access((daemonDir / program).c_str(), X_OK) != 0) return false;
  return ::access("/usr/bin/vtysh", X_OK) == 0 && ::getpwnam("frr") != nullptr;
}

void FrrRouter::sweepLeftovers() {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(fs::temp_directory_path(), ignored)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(dirPrefix)) continue;
    const pid_t owner = static_cast<pid_t>(std::atol(name.c_str() + dirPrefix.size()));
    if (owner > 0 && !alive(owner)) stopAll(entry.path());
  }
}

FrrRouter::FrrRouter(std::string netns, const std::string& name)
    : netns_(std::move(netns)),
      dir_((fs::temp_directory_path() / (dirPrefix + std::to_string(::getpid()) + "." + name)).string()) {
  stopAll(dir_);
  fs::create_directories(dir_);
  // The daemons write their pid files and sockets here once they run as FRR's user.
  const passwd* frr = ::getpwnam("frr");
  if (!frr || ::chown(dir_.c_str(), frr->pw_uid, frr->pw_gid) != 0)
    throw std::runtime_error("cannot give " + dir_ + " to FRR's user");
}

FrrRouter::~FrrRouter() { stopAll(dir_); }

bool FrrRouter::start(const std::string& daemon, const std::string& config, const std::vector<std::string>& options) {
  const std::string base = dir_ + "/" + daemon;
  std::ofstream(base + ".conf") << config;
  std::vector<std::string> argv;
  if (!netns_.empty()) argv = {"ip", "netns", "exec", netns_};
  // -d returns once the daemon runs with its configuration read; -P 0: no vty over TCP.
  const std::vector<std::string> daemonArgs{(daemonDir / daemon).string(),
                                            "-d", "-P", "0", "--vty_socket", dir_, "-i", base + ".pid",
                                            "-z", dir_ + "/zserv.api", "-f", base + ".conf", "--log", "file:" + base + ".log"};
  argv.insert(argv.end(), daemonArgs.begin(), daemonArgs.end());
  argv.insert(argv.end(), options.begin(), options.end());
  const CommandResult run = runCommand(argv);
  daemons_.push_back(daemon);
  return run.exitStatus == 0 && fs::exists(base + ".pid");
}

CommandResult FrrRouter::vtysh(const std::string& daemon, const std::vector<std::string>& commands) const {
  std::vector<std::string> argv{"vtysh", "--vty_socket", dir_, "-d", daemon};
  for (const std::string& command : commands) argv.insert(argv.end(), {"-c", command});
  return runCommand(argv);
}

std::string FrrRouter::logs() const {
  std::string all;
  for (const std::string& daemon : daemons_) all += "--- " + daemon + ".log\n" + TestSupport::fileText(dir_ + "/" + daemon + ".log");
  return all;
}

}  // namespace IntegrationTest
