#pragma once
// What the end-to-end tests need of this machine and of time: the agent and the tools installed, and
// a condition that the agent reaches after a while (an edit of the scenario, rows that its machines
// build after the start).
#include <unistd.h>

#include <chrono>
#include <functional>
#include <thread>

namespace IntegrationTest {

// Whether Debian's snmpd and the net-snmp tools are installed; the tests skip without them.
inline bool toolsInstalled() {
  return ::access("/usr/sbin/snmpd", X_OK) == 0 && ::access("/usr/bin/snmpget", X_OK) == 0;
}

// Polls `condition` until it holds or `seconds` have passed.
inline bool eventually(const std::function<bool()>& condition, double seconds = 15.0) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  return true;
}

}  // namespace IntegrationTest
