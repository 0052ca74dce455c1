#pragma once
// Reads a scenario from its YAML text, checking all of it: the structure, every key, every value's
// type and range. The first problem ends the reading with a ScenarioError whose text is
// "<fileName>:<line>: <problem>", for example "scenario.yaml:12: unknown key 'routng' in vrf red".
#include <stdexcept>
#include <string_view>

#include "sources/scenario/Scenario.h"

namespace Sources {

class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

Scenario parseScenario(std::string_view text, std::string_view fileName);

}  // namespace Sources
