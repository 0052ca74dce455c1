// ipsnmp-scenario-vrfs [FILE]: prints the names of the VRFs that a scenario file configures (without
// FILE: the scenario built into the plug-in), one per line, as the plug-in reads them, so that the
// launcher can give each a community of its own. A file the plug-in would refuse prints its error on
// stderr and ends with status 1.
#include <fstream>
#include <iostream>
#include <sstream>

#include "sources/scenario/DefaultScenario.h"
#include "sources/scenario/ScenarioParser.h"

int main(int argc, char** argv) {
  if (argc > 2) {
    std::cerr << "usage: ipsnmp-scenario-vrfs [FILE]\n";
    return 2;
  }
  std::string name = "scenarios/default.yaml (embedded)";
  std::string text(Sources::defaultScenarioText);
  if (argc == 2) {
    std::ifstream file(argv[1]);
    if (!file) {
      std::cerr << argv[1] << ": cannot read\n";
      return 1;
    }
    std::ostringstream content;
    content << file.rdbuf();
    name = argv[1];
    text = content.str();
  }
  try {
    for (const auto& [vrf, scenario] : Sources::parseScenario(text, name).vrfs)
      std::cout << vrf.stringValue() << '\n';
  } catch (const std::exception& e) {
    std::cerr << e.what() << '\n';
    return 1;
  }
  return 0;
}
