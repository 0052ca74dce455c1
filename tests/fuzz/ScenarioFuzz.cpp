// The scenario parser over any text: it returns a scenario or raises ScenarioError naming the file
// and line, and nothing else.
#include <string>
#include <string_view>

#include "FuzzTargets.h"
#include "sources/scenario/ScenarioParser.h"

namespace Fuzz {

int scenario(const std::uint8_t* data, std::size_t size) {
  try {
    Sources::parseScenario(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.yaml");
  } catch (const Sources::ScenarioError& e) {
    require(std::string_view(e.what()).starts_with("fuzz.yaml:"), "a scenario error that does not name the file");
  }
  return 0;
}

}  // namespace Fuzz
