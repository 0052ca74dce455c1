#pragma once
// Brings the shared-memory tables under a root directory in line with a scenario, by difference:
// in each table a key that the scenario lacks is erased, a key whose value differs or is new is
// written, and a key that is already right is not touched, so its readers hear nothing. Each table
// is one batch with one commit, in the order VRF ids, then per VRF its FECs and routes, then ARP.
//
// The tables are those that the agent mounts: for each VRF its route and FEC tables (the default
// VRF's at the fixed paths), the one ARP table and the one VRF-id table, each at
// <root>/<mount path>/<attribute>. Only the sections the scenario has are touched; a present `fib`
// covers every VRF, those whose tables are found under the root and not in the scenario emptied.
//
// A table is sized for what it must hold: the file as it stands when it is large enough, otherwise
// the larger of the usual size and the next power of two. A file of another size is rebuilt,
// which its readers follow.
#include <string>

#include "sources/scenario/TableScenario.h"

namespace Sources {

struct TableSyncCounts {
  U64 written = 0;
  U64 erased = 0;
  friend bool operator==(const TableSyncCounts&, const TableSyncCounts&) = default;
};

// Raises what the table writers raise: std::system_error when a file cannot be written or another
// writer holds it longer than `lockWait` seconds, Quor::RangeException for a full table.
TableSyncCounts syncTables(const TablesScenario& tables, const std::string& root, double lockWait);

}  // namespace Sources
