#include "store/reading/Runs.h"
#include "output/Output.h"
#include "output/Terminal.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/reading/Executions.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredText.h"
#include "verbs/StoreVerb.h"
#include "verbs/TimeArgument.h"

namespace Velora::Ts {

using namespace Store;

namespace {

/// Which runs to list. An empty text selects all.
struct RunFilter {
  std::string since, instrument, activity;
  bool unfinished = false;  ///< Only runs that are not finished.
  long long limit = 50;     ///< The highest number of runs.
};

// Reads along the index of parents and times until there are enough runs. PostgreSQL uses the index for the order only
// if ORDER BY names all its columns.
std::string ConditionOf(const RunFilter& filter) {
  std::string condition =
      "WHERE e.parent_id IS NULL AND e.started_at >= ?1 AND (?2 = '' OR n.instrument = ?2) "
      "AND (?3 = '' OR v.name = ?3 OR a.name = ?3) ";
  if (filter.unfinished) {
    condition += std::string("AND EXISTS (") + runningOfRun + "e.execution_id) ";
  }
  return condition + "ORDER BY e.parent_id DESC, e.started_at DESC, e.execution_id DESC LIMIT ?4";
}

Run RunOf(const Execution& root) { return {root.key, root.guid, root.node, root.startedAt}; }

void WriteTable(const Store::Reader& store, Rows& rows) {
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

void WriteJson(const Store::Reader& store, Rows& rows) {
  const char* separator = "[\n";
  while (rows.Next()) {
    const Execution root = ExecutionAt(rows);
    WriteData(separator + ('{' + JsonMembers(root)) +
              (IsUnfinished(store, RunOf(root)) ? ",\"unfinished\":true}" : ",\"unfinished\":false}"));
    separator = ",\n";
  }
  WriteData(*separator == '[' ? "[]\n" : "\n]\n");
}

class RunsVerb : public StoreVerb {
 public:
  explicit RunsVerb(Options& options) : StoreVerb(options) {
    options.AddText("--instrument", filter.instrument, "Only runs of this instrument");
    options.AddText("--since", filter.since, "Only runs that started at this time or later; UTC");
    options.AddText("--activity", filter.activity, "Only runs of this activity or activity version");
    options.AddFlag("--unfinished", filter.unfinished, "Only runs of which an execution did not finish");
    options.AddCount("--limit", filter.limit, "The highest number of runs. Default: 50");
    options.AddFlag("--json", json, "Write a JSON array, with times in UTC");
  }

  ExitCode Execute() override {
    const std::string since = filter.since.empty() ? "" : TimeArgument(filter.since);
    const Reader store(Database());
    Rows rows = QueryExecutions(store, ConditionOf(filter));
    rows.Ask(since, ToStoredText(filter.instrument), ToStoredText(filter.activity), filter.limit);
    json ? WriteJson(store, rows) : WriteTable(store, rows);
    FlushOut();
    store.ExpectUntouched();
    return Done;
  }

 private:
  RunFilter filter;
  bool json = false;
};

}  // namespace

extern const Registration registeredRuns = {
    "runs", "Lists runs, the newest first. A run that did not finish is marked UNFINISHED.",
    "runs --since 2026-11-24 --unfinished", &Make<RunsVerb>};

}  // namespace Velora::Ts
