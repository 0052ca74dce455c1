#pragma once
// Debian's FRR as a test runs it: the daemons of one router (zebra, bgpd, staticd) in one network
// namespace, with their configuration, pid files, vty sockets, zebra's socket and logs in a directory
// of the router's own, so that nothing is shared with another router or with an FRR of the machine.
// The daemons run as FRR's own user, as packaged, and are stopped with the router. A test process that
// died before it could stop them leaves its directories behind: sweepLeftovers() stops their daemons.
#include <string>
#include <vector>

#include "Subprocess.h"

namespace IntegrationTest {

class FrrRouter {
 public:
  // Whether FRR's daemons and vtysh are installed.
  static bool installed();
  // Stops the daemons of routers whose test process is gone and removes their directories.
  static void sweepLeftovers();

  // A router in network namespace `netns`, a name under /var/run/netns, or in the process's own for
  // the empty name; `name` tells its directory from the test's other routers'.
  FrrRouter(std::string netns, const std::string& name);
  ~FrrRouter();
  FrrRouter(const FrrRouter&) = delete;
  FrrRouter& operator=(const FrrRouter&) = delete;

  // Starts `daemon` ("zebra", "bgpd", "staticd") with the configuration `config` and further
  // `options`, and waits until it has read it; zebra goes first, as the others connect to it. Whether
  // it started.
  bool start(const std::string& daemon, const std::string& config, const std::vector<std::string>& options = {});
  // Runs vtysh against `daemon` with each of `commands` in turn ("configure terminal", ...).
  CommandResult vtysh(const std::string& daemon, const std::vector<std::string>& commands) const;
  // The daemons' logs, for a test that fails.
  std::string logs() const;

 private:
  std::string netns_;
  std::string dir_;
  std::vector<std::string> daemons_;
};

}  // namespace IntegrationTest
