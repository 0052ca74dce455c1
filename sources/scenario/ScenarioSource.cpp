#include "sources/scenario/ScenarioSource.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <system_error>

#include "platform/quor/Trace.h"
#include "sources/scenario/DefaultScenario.h"
#include "sources/scenario/FileWatch.h"
#include "sources/scenario/ScenarioApply.h"
#include "sources/scenario/ScenarioParser.h"

namespace Sources {

namespace {

const Quor::Tracer tracer("Scenario", "ScenarioSource");

}  // namespace

ScenarioSource::ScenarioSource(Morvane::Store store, std::string path)
    : store_(std::move(store)), path_(std::move(path)) {}

ScenarioSource::~ScenarioSource() = default;

std::string ScenarioSource::load() {
  std::string text;
  lastError_ = read(text);
  if (lastError_.empty()) {
    try {
      applyScenario(parseScenario(text, displayName()), store_);
      QTRACE(tracer, 1, "applied " << displayName());
    } catch (const ScenarioError& e) {
      lastError_ = e.what();
    }
  }
  if (!lastError_.empty()) QTRACE(tracer, 0, lastError_);
  return lastError_;
}

std::string ScenarioSource::watch() {
  if (path_.empty()) return "the embedded scenario cannot change: nothing to watch";
  try {
    watch_ = std::make_unique<FileWatch>(path_, [this] { load(); });
  } catch (const std::system_error& e) {
    return path_ + ": " + e.what();
  }
  return {};
}

std::string ScenarioSource::read(std::string& text) const {
  if (path_.empty()) {
    text = defaultScenarioText;
    return {};
  }
  std::ifstream file(path_);
  if (!file) return path_ + ": cannot read: " + std::strerror(errno);
  std::ostringstream content;
  content << file.rdbuf();
  text = content.str();
  return {};
}

std::string ScenarioSource::displayName() const { return path_.empty() ? "scenarios/default.yaml (embedded)" : path_; }

}  // namespace Sources
