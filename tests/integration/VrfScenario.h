#pragma once
// The VRF "red" of the lifecycle tests in the real agent: a scenario in which red is published with
// an interface of its own (Ethernet1, 10.0.1.1/24) beside one of the default VRF (Ethernet2,
// 10.0.2.1/24), shared-memory tables that the tests write with ipsnmp-tarn, and what red's context
// and the default context answer.
#include <string>
#include <vector>

#include "AgentUnderTest.h"
#include "Eventually.h"

namespace IntegrationTest {

inline const char* const ipForwarding = ".1.3.6.1.2.1.4.1.0";
inline const char* const ipAddrTable = ".1.3.6.1.2.1.4.20";
inline const char* const ipNetToMediaTable = ".1.3.6.1.2.1.4.22";
inline const char* const ipCidrRouteTable = ".1.3.6.1.2.1.4.24.4";
inline const char* const ipAddressPrefixTable = ".1.3.6.1.2.1.4.32";
inline const char* const ipAddressTable = ".1.3.6.1.2.1.4.34";
inline const char* const oskelSwFwdIpStatsTable = ".1.3.6.1.4.1.48213.3.1.1.1";
inline const char* const oskelVrfTable = ".1.3.6.1.4.1.48213.3.18.1.1";
inline const char* const oskelVrfIfTable = ".1.3.6.1.4.1.48213.3.18.1.2";
// oskelVrfTable's state column of red (the name as a counted octet string).
inline const char* const redVrfState = ".1.3.6.1.4.1.48213.3.18.1.1.1.4.3.114.101.100";

// Red's indexes: its address, its neighbour 10.0.1.2 on ifIndex 1, its route 10.9.0.0/16 via it.
inline const char* const redAddress = "10.0.1.1";
inline const char* const redNeighbour = "1.10.0.1.2";
inline const char* const redRoute = "10.9.0.0.255.255.0.0.0.10.0.1.2";

// The scenario with red in `redState` ("" leaves red out) and the agent initialized or not.
std::string redScenario(const std::string& redState, bool initialized = true);

// A directory for the shared-memory tables, removed with this object.
class TableRoot {
 public:
  TableRoot();
  ~TableRoot();
  TableRoot(const TableRoot&) = delete;
  TableRoot& operator=(const TableRoot&) = delete;
  const std::string& path() const noexcept { return path_; }
  // Runs ipsnmp-tarn with these commands (one a line) on this root; its output when it failed.
  std::string write(const std::vector<std::string>& commands, const std::string& vrf = "") const;
  // Red's route and FEC, and its neighbour under VRF id 7; with `withId` also the id 7 of red.
  std::string writeRed(bool withId) const;

 private:
  std::string path_;
};

// The indexes of the rows of `table` that a walk saw (the part of each OID after the column),
// without repetition, in walk order.
std::vector<std::string> rowIndexes(const ToolOutput& walk, const std::string& table);
bool contains(const std::vector<std::string>& items, const std::string& item);
// The varbinds of a walk of `table` that are neither a row of `allowed` nor an exception
// (noSuchObject and the like), as "OID = TYPE: VALUE".
std::vector<std::string> strayVarbinds(const ToolOutput& walk, const std::string& table,
                                       const std::vector<std::string>& allowed);

}  // namespace IntegrationTest
