#pragma once
// What the kernel tests share: a process of their own network namespace, commands run through the
// shell, VRF namespaces that are removed whatever happens, the event loop run until a condition
// holds, and the shared-memory tables read back whole.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/tarn/ArpEntry.h"
#include "platform/tarn/FibFec.h"
#include "platform/tarn/VrfEntry.h"
#include "tests/support/TestSupport.h"

namespace LinuxTest {

// Whether this process is in a network namespace of its own (made on first call; needs root).
bool ownNetworkNamespace();

// Runs `command` through sh; its output, and whether it succeeded.
std::string sh(const std::string& command, bool* ok = nullptr);
// Runs `command`; fails the test when it does not succeed.
void must(const std::string& command);
// The lines of the output of `command`.
std::vector<std::string> lines(const std::string& command);

// Runs the event loop until `done` holds or `seconds` have passed; whether it held.
inline bool runUntil(const std::function<bool()>& done, double seconds = 10) { return TestSupport::turnUntil(done, seconds); }

// The tables as a reader finds them under `root`.
std::map<Pelt::Prefix, Tarn::Fib::Route> readRoutes(const std::filesystem::path& root, const std::string& vrf);
std::map<U64, Tarn::Fib::Fec> readFecs(const std::filesystem::path& root, const std::string& vrf);
std::map<Pelt::Ip6AddrWithMask, Tarn::Fib::Route6> readRoutes6(const std::filesystem::path& root, const std::string& vrf);
std::map<U64, Tarn::Fib::Fec6> readFecs6(const std::filesystem::path& root, const std::string& vrf);
std::vector<Arp::Table::ArpEntry> readArp(const std::filesystem::path& root);
std::map<std::string, U32> readVrfIds(const std::filesystem::path& root);

// Each test in a namespace of its own, with a fresh table root, and VRF namespaces it names
// with vrf("a"), vrf("b"), ... made by makeVrf and removed at the end.
class KernelTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // A VRF name unique to this process.
  std::string vrf(const std::string& tag) const;
  std::string netns(const std::string& tag) const { return "ns-" + vrf(tag); }
  void makeVrf(const std::string& tag);
  void deleteVrf(const std::string& tag);

  std::filesystem::path tableRoot;
  std::vector<std::string> made;
};

}  // namespace LinuxTest
