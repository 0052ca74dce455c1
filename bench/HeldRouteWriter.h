#pragma once
// A writer of the default VRF's route table that stays open between changes, as a routing agent's
// does: only its first write comes after a takeover of the file. Kept apart from the SNMP client,
// whose headers define names that the table headers use too.
#include <cstdint>
#include <memory>
#include <string>

class HeldRouteWriter {
 public:
  // Takes the route table under `root` over at its present size.
  explicit HeldRouteWriter(const std::string& root);
  ~HeldRouteWriter();
  HeldRouteWriter(const HeldRouteWriter&) = delete;
  HeldRouteWriter& operator=(const HeldRouteWriter&) = delete;

  // Puts the route `prefix` through FEC `fecId` and commits it.
  void put(const std::string& prefix, std::uint64_t fecId);

 private:
  struct Table;
  std::unique_ptr<Table> table_;
};
