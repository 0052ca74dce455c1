#pragma once
// The scenario source: fills the store from a declarative YAML file and keeps it in step with it.
//
//   Morvane::Store store = Morvane::buildStore(root);
//   Sources::ScenarioSource scenario(store, "/etc/ipsnmp/scenario.yaml");  // "" for the embedded one
//   if (std::string error = scenario.load(); !error.empty()) ...  // nothing was applied
//   scenario.watch();  // from now on every save of the file is applied
//
// Each load reads the whole file, checks all of it, and only then applies its difference to the
// store (see ScenarioApply.h). A file with any problem is refused as a whole with one error,
// "<file>:<line>: <problem>", which goes to the trace facility "Scenario" at level 0 and back to the
// caller; the store then stays as it was. The format is told in docs/scenario.md.
#include <memory>
#include <string>

#include "platform/morvane/Store.h"

namespace Sources {

class FileWatch;

class ScenarioSource {
 public:
  // `path` empty: the embedded scenarios/default.yaml.
  ScenarioSource(Morvane::Store store, std::string path);
  ~ScenarioSource();

  // Applies the scenario; gives the empty text on success, else the error.
  std::string load();
  // Loads again after every save of the file, on the activity manager's loop. Gives the empty text
  // when the watch stands, else why not (the embedded scenario cannot change).
  std::string watch();
  // The error of the last load, empty when it succeeded.
  const std::string& lastError() const noexcept { return lastError_; }

 private:
  std::string read(std::string& text) const;
  std::string displayName() const;

  Morvane::Store store_;
  std::string path_;
  std::string lastError_;
  std::unique_ptr<FileWatch> watch_;
};

}  // namespace Sources
