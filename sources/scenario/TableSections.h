#pragma once
// The readers of the table sections of a scenario: `fib` (routes and FECs per VRF), `arp` and
// `vrfIds`. Like the rest of the reading, each checks all it reads and ends the reading at the
// first problem (see ScenarioYaml.h).
#include <map>

#include "sources/scenario/ScenarioYaml.h"
#include "sources/scenario/TableScenario.h"

namespace Sources::ScenarioYaml {

using VrfIds = std::map<Vrf::VrfIdMap::VrfId, L3::VrfName>;

// The most entries a table may be given, in all its runs together.
inline constexpr U64 maxTableEntries = U64(1) << 24;

std::map<L3::VrfName, FibScenario> readFib(const Checker& checker, const Entry& section);
// `vrfIds` resolves the VRF names of entries; without it only "default" and numbers are known.
std::vector<ArpRun> readArp(const Checker& checker, const Entry& section, const std::optional<VrfIds>& vrfIds);
VrfIds readVrfIds(const Checker& checker, const Entry& section);

}  // namespace Sources::ScenarioYaml
