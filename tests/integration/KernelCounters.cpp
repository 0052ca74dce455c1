#include "KernelCounters.h"

#include <sstream>

#include "tests/support/TestSupport.h"

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

KernelCounters kernelCountersIn(const std::string& path) { return kernelCountersOf(TestSupport::fileText(path)); }

}  // namespace IntegrationTest
