#pragma once
// Test helpers: the shared-memory tables under a root read back whole, and another writer.
#include <map>
#include <string>

#include "platform/tarn/ArpEntry.h"
#include "platform/tarn/FibFec.h"
#include "platform/tarn/FibRoute.h"
#include "platform/tarn/VrfEntry.h"
#include "tests/support/TestSupport.h"

namespace ScenarioTest {

// Another process that holds the writer of the VRF-id table under `root` (with its usual size)
// until this object goes, as a writing agent would.
class VrfIdTableHolder {
 public:
  explicit VrfIdTableHolder(const std::string& root);
  ~VrfIdTableHolder();
  VrfIdTableHolder(const VrfIdTableHolder&) = delete;
  VrfIdTableHolder& operator=(const VrfIdTableHolder&) = delete;

 private:
  int pid_;
  int release_;
};

std::string routeFile(const std::string& root, const std::string& vrf);
std::string fecFile(const std::string& root, const std::string& vrf);
std::string arpFile(const std::string& root);
std::string vrfIdFile(const std::string& root);

// Empty when the table has no file.
std::map<Pelt::Prefix, Tarn::Fib::Route> routesIn(const std::string& root, const std::string& vrf);
std::map<Tarn::Fib::FecId, Tarn::Fib::Fec> fecsIn(const std::string& root, const std::string& vrf);
std::map<Arp::Table::ArpKey, Arp::Table::ArpEntry> arpIn(const std::string& root);
std::map<U32, std::string> vrfIdsIn(const std::string& root);

}  // namespace ScenarioTest
