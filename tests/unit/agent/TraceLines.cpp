#include "tests/unit/agent/TraceLines.h"

namespace IpSnmp {

int TraceLines::count(const std::string& line) const {
  std::istringstream in(lines_.str());
  int n = 0;
  for (std::string each; std::getline(in, each);) n += each == line;
  return n;
}

int TraceLines::countStarting(const std::string& start) const {
  std::istringstream in(lines_.str());
  int n = 0;
  for (std::string each; std::getline(in, each);) n += each.starts_with(start);
  return n;
}

}  // namespace IpSnmp
