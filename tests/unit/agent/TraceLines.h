#pragma once
// The trace lines that a test causes, counted by their text.
#include <sstream>
#include <string>

#include "platform/quor/Trace.h"

namespace IpSnmp {

// Collects every trace line of every facility, whatever the switches say, while it lives.
class TraceLines {
 public:
  TraceLines() { Quor::coverageStream_ = &lines_; }
  ~TraceLines() { Quor::coverageStream_ = nullptr; }
  TraceLines(const TraceLines&) = delete;
  TraceLines& operator=(const TraceLines&) = delete;
  // How many lines read "<facility>/<level> <text>" exactly, e.g. "IpSnmp/2 Backlog processing done".
  int count(const std::string& line) const;
  // How many lines begin with "<facility>/<level> <text>".
  int countStarting(const std::string& start) const;

 private:
  std::ostringstream lines_;
};

}  // namespace IpSnmp
