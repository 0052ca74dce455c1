#include "KernelCounters.h"

#include <fstream>
#include <sstream>

namespace IntegrationTest {

KernelCounters kernelCountersOf(const std::string& text) {
  std::istringstream in(text);
  KernelCounters counters;
  for (std::string line, values; std::getline(in, line);) {
    std::string name;
    unsigned long long value;
    if (line.rfind("Ip: ", 0) == 0 && std::getline(in, values)) {
      std::istringstream names(line.substr(4)), numbers(values.substr(4));
      while (names >> name && numbers >> value) counters[name] = value;
    } else if (std::istringstream pair(line); pair >> name >> value) {
      counters[name] = value;
    }
  }
  return counters;
}

KernelCounters kernelCountersIn(const std::string& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return kernelCountersOf(text.str());
}

}  // namespace IntegrationTest
