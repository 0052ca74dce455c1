#pragma once
// Named trace facilities with a master switch and one switch per level (0 to 9).
//
// A trace statement formats nothing unless its facility and level are on, or a coverage stream is
// set. Levels: 0 refused requests, 1 the noteworthy, 2 request flow and backlog passes, 5 table
// stubs, 6 missing routes and FECs, 8 function entry and routine non-events, 9 steps per element.
#include <iosfwd>
#include <sstream>
#include <string>
#include <string_view>

#include "platform/quor/Types.h"

namespace Quor {

class TraceHandle {
 public:
  // The facility of that name, created on first use and alive until the process ends.
  static TraceHandle& named(std::string_view facility);

  bool enabled(int level) const noexcept { return master_ && level >= 0 && level <= 9 && (levels_ >> level & 1u); }
  void masterIs(bool on) noexcept { master_ = on; }
  void levelIs(int level, bool on) noexcept;
  const std::string& facility() const noexcept { return facility_; }

  explicit TraceHandle(std::string facility) : facility_(std::move(facility)) {}

 private:
  std::string facility_;
  bool master_ = false;
  U16 levels_ = 0;
};

// A facility together with the source name that its statements report.
struct Tracer {
  Tracer(std::string_view facility, const char* sourceName) : handle(TraceHandle::named(facility)), source(sourceName) {}
  TraceHandle& handle;
  const char* source;
};

// When set, every trace statement is formatted and written here as well, whatever the switches say.
extern std::ostream* coverageStream_;

void traceHelper(const TraceHandle& facility, const char* name, std::stringstream& message, int level,
                 bool enabled, const char* file, int line, const char* function);

// Where enabled trace lines go; stderr until the host sets another sink.
using TraceSink = void (*)(const TraceHandle& facility, int level, const char* file, const char* function,
                           const std::string& text);
void traceSinkIs(TraceSink sink);

// Turns facilities on from a text such as "IpSnmp:0-9,Snmp:2,IpSwFwdStats". A facility without
// levels gets all of them. Unknown words are facilities created on the spot; a malformed level range
// raises RangeException naming it.
void traceConfigure(std::string_view spec);

}  // namespace Quor

#define QTRACE(tracer, level, expr)                                                                   \
  do {                                                                                                \
    const ::Quor::Tracer& quorTracer_ = (tracer);                                                     \
    const bool quorTraceOn_ = quorTracer_.handle.enabled(level);                                      \
    if (quorTraceOn_ || ::Quor::coverageStream_) {                                                    \
      std::stringstream quorTraceText_;                                                               \
      quorTraceText_.precision(12);                                                                   \
      quorTraceText_ << expr;                                                                         \
      ::Quor::traceHelper(quorTracer_.handle, "<unknown>", quorTraceText_, level, quorTraceOn_,      \
                          quorTracer_.source, __LINE__, __func__);                                    \
    }                                                                                                 \
  } while (0)
