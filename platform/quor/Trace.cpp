#include "platform/quor/Trace.h"

#include <charconv>
#include <cstdio>
#include <map>
#include <memory>
#include <ostream>

#include "platform/quor/Exception.h"

namespace Quor {

std::ostream* coverageStream_ = nullptr;

namespace {

void stderrSink(const TraceHandle& facility, int level, const char* file, const char* function,
                const std::string& text) {
  std::fprintf(stderr, "%s/%d %s %s: %s\n", facility.facility().c_str(), level, file, function, text.c_str());
}

TraceSink sink = stderrSink;

int parseLevel(std::string_view text, std::string_view whole) {
  int level = -1;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), level);
  if (ec != std::errc() || end != text.data() + text.size() || level < 0 || level > 9)
    throwRangeException("bad trace level '" + std::string(text) + "' in '" + std::string(whole) + "'");
  return level;
}

}  // namespace

TraceHandle& TraceHandle::named(std::string_view facility) {
  // Never destroyed: facilities are used from static destructors too.
  static auto* registry = new std::map<std::string, std::unique_ptr<TraceHandle>, std::less<>>;
  auto it = registry->find(facility);
  if (it == registry->end())
    it = registry->emplace(std::string(facility), std::make_unique<TraceHandle>(std::string(facility))).first;
  return *it->second;
}

void TraceHandle::levelIs(int level, bool on) noexcept {
  if (level < 0 || level > 9) return;
  levels_ = on ? (levels_ | (1u << level)) : (levels_ & ~(1u << level));
}

void traceHelper(const TraceHandle& facility, const char*, std::stringstream& message, int level, bool enabled,
                 const char* file, int, const char* function) {
  std::string text = message.str();
  if (coverageStream_) *coverageStream_ << facility.facility() << '/' << level << ' ' << text << '\n';
  if (enabled) sink(facility, level, file, function, text);
}

void traceSinkIs(TraceSink newSink) { sink = newSink ? newSink : stderrSink; }

void traceConfigure(std::string_view spec) {
  while (!spec.empty()) {
    auto comma = spec.find(',');
    std::string_view item = spec.substr(0, comma);
    spec = comma == std::string_view::npos ? std::string_view() : spec.substr(comma + 1);
    if (item.empty()) continue;
    auto colon = item.find(':');
    TraceHandle& handle = TraceHandle::named(item.substr(0, colon));
    handle.masterIs(true);
    if (colon == std::string_view::npos) {
      for (int l = 0; l <= 9; ++l) handle.levelIs(l, true);
      continue;
    }
    std::string_view levels = item.substr(colon + 1);
    auto dash = levels.find('-');
    int low = parseLevel(levels.substr(0, dash), item);
    int high = dash == std::string_view::npos ? low : parseLevel(levels.substr(dash + 1), item);
    for (int l = low; l <= high; ++l) handle.levelIs(l, true);
  }
}

}  // namespace Quor
