#pragma once
// The text of scenarios/default.yaml, compiled into the library (the source is generated at build).
#include <string_view>

namespace Sources {

extern const std::string_view defaultScenarioText;

}  // namespace Sources
