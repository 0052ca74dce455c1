#include "Traces.h"

#include <sstream>

#include "platform/quor/Trace.h"

namespace TableTest {

std::string tracesOf(const std::function<void()>& run) {
  std::ostringstream traces;
  Quor::coverageStream_ = &traces;
  run();
  Quor::coverageStream_ = nullptr;
  return traces.str();
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace TableTest
