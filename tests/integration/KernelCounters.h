#pragma once
// The kernel's IP counters by name, as /proc/net/snmp gives them ("Ip:" header and value lines) and
// /proc/net/snmp6 (a name and a value a line).
#include <map>
#include <string>

namespace IntegrationTest {

using KernelCounters = std::map<std::string, unsigned long long>;

KernelCounters kernelCountersOf(const std::string& text);
KernelCounters kernelCountersIn(const std::string& path);

}  // namespace IntegrationTest
