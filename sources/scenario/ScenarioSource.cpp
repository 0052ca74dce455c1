#include "sources/scenario/ScenarioSource.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <system_error>

#include "platform/quor/Clock.h"
#include "platform/quor/Trace.h"
#include "sources/scenario/DefaultScenario.h"
#include "sources/scenario/FileWatch.h"
#include "sources/scenario/ScenarioApply.h"
#include "sources/scenario/ScenarioParser.h"
#include "sources/scenario/TableWriteProcess.h"

namespace Sources {

namespace {

const Quor::Tracer tracer("Scenario", "ScenarioSource");

// How long the table writer waits for another writer of a table (it waits in its own process).
constexpr double tableLockWait = 5;

bool managesTables(const TablesScenario& tables) { return tables.fib || tables.arp || tables.vrfIds; }

}  // namespace

class ScenarioSource::Slices final : public Quor::Clock::NotifieeConst {
 public:
  explicit Slices(ScenarioSource* owner) : owner_(owner) { notifierIs(Quor::activityManager()->clock()); }
  void onTime() override { owner_->makeChanges(); }

 private:
  ScenarioSource* owner_;
};

ScenarioSource::ScenarioSource(Morvane::Store store, std::string path, std::string tableRoot)
    : store_(std::move(store)), path_(std::move(path)), tableRoot_(std::move(tableRoot)),
      slices_(Quor::makePtr<Slices>(this)) {}

ScenarioSource::~ScenarioSource() { slices_->notifierIs(nullptr); }

std::string ScenarioSource::load() { return accept(false); }

std::string ScenarioSource::accept(bool sliced) {
  std::string text;
  std::shared_ptr<Scenario> scenario;
  lastError_ = read(text);
  if (lastError_.empty()) {
    try {
      scenario = std::make_shared<Scenario>(parseScenario(text, displayName()));
    } catch (const ScenarioError& e) {
      lastError_ = e.what();
    }
  }
  if (!scenario) {
    QTRACE(tracer, 0, lastError_);
    return lastError_;
  }
  if (managesTables(scenario->tables))
    nextTables_ = std::make_shared<const TablesScenario>(std::move(scenario->tables));
  // A plan still being made is dropped: the new one starts from the store as it stands.
  changes_ = std::make_unique<StoreChanges>(std::move(scenario), store_);
  if (sliced) {
    slices_->timeMinIs(0.0);
  } else {
    changes_->makeUntil(Quor::never);
    changes_.reset();
    QTRACE(tracer, 1, "applied " << displayName());
  }
  writeTables();
  return {};
}

void ScenarioSource::makeChanges() {
  if (!changes_) return;
  if (changes_->makeUntil(Quor::now() + sliceSeconds)) {
    changes_.reset();
    QTRACE(tracer, 1, "applied " << displayName());
  } else {
    slices_->timeMinIs(0.0);
  }
}

void ScenarioSource::writeTables() {
  if (writer_ || !nextTables_) return;
  try {
    writer_ = std::make_unique<TableWriteProcess>(std::move(nextTables_), tableRoot_, tableLockWait,
                                                  [this](const std::string& error, const TableSyncCounts& counts) {
                                                    tablesWritten(error, counts);
                                                  });
  } catch (const std::system_error& e) {
    tablesWritten(e.what(), {});
  }
}

void ScenarioSource::tablesWritten(const std::string& error, const TableSyncCounts& counts) {
  writer_.reset();
  if (error.empty()) {
    QTRACE(tracer, 1, "wrote the tables of " << displayName() << ": " << counts.written << " entries written, "
                                             << counts.erased << " erased");
  } else {
    lastError_ = displayName() + ": the tables were not written: " + error;
    QTRACE(tracer, 0, lastError_);
  }
  writeTables();
}

std::string ScenarioSource::watch() {
  if (path_.empty()) return "the embedded scenario cannot change: nothing to watch";
  try {
    watch_ = std::make_unique<FileWatch>(path_, [this] { accept(true); });
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
