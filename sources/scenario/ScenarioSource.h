#pragma once
// The scenario source: fills the store and the shared-memory tables from a declarative YAML file and
// keeps them in step with it.
//
//   Morvane::Store store = Morvane::buildStore(root);
//   Sources::ScenarioSource scenario(store, "/etc/ipsnmp/scenario.yaml");  // "" for the embedded one
//   if (std::string error = scenario.load(); !error.empty()) ...  // nothing was applied
//   scenario.watch();  // from now on every save of the file is applied
//
// Each load reads the whole file, checks all of it, and only then applies its difference to the
// store (see ScenarioApply.h) and starts the write of its tables (see TableWriteProcess.h), which
// ends later on the loop; a load while tables are being written has its tables written after.
// load() changes the store before it returns, as the agent's start wants it; a save that the watch
// sees is applied in slices of a few milliseconds on the loop, requests being served in between,
// and a later save replaces what is left of an earlier one.
// A file with any problem is refused as a whole with one error, "<file>:<line>: <problem>", which
// goes to the trace facility "Scenario" at level 0 and back to the caller; the store and the tables
// then stay as they were. The format is told in docs/scenario.md.
#include <memory>
#include <string>

#include "platform/morvane/Store.h"
#include "platform/tarn/Util.h"

namespace Sources {

class FileWatch;
class StoreChanges;
class TableWriteProcess;
struct TableSyncCounts;
struct TablesScenario;

class ScenarioSource {
 public:
  // `path` empty: the embedded scenarios/default.yaml. The tables live under `tableRoot`.
  ScenarioSource(Morvane::Store store, std::string path, std::string tableRoot = Tarn::RootPath());
  ~ScenarioSource();

  // Applies the scenario to the store and starts writing its tables; gives the empty text when
  // the file was accepted, else the error.
  std::string load();
  // Loads again after every save of the file, on the activity manager's loop. Gives the empty text
  // when the watch stands, else why not (the embedded scenario cannot change).
  std::string watch();
  // The error of the last load, or of the last write of the tables after it; empty when both went well.
  const std::string& lastError() const noexcept { return lastError_; }
  // Whether tables are being written or wait to be.
  bool tablesPending() const noexcept { return writer_ || nextTables_; }
  // Whether changes of a save wait for their slices.
  bool storePending() const noexcept { return changes_ != nullptr; }

  // How long one slice of changes to the store may take, in seconds.
  static constexpr double sliceSeconds = 0.003;

 private:
  class Slices;
  std::string accept(bool sliced);
  void makeChanges();
  std::string read(std::string& text) const;
  std::string displayName() const;
  void writeTables();
  void tablesWritten(const std::string& error, const TableSyncCounts& counts);

  Morvane::Store store_;
  std::string path_;
  std::string tableRoot_;
  std::string lastError_;
  std::unique_ptr<FileWatch> watch_;
  std::unique_ptr<StoreChanges> changes_;
  Quor::Ptr<Slices> slices_;
  std::unique_ptr<TableWriteProcess> writer_;
  std::shared_ptr<const TablesScenario> nextTables_;
};

}  // namespace Sources
