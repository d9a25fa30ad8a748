#include "store/reading/Unfinished.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"

namespace Velora::Store {

namespace {

constexpr const char* isRunning =
    "4 = (SELECT code FROM statuses WHERE execution_id = x.execution_id ORDER BY status_id DESC LIMIT 1)";

/// A query that has a row if the run with this root is not finished.
std::string RunningOf(const std::string& root) {
  return "SELECT 1 FROM executions x WHERE x.root_id = " + root + " AND " + isRunning;
}

}  // namespace

bool NotesRunning(const Reader& store) {
  Rows triggers(store, store.Where().kind == Database::Kind::PostgreSql
                           ? "SELECT 1 FROM pg_trigger WHERE tgrelid = to_regclass('statuses') AND tgname = "
                             "'statuses_running' AND tgenabled IN ('O', 'A')"
                           : "SELECT 1 FROM sqlite_master WHERE name = 'statuses_begin' AND type = 'trigger'");
  return triggers.Next();
}

std::string UnfinishedExecutions(const Reader& store) {
  return std::string(" FROM ") +
         (NotesRunning(store) ? "running CROSS JOIN executions x WHERE x.execution_id = running.execution_id AND "
                              : "executions x WHERE ") +
         isRunning;
}

std::string UnfinishedRuns(const Reader& store) { return "SELECT x.root_id" + UnfinishedExecutions(store); }

std::string UnfinishedCondition(const Reader& store, const std::string& root) {
  return NotesRunning(store) ? root + " IN (" + UnfinishedRuns(store) + ')' : "EXISTS (" + RunningOf(root) + ')';
}

bool IsUnfinished(const Reader& store, const Run& run) {
  Rows rows(store, RunningOf("?1") + " LIMIT 1");
  return rows.Ask(run.root).Next();
}

}  // namespace Velora::Store
