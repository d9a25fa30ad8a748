#include "reading/Runs.h"
#include "StoredText.h"
#include "output/Output.h"
#include "output/Terminal.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "reading/Executions.h"
#include "reading/Rows.h"
#include "reading/Store.h"
#include "reading/Values.h"
#include "verbs/Verbs.h"

namespace Velora::Ts {

namespace {

// Along the index by parent and time, until there are enough. PostgreSQL takes the order from the index only where all
// of its columns are named.
std::string QuestionOf(const RunFilter& filter) {
  std::string question = executionQuestion;
  question +=
      "WHERE e.parent_id IS NULL AND e.started_at >= ?1 AND (?2 = '' OR n.instrument = ?2) "
      "AND (?3 = '' OR v.name = ?3 OR a.name = ?3) ";
  if (filter.unfinished) {
    question += std::string("AND EXISTS (") + runningOfRun + "e.execution_id) ";
  }
  return question + "ORDER BY e.parent_id DESC, e.started_at DESC, e.execution_id DESC LIMIT ?4";
}

Run RunOf(const Execution& root) { return {root.key, root.guid, root.node, root.startedAt}; }

void WriteTable(const Store& store, Rows& rows) {
  TextTable table({{"run"},
                   {"started"},
                   {"duration", true},
                   {"state"},
                   {"instrument", false, true},
                   {"activity", false, true},
                   {"node", false, true}});
  while (rows.Next()) {
    const Execution root = ExecutionAt(rows);
    const bool unfinished = IsUnfinished(store, RunOf(root));
    table.Add({{Printable(ShortGuid(store, root.guid))},
               {LocalTime(root.startedAt, false)},
               {unfinished ? "" : DurationInWords(root, false)},
               {unfinished ? unfinishedInWords : StateInWords(root), unfinished},
               {Shown(root.instrument)},
               {ActivityInWords(root)},
               {Shown(root.node)}});
  }
  table.Finish();
}

void WriteJson(const Store& store, Rows& rows) {
  const char* separator = "[\n";
  while (rows.Next()) {
    const Execution root = ExecutionAt(rows);
    WriteData(separator + ('{' + JsonMembers(root)) +
              (IsUnfinished(store, RunOf(root)) ? ",\"unfinished\":true}" : ",\"unfinished\":false}"));
    separator = ",\n";
  }
  WriteData(*separator == '[' ? "[]\n" : "\n]\n");
}

}  // namespace

ExitCode ListRuns(const Quor::TolvaServices::Local::Database& database, const RunFilter& filter) {
  const Store store(database);
  Rows rows(store, QuestionOf(filter));
  using Quor::TolvaServices::Local::ToStoredText;
  rows.Ask(filter.since, ToStoredText(filter.instrument), ToStoredText(filter.activity), filter.limit);
  filter.json ? WriteJson(store, rows) : WriteTable(store, rows);
  FlushOut();
  store.ExpectUntouched();
  return Done;
}

}  // namespace Velora::Ts
